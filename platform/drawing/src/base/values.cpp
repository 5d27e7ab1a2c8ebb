// SPDX-License-Identifier: MIT
// Handles, geometry and colours.
#include "drawing/color.h"
#include "drawing/geometry.h"
#include "drawing/handle.h"

OdDbHandle& OdDbHandle::operator=(const unsigned short* text) {
    constexpr int kDigits = 16;
    m_value = 0;
    if (text == nullptr || *text == 0) return *this;
    const unsigned short* at = text;
    while (*at == '0') ++at;
    unsigned long long value = 0;
    int digits = 0;
    for (; *at != 0; ++at, ++digits) {
        const unsigned unit = lm::system::toUpper(*at);
        const bool decimal = unit >= '0' && unit <= '9';
        if ((!decimal && (unit < 'A' || unit > 'F')) || digits == kDigits) return *this;
        value = value << 4 | (decimal ? unit - '0' : unit - 'A' + 10);
    }
    m_value = value;
    return *this;
}

OdString OdDbHandle::ascii() const {
    lm::WideChar units[17];
    int at = 16;
    units[at] = 0;
    unsigned long long rest = m_value;
    do {
        const unsigned digit = rest & 0xF;
        units[--at] = static_cast<lm::WideChar>(digit < 10 ? '0' + digit : 'A' + digit - 10);
        rest >>= 4;
    } while (rest != 0);
    return OdString(lm::WideView(units + at, static_cast<std::size_t>(16 - at)));
}

const OdGeVector3d OdGeVector3d::kXAxis(1, 0, 0);
const OdGeVector3d OdGeVector3d::kYAxis(0, 1, 0);
const OdGeVector3d OdGeVector3d::kZAxis(0, 0, 1);
const OdGePoint3d OdGePoint3d::kOrigin(0, 0, 0);

double OdGeVector3d::angleTo(const OdGeVector3d& v) const {
    const bool null = (x == 0 && y == 0 && z == 0) || (v.x == 0 && v.y == 0 && v.z == 0);
    return null ? 0 : std::atan2(crossProduct(v).length(), dotProduct(v));
}

OdGeMatrix3d::OdGeMatrix3d() : entry{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}} {}

OdGeMatrix3d OdGeMatrix3d::translation(const OdGeVector3d& by) {
    OdGeMatrix3d m;
    m.entry[0][3] = by.x;
    m.entry[1][3] = by.y;
    m.entry[2][3] = by.z;
    return m;
}

OdGeMatrix3d OdGeMatrix3d::rotationZ(double angle) {
    OdGeMatrix3d m;
    m.entry[0][0] = m.entry[1][1] = std::cos(angle);
    m.entry[1][0] = std::sin(angle);
    m.entry[0][1] = -m.entry[1][0];
    return m;
}

OdGeMatrix3d OdGeMatrix3d::scaling(const OdGeScale3d& by) {
    OdGeMatrix3d m;
    m.entry[0][0] = by.sx;
    m.entry[1][1] = by.sy;
    m.entry[2][2] = by.sz;
    return m;
}

OdGeMatrix3d OdGeMatrix3d::planeToWorld(const OdGeVector3d& normal) {
    const double length = normal.length();
    if (length == 0) return OdGeMatrix3d();
    const OdGeVector3d n = normal * (1 / length);
    constexpr double kNearWorldZ = 1.0 / 64;
    const bool nearZ = std::fabs(n.x) < kNearWorldZ && std::fabs(n.y) < kNearWorldZ;
    OdGeVector3d ax = (nearZ ? OdGeVector3d::kYAxis : OdGeVector3d::kZAxis).crossProduct(n);
    ax = ax * (1 / ax.length());
    const OdGeVector3d ay = n.crossProduct(ax);
    OdGeMatrix3d m;
    const OdGeVector3d columns[3] = {ax, ay, n};
    for (int i = 0; i < 3; ++i) {
        m.entry[0][i] = columns[i].x;
        m.entry[1][i] = columns[i].y;
        m.entry[2][i] = columns[i].z;
    }
    return m;
}

OdGeMatrix3d operator*(const OdGeMatrix3d& a, const OdGeMatrix3d& b) {
    OdGeMatrix3d m;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int i = 0; i < 4; ++i) sum += a.entry[row][i] * b.entry[i][column];
            m.entry[row][column] = sum;
        }
    return m;
}

OdGePoint3d operator*(const OdGeMatrix3d& m, const OdGePoint3d& p) {
    const auto row = [&](int i) {
        return m.entry[i][0] * p.x + m.entry[i][1] * p.y + m.entry[i][2] * p.z + m.entry[i][3];
    };
    return {row(0), row(1), row(2)};
}

OdGeVector3d operator*(const OdGeMatrix3d& m, const OdGeVector3d& v) {
    const auto row = [&](int i) { return m.entry[i][0] * v.x + m.entry[i][1] * v.y + m.entry[i][2] * v.z; };
    return {row(0), row(1), row(2)};
}

OdCmColor OdCmColor::fromIndex(int index) {
    OdCmColor color;
    color.m_index = static_cast<std::int16_t>(index);
    color.m_method = index == 0 ? kByBlock : index == 256 ? kByLayer : kByIndex;
    return color;
}

OdCmColor OdCmColor::fromRgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    OdCmColor color;
    color.m_method = kByColor;
    color.m_index = 0;
    color.m_rgb = static_cast<std::uint32_t>(red) << 16 | static_cast<std::uint32_t>(green) << 8 | blue;
    return color;
}
