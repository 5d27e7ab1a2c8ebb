// SPDX-License-Identifier: MIT
#include "questions.h"

#include "document.h"
#include "entityname.h"
#include "hoststate.h"
#include "points.h"
#include "reader.h"
#include "settings.h"
#include "units.h"

#include "host/documentmanager.h"

#include "drawing/partwalk.h"

#include "system/codepage.h"

#include <cmath>

namespace lm::host::lisp {

namespace {

/// What initget's number allows; other bits change nothing without a screen.
enum QuestionBits { kNoEmpty = 1, kNoZero = 2, kNoNegative = 4, kAnyText = 128 };

/// The source that answers the document's commands.
AnswerSource* commandAnswers(Machine& machine) {
    const CHostDocument* document = documentOf(machine);
    return document == nullptr ? nullptr : document->answers();
}

} // namespace

WideString takeAnswer(Machine& machine, std::string_view function) {
    auto& answers = machine.host().answers;
    if (!answers.empty()) {
        WideString answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
    Answer answer;
    if (AnswerSource* source = commandAnswers(machine); source != nullptr && source->next(answer))
        return system::fromUtf8(answer.asText());
    Machine::fail("unanswered question: " + std::string(function));
}

namespace {

/// One question: what initget said about it, its prompt, and the answer as it was given.
class Question {
public:
    Question(Machine& machine, std::string_view function, const Value& prompt)
        : m_machine(machine), m_function(function), m_terms(std::exchange(machine.host().question, {})) {
        if (prompt.isText()) machine.write(prompt.text());
        m_answer = takeAnswer(machine, function);
        if (prompt.isText()) machine.write(m_answer + system::widen("\n"));
    }

    const WideString& answer() const noexcept { return m_answer; }
    /// Whether the Enter key alone answered; raises LispError where that isn't allowed.
    bool isEmpty() const {
        if (!m_answer.empty()) return false;
        if ((m_terms.bits & kNoEmpty) != 0) refuse();
        return true;
    }
    [[noreturn]] void refuse() const {
        Machine::fail("answer doesn't fit the question: " + std::string(m_function) + ": " +
                      system::toUtf8(m_answer));
    }
    /// The keyword that the answer names, by its capitals or by more of it; nil for none.
    Value keyword() const {
        const WideView given = system::trimmed(m_answer);
        for (const WideString& word : m_terms.keywords) {
            std::size_t needed = 0;
            for (std::size_t i = 0; i < word.size(); ++i)
                if (system::toLower(word[i]) != word[i] || (word[i] >= '0' && word[i] <= '9')) needed = i + 1;
            if (needed == 0) needed = word.size();
            if (given.size() < needed || given.size() > word.size()) continue;
            if (system::equalsNoCase(given, WideView(word).substr(0, given.size())))
                return m_machine.text(word);
        }
        return Value();
    }
    /// The answer to a question for something else: a keyword, any text where that is allowed, or none.
    Value otherwise() const {
        if (Value word = keyword()) return word;
        if ((m_terms.bits & kAnyText) != 0) return m_machine.text(m_answer);
        refuse();
    }
    void checkSign(double number) const {
        if ((number == 0 && (m_terms.bits & kNoZero) != 0) ||
            (number < 0 && (m_terms.bits & kNoNegative) != 0))
            refuse();
    }

private:
    Machine& m_machine;
    std::string_view m_function;
    NextQuestion m_terms;
    WideString m_answer;
};

/// Numbers between commas, or the list that a program would write.
std::optional<Point> plainPoint(WideView text) {
    double parts[3] = {};
    std::size_t count = 0;
    for (;;) {
        const std::size_t comma = text.find(WideChar(','));
        const Value number = numberOf(system::trimmed(text.substr(0, comma)));
        if (number.isNil() || count == 3) return std::nullopt;
        parts[count++] = number.number();
        if (comma == WideView::npos) break;
        text = text.substr(comma + 1);
    }
    if (count < 2) return std::nullopt;
    return Point{parts[0], parts[1], parts[2], false};
}

/// A point as it is typed: "x,y", "x,y,z"; "@" before it from a base point on; "d<a" by distance and degrees.
std::optional<Point> pointOfAnswer(Machine& machine, WideView text, const std::optional<Point>& base) {
    text = system::trimmed(text);
    if (text.empty()) return std::nullopt;
    if (text[0] == '(') {
        Value list;
        Reader reader(machine, text);
        if (!reader.next(list)) return std::nullopt;
        std::optional<Point> point = pointOf(list);
        if (point) point->flat = false;
        return point;
    }
    const bool relative = text[0] == '@';
    if (relative) text = text.substr(1);
    Point from;
    if (relative && base) from = *base;
    std::optional<Point> point = plainPoint(text);
    if (const std::size_t corner = text.find(WideChar('<')); !point && corner != WideView::npos) {
        const Value length = numberOf(text.substr(0, corner));
        const std::optional<double> angle =
            angleOfText(system::narrow(text.substr(corner + 1)), AngleMode::kDegrees);
        if (length.isNil() || !angle) return std::nullopt;
        point = Point{length.number() * std::cos(*angle), length.number() * std::sin(*angle), 0, false};
    }
    if (point && relative) {
        point->x += from.x;
        point->y += from.y;
        point->z += from.z;
    }
    return point;
}

/// The optional base point and the optional prompt of a question, in either place.
struct BaseAndPrompt {
    std::optional<Point> base;
    Value prompt;
    BaseAndPrompt(Machine& machine, Arguments a) {
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (a[i].isText())
                prompt = a[i];
            else if (!a[i].isNil())
                base = pointAt(machine, a, i);
        }
    }
};

Value promptOf(Machine& machine, Arguments a, std::size_t index = 0) {
    if (index >= a.size() || a[index].isNil()) return Value();
    machine.textAt(a, index);
    return a[index];
}

Value initget(Machine& machine, Arguments a) {
    NextQuestion question;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].isInteger()) {
            question.bits = a[i].integer();
            continue;
        }
        WideView words = machine.textAt(a, i);
        while (!(words = system::trimmed(words)).empty()) {
            const std::size_t end = std::min(words.find(WideChar(' ')), words.size());
            question.keywords.emplace_back(words.substr(0, end));
            words = words.substr(end);
        }
    }
    machine.host().question = std::move(question);
    return Value();
}

