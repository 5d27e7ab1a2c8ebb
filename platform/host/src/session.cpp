// SPDX-License-Identifier: MIT
#include "host/session.h"

#include "host/database.h"
#include "host/selection.h"

#include <cstdio>
#include <ctime>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace lm::host {

namespace {

struct NoCaseLess {
    bool operator()(const CHostString& a, const CHostString& b) const { return a.compareNoCase(b) < 0; }
};

/// The parts of this file that live as long as the process, threads that still write included.
struct Globals {
    CHostSession session;
    bool present = true;
    std::mutex mutex;
    CHostString timestamp;
    std::shared_ptr<const TextSink> console;
};

Globals& globals() {
    static Globals& all = *new Globals;
    return all;
}

std::shared_ptr<const TextSink> shared(TextSink sink) {
    return sink ? std::make_shared<const TextSink>(std::move(sink)) : nullptr;
}

TextSink plain(const std::shared_ptr<const TextSink>& sink) {
    return sink ? *sink : TextSink();
}

} // namespace

struct SessionData {
    mutable std::mutex mutex;
    std::deque<CHostString> lines;
    std::shared_ptr<const TextSink> sink;
    std::map<CHostString, int, NoCaseLess> settings;
    std::vector<OdDbObjectId> selection;
};

void setSessionPresent(bool present) {
    globals().present = present;
}

void setHistoryTimestamp(const CHostString& text) {
    lm::WideString kept(text.view());
    std::erase(kept, '%');
    const std::lock_guard lock(globals().mutex);
    globals().timestamp = CHostString(lm::WideView(kept));
}

void writeConsole(lm::WideView text) {
    std::shared_ptr<const TextSink> sink;
    {
        const std::lock_guard lock(globals().mutex);
        sink = globals().console;
    }
    if (sink) {
        (*sink)(text);
        return;
    }
    const std::string bytes = lm::system::toUtf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

TextSink setConsoleSink(TextSink sink) {
    const std::lock_guard lock(globals().mutex);
    return plain(std::exchange(globals().console, shared(std::move(sink))));
}

} // namespace lm::host

CHostSession::CHostSession() : m_data(std::make_unique<lm::host::SessionData>()) {}

CHostSession::~CHostSession() = default;

// The sink is called without the lock, so it may write further lines.
void CHostSession::log(const CHostString& line) {
    std::shared_ptr<const lm::host::TextSink> sink;
    {
        const std::lock_guard lock(m_data->mutex);
        m_data->lines.push_back(line);
        if (m_data->lines.size() > kKeptLines) m_data->lines.pop_front();
        sink = m_data->sink;
    }
    if (sink) (*sink)(line.view());
}

std::vector<CHostString> CHostSession::lines() const {
    const std::lock_guard lock(m_data->mutex);
    return {m_data->lines.begin(), m_data->lines.end()};
}

void CHostSession::clearLines() {
    const std::lock_guard lock(m_data->mutex);
    m_data->lines.clear();
}

lm::host::TextSink CHostSession::setLogSink(lm::host::TextSink sink) {
    const std::lock_guard lock(m_data->mutex);
    return lm::host::plain(std::exchange(m_data->sink, lm::host::shared(std::move(sink))));
}

int CHostSession::setting(const CHostString& name) const {
    const auto at = m_data->settings.find(name);
    return at != m_data->settings.end() ? at->second : 0;
}

void CHostSession::setSetting(const CHostString& name, int value) {
    m_data->settings[name] = value;
}

hst_resbufW* CHostSession::buildList(short group, const CHostString& text) const {
    if (!lm::host::isTextCode(group)) return nullptr;
    hst_resbufW model{};
    model.restype = group;
    model.value.text = const_cast<unsigned short*>(text.c_str()); // read and copied, not kept
    return lm::host::copyChain(&model);
}

int CHostSession::addToSelection(CHostSelectionSet* set, const unsigned long long name[2]) const {
    const CHostDatabase* database = CHostDatabase::byNumber(name[1]);
    if (set == nullptr || database == nullptr) return RTERROR;
    return set->add(database->getOdDbObjectId(OdDbHandle(name[0]), false, 0)) ? RTNORM : RTERROR;
}

void CHostSession::setCurrentSelection(const CHostSelectionSet* set) {
    m_data->selection = set != nullptr ? set->ids() : std::vector<OdDbObjectId>();
}

const std::vector<OdDbObjectId>& CHostSession::currentSelection() const {
    return m_data->selection;
}

CHostSession* hostSession() {
    auto& all = lm::host::globals();
    return all.present ? &all.session : nullptr;
}

CHostString GetHistoryTimestamp() {
    {
        auto& all = lm::host::globals();
        const std::lock_guard lock(all.mutex);
        if (!all.timestamp.isEmpty()) return all.timestamp;
    }
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return CHostString(text);
}
