// SPDX-License-Identifier: MIT
// OdCmColor: a colour by index (with by-block and by-layer) or as 24-bit red, green and blue.
#pragma once

#include "drawing/export.h"

#include <cstdint>

/// A colour. Index 0 is by-block, 1 to 255 the drawing world's table, 256 by-layer.
class LM_DRAWING_API OdCmColor {
public:
    enum Method : std::uint8_t { kByLayer = 192, kByBlock = 193, kByColor = 194, kByIndex = 195 };

    OdCmColor() = default;
    /// A colour by index; 0 and 256 set the by-block and by-layer methods.
    static OdCmColor fromIndex(int index);
    static OdCmColor fromRgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue);

    Method method() const { return m_method; }
    int colorIndex() const { return m_index; }
    std::uint32_t rgb() const { return m_rgb; } ///< 0x00RRGGBB, 0 unless the method is kByColor
    friend bool operator==(const OdCmColor&, const OdCmColor&) = default;

private:
    Method m_method = kByLayer;
    std::int16_t m_index = 256;
    std::uint32_t m_rgb = 0;
};
