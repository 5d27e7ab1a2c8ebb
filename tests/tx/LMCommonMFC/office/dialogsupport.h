// SPDX-License-Identifier: MIT
// What the tests of the file dialogs share: answers in the place of the dialogs, which note what they were
// asked.
#pragma once

#include "tx/LMCommonMFC/callsupport.h"

#include "host/windows/filedialogs.h"

#include <string>
#include <vector>

namespace lm::test {

/// Answers every file dialog with one path for as long as it lives, and notes the questions.
class AnsweredDialogs {
public:
    struct Asked {
        bool open;
        host::FileQuestion question;
    };

    explicit AnsweredDialogs(QString path = QString()) : m_path(std::move(path)) {
        m_open = host::setOpenFileAnswer(
            [this](const host::FileQuestion& question) { return note(true, question); });
        m_save = host::setSaveFileAnswer(
            [this](const host::FileQuestion& question) { return note(false, question); });
    }
    ~AnsweredDialogs() {
        host::setOpenFileAnswer(m_open);
        host::setSaveFileAnswer(m_save);
    }
    AnsweredDialogs(const AnsweredDialogs&) = delete;
    AnsweredDialogs& operator=(const AnsweredDialogs&) = delete;

    const std::vector<Asked>& asked() const { return m_asked; }
    std::string lastFilter() const { return m_asked.back().question.filter.toStdString(); }

private:
    QString note(bool open, const host::FileQuestion& question) {
        m_asked.push_back({open, question});
        return m_path;
    }

    QString m_path;
    std::vector<Asked> m_asked;
    host::FileAnswer m_open;
    host::FileAnswer m_save;
};

} // namespace lm::test
