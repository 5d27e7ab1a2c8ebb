// SPDX-License-Identifier: MIT
#include "host/windows/filedialogs.h"

#include <QFileDialog>

#include <utility>

namespace lm::host {

namespace {

FileAnswer openAnswer;
FileAnswer saveAnswer;

} // namespace

QString askOpenFileName(const FileQuestion& question) {
    // A copy, since an answer may put another one in its own place.
    if (const FileAnswer answer = openAnswer) return answer(question);
    return QFileDialog::getOpenFileName(question.parent, question.caption, question.directory,
                                        question.filter);
}

QString askSaveFileName(const FileQuestion& question) {
    if (const FileAnswer answer = saveAnswer) return answer(question);
    return QFileDialog::getSaveFileName(question.parent, question.caption, question.directory,
                                        question.filter);
}

FileAnswer setOpenFileAnswer(FileAnswer answer) {
    return std::exchange(openAnswer, std::move(answer));
}

FileAnswer setSaveFileAnswer(FileAnswer answer) {
    return std::exchange(saveAnswer, std::move(answer));
}

} // namespace lm::host
