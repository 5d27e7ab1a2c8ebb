// SPDX-License-Identifier: MIT
// What a command asks and who answers. A script, a LISP call or a test is a source of answers; CommandInput
// turns answers into the points, numbers and entities that a command needs.
//
//     lm::host::AnswerList answers{"ALL", ""};
//     document->executeCommand("_ERASE", answers);
#pragma once

#include "host/export.h"

#include "drawing/geometry.h"
#include "drawing/objectid.h"

#include <deque>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

class CHostDocument;
struct hst_resbufW;

namespace lm::host {

/// Ends a command as cancelled: what its body did is taken back, and nobody is told of an error.
class LM_HOST_API CommandCancelled : public std::exception {
public:
    CommandCancelled();
    ~CommandCancelled() override;
    const char* what() const noexcept override;
};

/// Ends a command as failed, with one line of UTF-8 that says why. What its body did is taken back.
class LM_HOST_API CommandFailed : public std::runtime_error {
public:
    explicit CommandFailed(const std::string& reason);
    ~CommandFailed() override;
};

/// One answer: a text as it was typed, or a value that a program computed.
struct LM_HOST_API Answer {
    enum Kind { kText, kNumber, kPoint, kEntities };

    Answer() = default;
    Answer(const char* utf8) : text(utf8) {}
    Answer(std::string utf8) : text(std::move(utf8)) {}
    Answer(double value) : kind(kNumber), number(value) {}
    Answer(const OdGePoint3d& place) : kind(kPoint), point(place) {}
    Answer(OdDbObjectId id) : kind(kEntities), entities{id} {}
    Answer(std::vector<OdDbObjectId> ids) : kind(kEntities), entities(std::move(ids)) {}

    /// The empty text, which ends a series of answers and takes what is offered.
    bool isEmpty() const { return kind == kText && text.empty(); }
    /// As text, for messages and for questions that ask for text: UTF-8, numbers in their shortest form.
    std::string asText() const;

    Kind kind = kText;
    std::string text; ///< UTF-8
    double number = 0;
    OdGePoint3d point;
    std::vector<OdDbObjectId> entities;
};

/// Gives answers one after the other.
class LM_HOST_API AnswerSource {
public:
    virtual ~AnswerSource();
    /// The next answer. False when there is none left: the question then fails.
    virtual bool next(Answer& answer) = 0;
};

/// Answers that are known beforehand.
class LM_HOST_API AnswerList : public AnswerSource {
public:
    AnswerList() = default;
    AnswerList(std::initializer_list<Answer> answers) : m_answers(answers) {}
    explicit AnswerList(std::vector<Answer> answers) : m_answers(answers.begin(), answers.end()) {}
    bool next(Answer& answer) override;
    void add(Answer answer) { m_answers.push_back(std::move(answer)); }
    std::size_t left() const { return m_answers.size(); }

private:
    std::deque<Answer> m_answers;
};

/// Asks on behalf of a command. Every question takes one answer from the source; a question without an
/// answer, and an answer that doesn't fit, raise CommandFailed with the prompt in the text.
class LM_HOST_API CommandInput {
public:
    /// Both may be null: every question fails then, and no entity can be selected.
    CommandInput(AnswerSource* source, CHostDocument* document) : m_source(source), m_document(document) {}

    /// The next answer as it stands.
    Answer ask(std::string_view prompt);
    /// A text, UTF-8; may be empty.
    std::string text(std::string_view prompt);
    /// A text that may not be empty.
    std::string name(std::string_view prompt);
    /// A number; an empty answer gives `otherwise`.
    double number(std::string_view prompt, double otherwise);
    /// A whole number; an empty answer gives `otherwise`.
    int integer(std::string_view prompt, int otherwise);
    /// A point: "x,y" or "x,y,z"; with "@" before it the difference to the last point, "@d<a" in distance and
    /// degrees. It becomes the last point.
    OdGePoint3d point(std::string_view prompt);
    /// As point; false for an empty answer.
    bool pointOrNothing(std::string_view prompt, OdGePoint3d& point);
    /// One of `words`, in which capitals mark what must be typed at least, ignoring case; a leading "_" is
    /// passed over. Gives the index, or -1 for an empty answer.
    int keyword(std::string_view prompt, std::initializer_list<const char*> words);
    /// Live entities of model space, each once, in the order of choosing; the answers go on until an empty
    /// one. An answer is an entity or a set of them, a point (what is touched within 0.3 of it, the last
    /// drawn), or one of ALL, Last, Previous, Crossing and Window with two points behind.
    std::vector<OdDbObjectId> selection(std::string_view prompt);

    AnswerSource* source() const { return m_source; }
    CHostDocument* document() const { return m_document; }

private:
    AnswerSource* m_source;
    CHostDocument* m_document;
};

/// The answer that the first value of a chain gives: a text, a number, a point (a list of two or three
/// numbers too), or the entity of an entity name. Nil gives the empty answer. False for another value.
LM_HOST_API bool answerOf(const hst_resbufW* value, Answer& answer);

} // namespace lm::host
