// SPDX-License-Identifier: MIT
#include "units.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace lm::host::lisp {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr int kMostDecimals = 16;
constexpr int kMostHalvings = 8;
constexpr double kInchesPerFoot = 12;
/// Beyond this a length has no inches that a double could tell apart.
constexpr double kLongestExact = 1e15;

std::string digits(double number, std::chars_format format, int decimals) {
    char text[512];
    const auto end =
        std::to_chars(text, text + sizeof text, number, format, std::clamp(decimals, 0, kMostDecimals));
    std::string result(text, end.ptr);
    return result.find_first_not_of("-0.") == std::string::npos && result[0] == '-' ? result.substr(1)
                                                                                    : result;
}

std::string dropZeros(std::string text, int zeros) {
    const bool hasPoint = text.find('.') != std::string::npos;
    if ((zeros & 8) != 0 && hasPoint) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
    }
    const std::size_t first = text.find_first_not_of('-');
    if ((zeros & 4) != 0 && text.compare(first, 2, "0.") == 0) text.erase(first, 1);
    return text;
}

std::string decimal(double number, const UnitStyle& style) {
    return dropZeros(digits(number, std::chars_format::fixed, style.precision), style.zeros);
}

bool feetAlways(int zeros) {
    return (zeros & 3) == 1 || (zeros & 3) == 2;
}
bool inchesAlways(int zeros) {
    return (zeros & 1) != 0;
}

/// Whole feet, and inches as text.
std::string feetAndInches(bool negative, double feet, const std::string& inches, bool noInches,
                          const UnitStyle& style) {
    const bool withFeet = feet != 0 || feetAlways(style.zeros);
    const bool withInches = !noInches || inchesAlways(style.zeros) || !withFeet;
    std::string text = negative ? "-" : "";
    if (withFeet) text += digits(feet, std::chars_format::fixed, 0) + "'";
    if (withFeet && withInches && !style.asEntered) text += "-";
    if (withInches) text += inches + "\"";
    return text;
}

std::string engineering(double length, const UnitStyle& style) {
    const double size = std::abs(length);
    const double scale = std::pow(10, std::clamp(style.precision, 0, kMostDecimals));
    double feet = std::floor(size / kInchesPerFoot);
    double inches = std::round((size - feet * kInchesPerFoot) * scale) / scale;
    if (inches >= kInchesPerFoot) {
        feet += 1;
        inches = 0;
    }
    return feetAndInches(length < 0 && (feet != 0 || inches != 0), feet, decimal(inches, style), inches == 0,
                         style);
}

/// Whole units and a fraction in lowest terms, as in "5 1/2".
std::string wholeAndFraction(double units, double parts, double whole, const UnitStyle& style) {
    if (parts == 0) return digits(units, std::chars_format::fixed, 0);
    while (std::fmod(parts, 2) == 0) {
        parts /= 2;
        whole /= 2;
    }
    const std::string fraction =
        digits(parts, std::chars_format::fixed, 0) + "/" + digits(whole, std::chars_format::fixed, 0);
    return units == 0 ? fraction
                      : digits(units, std::chars_format::fixed, 0) + (style.asEntered ? "-" : " ") + fraction;
}

std::string fractional(double length, const UnitStyle& style, bool feet) {
    const double whole = std::exp2(std::clamp(style.precision, 0, kMostHalvings));
    const double parts = std::round(std::abs(length) * whole);
    const bool negative = length < 0 && parts != 0;
    const double units = std::floor(parts / whole), rest = parts - units * whole;
    if (!feet) return (negative ? "-" : "") + wholeAndFraction(units, rest, whole, style);
    const double wholeFeet = std::floor(units / kInchesPerFoot);
    const double inches = units - wholeFeet * kInchesPerFoot;
    std::string text = wholeAndFraction(inches, rest, whole, style);
    // Between feet and a bare fraction the inches are named.
    if (inches == 0 && rest != 0 && wholeFeet != 0) text = (style.asEntered ? "0-" : "0 ") + text;
    return feetAndInches(negative, wholeFeet, text, inches == 0 && rest == 0, style);
}

/// Degrees, minutes and seconds; the precision says how many parts there are.
std::string minutes(double degrees, int precision) {
    const int decimals = precision > 4 ? std::min(precision, kMostDecimals) - 4 : 0;
    const double scale = precision > 4   ? 3600 * std::pow(10, decimals)
                         : precision > 2 ? 3600
                         : precision > 0 ? 60
                                         : 1;
    const double parts = std::round(degrees * scale);
    const double whole = std::floor(parts / scale);
    std::string text = digits(whole, std::chars_format::fixed, 0) + "d";
    if (precision <= 0) return text;
    const double inMinutes = (parts - whole * scale) / (scale / 60);
    text += digits(std::floor(inMinutes), std::chars_format::fixed, 0) + "'";
    if (precision <= 2) return text;
    const double left = parts - whole * scale - std::floor(inMinutes) * (scale / 60);
    return text + digits(left / (scale / 3600), std::chars_format::fixed, decimals) + "\"";
}

