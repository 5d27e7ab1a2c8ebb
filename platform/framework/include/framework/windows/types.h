// SPDX-License-Identifier: MIT
// The plain types of the window framework: numbers, handles, points and rectangles. Lengths are the toolkit's
// device-independent pixels.
#pragma once

#include "framework/windows/export.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>

using BYTE = unsigned char;
using WORD = unsigned short;
using UINT = unsigned int;
using DWORD = unsigned int;
using BOOL = int;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
/// A colour as 0x00BBGGRR.
using COLORREF = unsigned int;

namespace lm::windows {
class WindowBlock;
struct MessageCall;
} // namespace lm::windows

/// Stands for one window: the block that the framework keeps for a widget of the toolkit. It may outlive the
/// widget's life on the screen; IsWindow tells.
using HWND = lm::windows::WindowBlock*;

constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}
constexpr BYTE GetRValue(COLORREF colour) {
    return static_cast<BYTE>(colour);
}
constexpr BYTE GetGValue(COLORREF colour) {
    return static_cast<BYTE>(colour >> 8);
}
constexpr BYTE GetBValue(COLORREF colour) {
    return static_cast<BYTE>(colour >> 16);
}

/// The halves of a parameter, as signed or unsigned 16-bit numbers.
constexpr WORD LOWORD(std::uintptr_t value) {
    return static_cast<WORD>(value);
}
constexpr WORD HIWORD(std::uintptr_t value) {
    return static_cast<WORD>(value >> 16);
}
constexpr LPARAM MAKELPARAM(int low, int high) {
    return static_cast<LPARAM>(static_cast<DWORD>(static_cast<WORD>(low)) |
                               static_cast<DWORD>(static_cast<WORD>(high)) << 16);
}
constexpr WPARAM MAKEWPARAM(unsigned low, unsigned high) {
    return static_cast<WORD>(low) | static_cast<WPARAM>(static_cast<WORD>(high)) << 16;
}

struct CSize {
    int cx = 0;
    int cy = 0;

    CSize() = default;
    CSize(int width, int height) : cx(width), cy(height) {}
    explicit CSize(QSize size) : cx(size.width()), cy(size.height()) {}
    QSize toQSize() const { return {cx, cy}; }
    bool operator==(const CSize&) const = default;
};

struct CPoint {
    int x = 0;
    int y = 0;

    CPoint() = default;
    CPoint(int left, int top) : x(left), y(top) {}
    explicit CPoint(QPoint point) : x(point.x()), y(point.y()) {}
    /// The point in a mouse message's parameter: two signed halves.
    explicit CPoint(LPARAM parameter)
        : x(static_cast<short>(LOWORD(static_cast<std::uintptr_t>(parameter)))),
          y(static_cast<short>(HIWORD(static_cast<std::uintptr_t>(parameter)))) {}
    QPoint toQPoint() const { return {x, y}; }
    void Offset(int dx, int dy) {
        x += dx;
        y += dy;
    }
    bool operator==(const CPoint&) const = default;
};

/// A rectangle whose right and bottom edges lie just outside it.
struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    CRect() = default;
    CRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}
    explicit CRect(const QRect& rect)
        : left(rect.x()), top(rect.y()), right(rect.x() + rect.width()), bottom(rect.y() + rect.height()) {}
    QRect toQRect() const { return {left, top, Width(), Height()}; }

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    CPoint TopLeft() const { return {left, top}; }
    CPoint BottomRight() const { return {right, bottom}; }
    CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }
    bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    bool PtInRect(CPoint point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    void SetRect(int l, int t, int r, int b) { *this = CRect(l, t, r, b); }
    void SetRectEmpty() { *this = CRect(); }
    void OffsetRect(int dx, int dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
    }
    void InflateRect(int dx, int dy) {
        left -= dx;
        right += dx;
        top -= dy;
        bottom += dy;
    }
    void DeflateRect(int dx, int dy) { InflateRect(-dx, -dy); }
    bool operator==(const CRect&) const = default;
};