Value askPoint(Machine& machine, Arguments a, std::string_view function) {
    const BaseAndPrompt given(machine, a);
    const Question question(machine, function, given.prompt);
    if (question.isEmpty()) return Value();
    const std::optional<Point> point = pointOfAnswer(machine, question.answer(), given.base);
    return point ? listOf(machine, *point) : question.otherwise();
}

Value getpoint(Machine& machine, Arguments a) {
    return askPoint(machine, a, "GETPOINT");
}
Value getcorner(Machine& machine, Arguments a) {
    return askPoint(machine, a, "GETCORNER");
}

// A length as it is typed, or a point whose distance from the base point counts.
Value getdist(Machine& machine, Arguments a) {
    const BaseAndPrompt given(machine, a);
    const Question question(machine, "GETDIST", given.prompt);
    if (question.isEmpty()) return Value();
    const auto mode = static_cast<LengthMode>(integerVariable(machine, "LUNITS"));
    std::optional<double> length = lengthOfText(system::narrow(question.answer()), mode);
    if (!length && given.base) {
        if (const std::optional<Point> point = pointOfAnswer(machine, question.answer(), given.base))
            length = point->inSpace().distanceTo(given.base->inSpace());
    }
    if (!length) return question.otherwise();
    question.checkSign(*length);
    return Value::real(*length);
}

Value askAngle(Machine& machine, Arguments a, std::string_view function) {
    const BaseAndPrompt given(machine, a);
    const Question question(machine, function, given.prompt);
    if (question.isEmpty()) return Value();
    const auto mode = static_cast<AngleMode>(integerVariable(machine, "AUNITS"));
    std::optional<double> angle = angleOfText(system::narrow(question.answer()), mode);
    if (!angle && given.base) {
        if (const std::optional<Point> point = pointOfAnswer(machine, question.answer(), given.base))
            angle = std::atan2(point->y - given.base->y, point->x - given.base->x);
    }
    return angle ? Value::real(*angle) : question.otherwise();
}