std::string surveyor(double degrees, int precision) {
    constexpr double kSame = 1e-9;
    const char* const ends[] = {"E", "N", "W", "S"};
    for (int i = 0; i <= 4; ++i)
        if (std::abs(degrees - 90 * i) < kSame) return ends[i % 4];
    const bool north = degrees < 180, east = degrees < 90 || degrees > 270;
    const double fromAxis = std::abs(degrees - (north ? 90 : 270));
    return std::string(north ? "N " : "S ") + minutes(fromAxis, precision) + (east ? " E" : " W");
}

/// Reads texts from their start.
class Scanner {
public:
    explicit Scanner(std::string_view text) : m_text(text) { skipBlanks(); }
    bool atEnd() const { return m_text.empty(); }
    void skipBlanks() {
        while (!m_text.empty() && static_cast<unsigned char>(m_text[0]) <= ' ') m_text.remove_prefix(1);
    }
    bool take(char wanted) {
        if (m_text.empty() || std::toupper(static_cast<unsigned char>(m_text[0])) != wanted) return false;
        m_text.remove_prefix(1);
        return true;
    }
    /// A number without a sign.
    std::optional<double> number() {
        if (m_text.empty() || (m_text[0] != '.' && (m_text[0] < '0' || m_text[0] > '9'))) return std::nullopt;
        double value = 0;
        const auto [end, code] = std::from_chars(m_text.data(), m_text.data() + m_text.size(), value);
        if (code != std::errc()) return std::nullopt;
        m_text.remove_prefix(static_cast<std::size_t>(end - m_text.data()));
        return value;
    }
    std::string_view rest() const { return m_text; }

private:
    std::string_view m_text;
};

/// A number, a fraction, or both.
std::optional<double> mixedNumber(Scanner& scanner) {
    const std::optional<double> first = scanner.number();
    if (!first) return std::nullopt;
    const auto over = [&](double parts) -> std::optional<double> {
        const std::optional<double> whole = scanner.number();
        if (!whole || *whole == 0) return std::nullopt;
        return parts / *whole;
    };
    if (scanner.take('/')) return over(*first);
    Scanner ahead = scanner;
    const bool parted = ahead.take('-') || ahead.take(' ');
    ahead.skipBlanks();
    const std::optional<double> parts = parted ? ahead.number() : std::nullopt;
    if (!parts || !ahead.take('/')) return first;
    scanner = ahead;
    const std::optional<double> fraction = over(*parts);
    if (!fraction) return std::nullopt;
    return *first + *fraction;
}

std::optional<double> feetInchesOfText(Scanner& scanner) {
    std::optional<double> number = mixedNumber(scanner);
    if (!number) return std::nullopt;
    double length = *number;
    if (scanner.take('\'')) {
        length *= kInchesPerFoot;
        scanner.take('-');
        scanner.skipBlanks();
        if (scanner.atEnd()) return length;
        number = mixedNumber(scanner);
        if (!number) return std::nullopt;
        length += *number;
    }
    scanner.take('"');
    return length;
}

/// Degrees, minutes and seconds in degrees.
std::optional<double> minutesOfText(Scanner& scanner) {
    std::optional<double> number = scanner.number();
    if (!number) return std::nullopt;
    double degrees = *number;
    if (!scanner.take('D')) return degrees;
    for (const auto& [mark, parts] : {std::pair{'\'', 60.0}, std::pair{'"', 3600.0}}) {
        number = scanner.number();
        if (!number) break;
        degrees += *number / parts;
        if (!scanner.take(mark)) return std::nullopt;
    }
    return degrees;
}

std::optional<double> surveyorOfText(Scanner& scanner) {
    const bool north = scanner.take('N');
    if (!north && !scanner.take('S')) {
        if (scanner.take('E')) return 0;
        if (scanner.take('W')) return 180;
        return minutesOfText(scanner);
    }
    scanner.skipBlanks();
    if (scanner.atEnd()) return north ? 90 : 270;
    const std::optional<double> degrees = minutesOfText(scanner);
    scanner.skipBlanks();
    const bool east = scanner.take('E');
    if (!degrees || (!east && !scanner.take('W'))) return std::nullopt;
    return north == east ? (north ? 90 : 270) - *degrees : (north ? 90 : 270) + *degrees;
}

struct Unit {
    std::string_view name;
    char kind; ///< what it measures
    double size;
};

