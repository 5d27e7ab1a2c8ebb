// SPDX-License-Identifier: MIT
#include "host/commandinput.h"

#include "host/document.h"

#include "drawing/entity.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <memory>
#include <set>

namespace lm::host {

namespace {

constexpr double kPickSize = 0.3; // half the side of the box that a picked point stands for

std::string shortest(double value) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
    return {buffer, end.ptr};
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

bool numberOf(std::string_view text, double& value) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    return end.ec == std::errc() && end.ptr == text.data() + text.size() && std::isfinite(value);
}

bool coordinatesOf(std::string_view text, OdGePoint3d& point) {
    double values[3] = {0, 0, 0};
    int count = 0;
    for (bool more = true; more; ++count) {
        if (count == 3) return false;
        const std::size_t comma = text.find(',');
        if (!numberOf(text.substr(0, comma), values[count])) return false;
        more = comma != std::string_view::npos;
        if (more) text.remove_prefix(comma + 1);
    }
    if (count < 2) return false;
    point = {values[0], values[1], values[2]};
    return true;
}

/// A difference of points: "x,y", "x,y,z" or "distance<degrees".
bool differenceOf(std::string_view text, OdGePoint3d& difference) {
    const std::size_t angle = text.find('<');
    if (angle == std::string_view::npos) return coordinatesOf(text, difference);
    double distance = 0, degrees = 0;
    if (!numberOf(text.substr(0, angle), distance) || !numberOf(text.substr(angle + 1), degrees))
        return false;
    const double radians = degrees * 3.141592653589793 / 180;
    difference = {distance * std::cos(radians), distance * std::sin(radians), 0};
    return true;
}

bool isWord(std::string_view typed, std::string_view word) {
    if (!typed.empty() && typed.front() == '_') typed.remove_prefix(1);
    const auto isUpper = [](unsigned char c) { return std::isupper(c) != 0; };
    const auto needed =
        static_cast<std::size_t>(std::find_if_not(word.begin(), word.end(), isUpper) - word.begin());
    return typed.size() >= needed && typed.size() <= word.size() &&
           std::equal(typed.begin(), typed.end(), word.begin(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

int indexOf(std::string_view typed, std::initializer_list<const char*> words) {
    int index = 0;
    for (const char* word : words) {
        if (isWord(typed, word)) return index;
        ++index;
    }
    return -1;
}

[[noreturn]] void refuse(std::string_view prompt, const Answer& answer, std::string_view expected) {
    throw CommandFailed("\"" + std::string(prompt) + "\": expected " + std::string(expected) + ", found \"" +
                        answer.asText() + "\"");
}

/// Collects live entities of the layouts, each once.
class Chosen {
public:
    explicit Chosen(OdDbDatabase* database) : m_database(database) {}
    void add(const std::vector<OdDbObjectId>& ids) {
        for (const OdDbObjectId id : ids) add(id);
    }
    void add(OdDbObjectId id) {
        if (id.database() != m_database || m_database == nullptr) return;
        const OdSmartPtr<OdDbObject> object = id.openObject();
        if (OdDbEntity::cast(object.get()) == nullptr) return;
        const OdSmartPtr<OdDbObject> owner = object->ownerId().openObject();
        const auto* block = OdDbBlockTableRecord::cast(owner.get());
        if (block != nullptr && block->isLayout() && m_known.insert(id).second) m_ids.push_back(id);
    }
    std::vector<OdDbObjectId> take() { return std::move(m_ids); }

private:
    OdDbDatabase* m_database;
    std::set<OdDbObjectId> m_known;
    std::vector<OdDbObjectId> m_ids;
};

OdGePoint3d shifted(const OdGePoint3d& point, double by) {
    return {point.x + by, point.y + by, point.z};
}

/// Chooses by one answer; false for a text that is no way of choosing.
bool choose(CommandInput& input, const Answer& answer, Chosen& chosen) {
    enum Way { kAll, kLast, kPrevious, kCrossing, kWindow };
    CHostDocument& document = *input.document();
    const std::unique_ptr<CHostSelectionSet> set(document.newSelectionSet());
    if (answer.kind == Answer::kEntities) return chosen.add(answer.entities), true;
    OdGePoint3d point;
    if (answer.kind == Answer::kPoint ||
        (answer.kind == Answer::kText && coordinatesOf(answer.text, point))) {
        if (answer.kind == Answer::kPoint) point = answer.point;
        document.database()->coordinates().toDrawing(point);
        set->crossing(shifted(point, -kPickSize), shifted(point, kPickSize), document.view(), nullptr);
        if (set->size() != 0) chosen.add(set->ids().back());
        return true;
    }
    const int way = answer.kind == Answer::kText
                        ? indexOf(answer.text, {"ALL", "Last", "Previous", "Crossing", "Window"})
                        : -1;
    if (way == kAll || way == kLast) set->all(nullptr);
    if (way == kLast && set->size() != 0) return chosen.add(set->ids().back()), true;
    if (way == kPrevious) return chosen.add(document.previousSelection()), true;
    if (way == kCrossing || way == kWindow) {
        const OdGePoint3d first = input.point("First corner"), second = input.point("Opposite corner");
        if (way == kCrossing)
            set->crossing(first, second, document.view(), nullptr);
        else
            set->window(first, second, document.view(), nullptr);
    }
    chosen.add(set->ids());
    return way != -1;
}

} // namespace

CommandCancelled::CommandCancelled() = default;
CommandCancelled::~CommandCancelled() = default;
const char* CommandCancelled::what() const noexcept {
    return "cancelled";
}

CommandFailed::CommandFailed(const std::string& reason) : std::runtime_error(reason) {}
CommandFailed::~CommandFailed() = default;

std::string Answer::asText() const {
    switch (kind) {
    case kText:
        return text;
    case kNumber:
        return shortest(number);
    case kPoint:
        return shortest(point.x) + "," + shortest(point.y) + "," + shortest(point.z);
    case kEntities:
        break;
    }
    std::string handles;
    for (const OdDbObjectId id : entities)
        handles += (handles.empty() ? "" : " ") + lm::drawing::utf8(id.getHandle().ascii());
    return handles;
}

AnswerSource::~AnswerSource() = default;

bool AnswerList::next(Answer& answer) {
    if (m_answers.empty()) return false;
    answer = std::move(m_answers.front());
    m_answers.pop_front();
    return true;
}

Answer CommandInput::ask(std::string_view prompt) {
    if (m_document != nullptr) m_document->checkTime();
    Answer answer;
    if (m_source == nullptr || !m_source->next(answer))
        throw CommandFailed("no answer to \"" + std::string(prompt) + "\"");
    return answer;
}

std::string CommandInput::text(std::string_view prompt) {
    return ask(prompt).asText();
}

std::string CommandInput::name(std::string_view prompt) {
    std::string given = text(prompt);
    if (given.empty())
        throw CommandFailed("\"" + std::string(prompt) + "\" needs an answer that isn't empty");
    return given;
}

namespace {

double numberIn(std::string_view prompt, const Answer& answer) {
    double value = answer.number;
    if (answer.kind != Answer::kNumber && !(answer.kind == Answer::kText && numberOf(answer.text, value)))
        refuse(prompt, answer, "a number");
    if (!std::isfinite(value)) refuse(prompt, answer, "a number that isn't infinite");
    return value;
}

} // namespace

double CommandInput::number(std::string_view prompt, double otherwise) {
    const Answer answer = ask(prompt);
    return answer.isEmpty() ? otherwise : numberIn(prompt, answer);
}

int CommandInput::integer(std::string_view prompt, int otherwise) {
    const Answer answer = ask(prompt);
    if (answer.isEmpty()) return otherwise;
    const double value = numberIn(prompt, answer);
    if (value != std::floor(value)) refuse(prompt, answer, "a whole number");
    if (std::fabs(value) > 2147483647.0) refuse(prompt, answer, "a whole number of at most 2147483647");
    return static_cast<int>(value);
}

bool CommandInput::pointOrNothing(std::string_view prompt, OdGePoint3d& point) {
    const Answer answer = ask(prompt);
    if (answer.isEmpty()) return false;
    bool isRelative = false;
    if (answer.kind == Answer::kPoint) {
        point = answer.point;
    } else if (answer.kind != Answer::kText) {
        refuse(prompt, answer, "a point");
    } else {
        isRelative = answer.text.front() == '@';
        if (!(isRelative ? differenceOf(std::string_view(answer.text).substr(1), point)
                         : coordinatesOf(answer.text, point)))
            refuse(prompt, answer, "a point");
    }
    if (m_document == nullptr) return true;
    if (m_document->database() != nullptr && !isRelative)
        m_document->database()->coordinates().toDrawing(point);
    if (isRelative) point = m_document->lastPoint() + point.asVector();
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
        refuse(prompt, answer, "a point that isn't infinitely far away");
    m_document->setLastPoint(point);
    return true;
}

OdGePoint3d CommandInput::point(std::string_view prompt) {
    OdGePoint3d given;
    if (!pointOrNothing(prompt, given)) refuse(prompt, Answer(), "a point");
    return given;
}

int CommandInput::keyword(std::string_view prompt, std::initializer_list<const char*> words) {
    const Answer answer = ask(prompt);
    if (answer.isEmpty()) return -1;
    const int index = answer.kind == Answer::kText ? indexOf(answer.text, words) : -1;
    if (index >= 0) return index;
    std::string all;
    for (const char* word : words) all += (all.empty() ? "" : ", ") + std::string(word);
    refuse(prompt, answer, "one of " + all);
}

std::vector<OdDbObjectId> CommandInput::selection(std::string_view prompt) {
    if (m_document == nullptr || m_document->database() == nullptr) throw CommandFailed("no drawing is open");
    Chosen chosen(m_document->database());
    for (Answer answer = ask(prompt); !answer.isEmpty(); answer = ask(prompt))
        if (!choose(*this, answer, chosen)) refuse(prompt, answer, "an entity, a point or a way of choosing");
    std::vector<OdDbObjectId> ids = chosen.take();
    if (!ids.empty()) m_document->setPreviousSelection(ids);
    return ids;
}

namespace {

bool isNumberRecord(const hst_resbufW* value, double& number) {
    if (value == nullptr) return false;
    switch (value->restype) {
    case RTREAL:
        number = value->value.real;
        return true;
    case RTSHORT:
        number = value->value.int16;
        return true;
    case RTLONG:
        number = value->value.int32;
        return true;
    default:
        return false;
    }
}

bool pointOfList(const hst_resbufW* element, Answer& answer) {
    double values[3] = {0, 0, 0};
    int count = 0;
    for (; element != nullptr && element->restype != RTLE; element = element->rbnext, ++count)
        if (count == 3 || !isNumberRecord(element, values[count])) return false;
    if (count < 2) return false;
    answer = Answer(OdGePoint3d(values[0], values[1], values[2]));
    return true;
}

} // namespace

bool answerOf(const hst_resbufW* value, Answer& answer) {
    if (value == nullptr || value->restype == RTNIL) return answer = Answer(), true;
    double number = 0;
    if (isNumberRecord(value, number)) return answer = Answer(number), true;
    switch (value->restype) {
    case RTSTR:
        answer = value->value.text != nullptr
                     ? Answer(lm::system::toUtf8(
                           lm::WideView(value->value.text, lm::system::wideLength(value->value.text))))
                     : Answer();
        return true;
    case RTPOINT:
        answer = Answer(OdGePoint3d(value->value.point[0], value->value.point[1], value->value.point[2]));
        return true;
    case RTENAME:
        if (const CHostDatabase* database = CHostDatabase::byNumber(value->value.name[1])) {
            answer = Answer(database->getOdDbObjectId(OdDbHandle(value->value.name[0]), false, 0));
            return true;
        }
        return false;
    case RTLB:
        return pointOfList(value->rbnext, answer);
    default:
        return false;
    }
}

} // namespace lm::host
