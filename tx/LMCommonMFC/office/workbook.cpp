// SPDX-License-Identifier: MIT
#include "office/workbook.h"

#include "office/workbookguard.h"

#include "system/path.h"

#include <xlsxformat.h>

#include <cstdio>

namespace lm::office {

namespace {

/// While it lives, messages of its thread are dropped: the workbook library tells of each oddity of a file,
/// and nobody reads that. Other threads' messages go where they went.
class Silence {
public:
    Silence() : m_outer(t_isSilent) {
        t_isSilent = true;
        if (!m_outer) s_next = qInstallMessageHandler(&handle);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() {
        if (!m_outer) qInstallMessageHandler(s_next);
        t_isSilent = m_outer;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (t_isSilent) return;
        if (s_next != nullptr) {
            s_next(type, context, text);
        } else {
            std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, text)));
        }
    }

    static thread_local bool t_isSilent;
    static QtMessageHandler s_next;
    bool m_outer;
};

thread_local bool Silence::t_isSilent = false;
QtMessageHandler Silence::s_next = nullptr;

QString nativeName(const RZString& path) {
    return QString::fromStdString(system::nativePath(text::cut(path.view())));
}

} // namespace

std::unique_ptr<Workbook> Workbook::open(const RZString& path) {
    const Silence silence;
    const QString name = nativeName(path);
    const bool isFit = isFitWorkbookFile(name.toStdString());
    return std::unique_ptr<Workbook>(new Workbook(isFit ? name : QString()));
}

int Workbook::numberOf(const RZString& name) const {
    const QStringList names = sheetNames();
    const qsizetype exact = names.indexOf(QString(name));
    if (exact >= 0) return static_cast<int>(exact);
    for (qsizetype i = 0; i < names.size(); ++i)
        if (name == names[i]) return static_cast<int>(i);
    return -1;
}

bool Workbook::select(const RZString& name) {
    if (m_isSelected && m_selected == name) return true;
    m_isSelected = selectSheet(numberOf(name));
    if (m_isSelected) m_selected = name;
    return m_isSelected;
}

bool Workbook::select(int number) {
    m_isSelected = false;
    return selectSheet(number);
}

bool Workbook::save(const RZString& path) const {
    const Silence silence;
    return saveAs(nativeName(path));
}

void Workbook::writeText(int row, int column, const RZString& text) {
    const Silence silence;
    write(row, column, QVariant(QString(text)), QXlsx::Format());
}

} // namespace lm::office
