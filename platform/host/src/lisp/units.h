// SPDX-License-Identifier: MIT
// Lengths and angles as text, in the unit modes of drawings, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lm::host::lisp {

/// Ways of writing a length.
enum class LengthMode { kScientific = 1, kDecimal, kEngineering, kArchitectural, kFractional };
/// Ways of writing an angle.
enum class AngleMode { kDegrees, kMinutes, kGrads, kRadians, kSurveyor };

/// How zeros and parts are written.
struct UnitStyle {
    int precision = 4; ///< decimals, or the power of two of the smallest fraction
    int zeros = 0;     ///< 0 to 3: which zero feet and inches stand; 4: no zero before the point; 8: none at
                       ///< the end
    bool asEntered = false; ///< as it may be typed: 1'5-1/2" and not 1'-5 1/2"
};

/// A length as text.
std::string lengthText(double length, LengthMode mode, const UnitStyle& style);

/// The length that a whole text spells, nothing when it spells none. Feet, inches and fractions count in the
/// modes that write them.
std::optional<double> lengthOfText(std::string_view text, LengthMode mode);

/// An angle in radians as text; whole turns don't count.
std::string angleText(double radians, AngleMode mode, const UnitStyle& style);

/// The angle in radians that a whole text spells.
std::optional<double> angleOfText(std::string_view text, AngleMode mode);

/// How many `to` make one `from`; nothing for unknown units and units of different things.
std::optional<double> unitFactor(std::string_view from, std::string_view to);

} // namespace lm::host::lisp