constexpr Unit kUnits[] = {
    {"mm", 'l', 1e-3},
    {"millimeter", 'l', 1e-3},
    {"cm", 'l', 1e-2},
    {"centimeter", 'l', 1e-2},
    {"m", 'l', 1},
    {"meter", 'l', 1},
    {"km", 'l', 1e3},
    {"kilometer", 'l', 1e3},
    {"in", 'l', 0.0254},
    {"inch", 'l', 0.0254},
    {"inches", 'l', 0.0254},
    {"ft", 'l', 0.3048},
    {"foot", 'l', 0.3048},
    {"feet", 'l', 0.3048},
    {"yd", 'l', 0.9144},
    {"yard", 'l', 0.9144},
    {"mile", 'l', 1609.344},
    {"rad", 'a', 1},
    {"radian", 'a', 1},
    {"deg", 'a', kPi / 180},
    {"degree", 'a', kPi / 180},
    {"grad", 'a', kPi / 200},
    {"sec", 't', 1},
    {"second", 't', 1},
    {"min", 't', 60},
    {"minute", 't', 60},
    {"hr", 't', 3600},
    {"hour", 't', 3600},
    {"day", 't', 86400},
    {"g", 'm', 1e-3},
    {"gram", 'm', 1e-3},
    {"kg", 'm', 1},
    {"kilogram", 'm', 1},
    {"lb", 'm', 0.45359237},
    {"pound", 'm', 0.45359237},
};

const Unit* findUnit(std::string_view name) {
    std::string lower(name);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    for (const bool plural : {false, true}) {
        if (plural && (lower.empty() || lower.back() != 's')) break;
        const std::string_view wanted(lower.data(), lower.size() - (plural ? 1 : 0));
        for (const Unit& unit : kUnits)
            if (unit.name == wanted) return &unit;
    }
    return nullptr;
}

} // namespace

std::string lengthText(double length, LengthMode mode, const UnitStyle& style) {
    const bool exact = std::abs(length) < kLongestExact; // false for what is no number, too
    switch (mode) {
    case LengthMode::kScientific: {
        std::string text = digits(length, std::chars_format::scientific, style.precision);
        std::replace(text.begin(), text.end(), 'e', 'E');
        return text;
    }
    case LengthMode::kEngineering:
        if (exact) return engineering(length, style);
        break;
    case LengthMode::kArchitectural:
        if (exact) return fractional(length, style, true);
        break;
    case LengthMode::kFractional:
        if (exact) return fractional(length, style, false);
        break;
    case LengthMode::kDecimal:
        break;
    }
    return decimal(length, style);
}

std::optional<double> lengthOfText(std::string_view text, LengthMode mode) {
    Scanner scanner(text);
    const bool negative = scanner.take('-');
    if (!negative) scanner.take('+');
    const bool plain = mode == LengthMode::kScientific || mode == LengthMode::kDecimal;
    const std::optional<double> length = plain ? scanner.number() : feetInchesOfText(scanner);
    scanner.skipBlanks();
    if (!length || !scanner.atEnd()) return std::nullopt;
    return negative ? -*length : *length;
}

std::string angleText(double radians, AngleMode mode, const UnitStyle& style) {
    constexpr double kTurn = 360;
    double degrees = std::fmod(radians * 180 / kPi, kTurn);
    if (!std::isfinite(degrees)) degrees = 0;
    if (degrees < 0) degrees += kTurn;
    // An angle that the precision would write as a whole turn is none.
    const auto inUnits = [&](double turn) {
        std::string text = decimal(degrees / kTurn * turn, style);
        return text == decimal(turn, style) ? decimal(0, style) : text;
    };
    switch (mode) {
    case AngleMode::kDegrees:
        return inUnits(kTurn);
    case AngleMode::kMinutes: {
        const std::string text = minutes(degrees, style.precision);
        return text == minutes(kTurn, style.precision) ? minutes(0, style.precision) : text;
    }
    case AngleMode::kGrads:
        return inUnits(400) + "g";
    case AngleMode::kRadians:
        return inUnits(2 * kPi) + "r";
    case AngleMode::kSurveyor:
        return surveyor(degrees, style.precision);
    }
    return {};
}

std::optional<double> angleOfText(std::string_view text, AngleMode mode) {
    Scanner scanner(text);
    const bool negative = scanner.take('-');
    if (!negative) scanner.take('+');
    const std::optional<double> number = mode == AngleMode::kSurveyor  ? surveyorOfText(scanner)
                                         : mode <= AngleMode::kMinutes ? minutesOfText(scanner)
                                                                       : scanner.number();
    if (!number) return std::nullopt;
    double radians = *number * kPi / 180;
    // A letter behind the number names the unit in any mode.
    if (scanner.take('G'))
        radians = *number * kPi / 200;
    else if (scanner.take('R') || mode == AngleMode::kRadians)
        radians = *number;
    else if (mode == AngleMode::kGrads)
        radians = *number * kPi / 200;
    scanner.skipBlanks();
    if (!scanner.atEnd()) return std::nullopt;
    return negative ? -radians : radians;
}

std::optional<double> unitFactor(std::string_view from, std::string_view to) {
    const Unit* const source = findUnit(from);
    const Unit* const target = findUnit(to);
    if (source == nullptr || target == nullptr || source->kind != target->kind) return std::nullopt;
    return source->size / target->size;
}

} // namespace lm::host::lisp