Value getangle(Machine& machine, Arguments a) {
    return askAngle(machine, a, "GETANGLE");
}
Value getorient(Machine& machine, Arguments a) {
    return askAngle(machine, a, "GETORIENT");
}

Value getint(Machine& machine, Arguments a) {
    const Question question(machine, "GETINT", promptOf(machine, a));
    if (question.isEmpty()) return Value();
    const Value number = numberOf(system::trimmed(question.answer()));
    if (!number.isInteger()) return question.otherwise();
    question.checkSign(number.number());
    return number;
}

Value getreal(Machine& machine, Arguments a) {
    const Question question(machine, "GETREAL", promptOf(machine, a));
    if (question.isEmpty()) return Value();
    const Value number = numberOf(system::trimmed(question.answer()));
    if (number.isNil()) return question.otherwise();
    question.checkSign(number.number());
    return Value::real(number.number());
}

Value getstring(Machine& machine, Arguments a) {
    const std::size_t promptIndex = a.empty() || !a[0].isText() ? 1 : 0;
    const Question question(machine, "GETSTRING", promptOf(machine, a, promptIndex));
    return machine.text(question.answer());
}

Value getkword(Machine& machine, Arguments a) {
    const Question question(machine, "GETKWORD", promptOf(machine, a));
    return question.isEmpty() ? Value() : question.otherwise();
}

/// The entity of model space that is drawn last, or null.
OdDbObjectId lastEntity(const OdDbDatabase& database) {
    OdDbObjectId last;
    for (lm::drawing::PartWalk part(database.getModelSpaceId()); !part.done(); part.next()) last = part.id();
    return last;
}

// The answer is a handle, or "Last" with the capital sufficing; a point may stand behind a blank. The result
// has the entity's name and that point.
Value askEntity(Machine& machine, Arguments a, std::string_view function) {
    const Question question(machine, function, promptOf(machine, a));
    if (question.isEmpty()) return Value();
    if (Value keyword = question.keyword()) return keyword;
    const WideView answer = system::trimmed(question.answer());
    const std::size_t blank = std::min(answer.find(WideChar(' ')), answer.size());
    const WideString word(answer.substr(0, blank));
    const bool last =
        system::equalsNoCase(word, system::widen("L")) || system::equalsNoCase(word, system::widen("LAST"));
    const OdDbDatabase& database = requireDatabase(machine);
    const OdDbObjectId id = last ? lastEntity(database) : database.getOdDbObjectId(OdDbHandle(word.c_str()));
    if (id.isNull() || id.isErased()) return question.otherwise();
    const std::optional<Point> point = pointOfAnswer(machine, answer.substr(blank), std::nullopt);
    return machine.list(machine.heap().foreign<EntityName>(id),
                        listOf(machine, point ? point->inSpace() : OdGePoint3d()));
}

Value entsel(Machine& machine, Arguments a) {
    return askEntity(machine, a, "ENTSEL");
}
Value nentsel(Machine& machine, Arguments a) {
    return askEntity(machine, a, "NENTSEL");
}

// The title, a proposal, an ending and flags; the answer is the file's name.
Value getfiled(Machine& machine, Arguments a) {
    const Question question(machine, "GETFILED", Value());
    machine.textAt(a, 0);
    return question.isEmpty() ? Value() : machine.text(question.answer());
}

const Builtin kQuestions[] = {
    {"INITGET", 0, 2, &initget},   {"GETPOINT", 0, 2, &getpoint}, {"GETCORNER", 1, 2, &getcorner},
    {"GETDIST", 0, 2, &getdist},   {"GETANGLE", 0, 2, &getangle}, {"GETORIENT", 0, 2, &getorient},
    {"GETINT", 0, 1, &getint},     {"GETREAL", 0, 1, &getreal},   {"GETSTRING", 0, 2, &getstring},
    {"GETKWORD", 0, 1, &getkword}, {"ENTSEL", 0, 1, &entsel},     {"NENTSEL", 0, 1, &nentsel},
    {"GETFILED", 4, 4, &getfiled},
};

} // namespace

std::span<const Builtin> questionFunctions() {
    return kQuestions;
}

} // namespace lm::host::lisp
