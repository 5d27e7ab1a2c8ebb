// SPDX-License-Identifier: MIT
#include "dxf/upgradeview.h"

#include "dxf/write_fields.h"

#include <algorithm>

namespace lm::drawing {

namespace {

constexpr int kString = 1000, kApplication = 1001, kBrace = 1002, kLayer = 1003;
constexpr int kX = 1010, kY = 1020, kZ = 1030, kReal = 1040, kInteger = 1070;

/// Bits of a viewport's state (90).
enum ViewBits : int {
    kIconShown = 32,
    kIconAtOrigin = 64,
    kFastZoom = 128,
    kSnap = 256,
    kGrid = 512,
    kIsometric = 1024,
    kHidePlot = 2048,
    kAlways = 32768 // set in all viewports of R2000
};

struct View {
    double target[3] = {}, direction[3] = {};
    double twist = 0, height = 0, center[2] = {}, lens = 0, front = 0, back = 0;
    int mode = 0, circleZoom = 0, bits = kAlways;
    double snapAngle = 0, snapBase[2] = {}, snapSpacing[2] = {}, gridSpacing[2] = {};
    std::vector<const Node*> frozen;
};

/// Reads the groups of an MVIEW list in their fixed order.
class ViewReader {
public:
    ViewReader(const RecordNames& layers, const OutGroups& tail) : m_layers(layers), m_tail(tail) {}

    bool read(View& view) {
        if (!findList()) return false;
        constexpr int kVersion = 16;
        if (integer() != kVersion) return false;
        point(view.target);
        point(view.direction);
        view.twist = real();
        view.height = real();
        pair(view.center);
        view.lens = real();
        view.front = real();
        view.back = real();
        view.mode = integer();
        view.circleZoom = integer();
        flags(view);
        view.snapAngle = real();
        pair(view.snapBase);
        pair(view.snapSpacing);
        pair(view.gridSpacing);
        if (integer() != 0) view.bits |= kHidePlot;
        layers(view);
        return !m_bad;
    }

private:
    const OutGroup* at(std::size_t i) const { return i < m_tail.size() ? &m_tail[i] : nullptr; }

    bool findList() {
        bool inside = false;
        for (std::size_t i = 0; i < m_tail.size(); ++i) {
            if (m_tail[i].code == kApplication) inside = stripped(m_tail[i].raw()) == "ACAD";
            if (!inside || m_tail[i].code != kString || stripped(m_tail[i].raw()) != "MVIEW") continue;
            m_next = i + 2; // behind the brace
            return m_next < m_tail.size() && m_tail[i + 1].code == kBrace;
        }
        return false;
    }

    /// The next group, which must have this code.
    const OutGroup* take(int code) {
        const OutGroup* const group = at(m_next);
        if (group == nullptr || group->code != code) {
            m_bad = true;
            return nullptr;
        }
        ++m_next;
        return group;
    }
    double real(int code = kReal) {
        const OutGroup* const group = take(code);
        return group != nullptr ? realOf(*group) : 0;
    }
    int integer() {
        const OutGroup* const group = take(kInteger);
        return group != nullptr ? static_cast<int>(integerOf(*group)) : 0;
    }
    void pair(double (&values)[2]) {
        values[0] = real();
        values[1] = real();
    }
    void point(double (&values)[3]) {
        values[0] = real(kX);
        values[1] = real(kY);
        values[2] = real(kZ);
    }
    void flags(View& view) {
        if (integer() != 0) view.bits |= kFastZoom;
        const int icon = integer(); // 1 shows it, 2 puts it at the origin
        if ((icon & 1) != 0) view.bits |= kIconShown;
        if ((icon & 2) != 0) view.bits |= kIconAtOrigin;
        if (integer() != 0) view.bits |= kSnap;
        if (integer() != 0) view.bits |= kGrid;
        if (integer() != 0) view.bits |= kIsometric;
        constexpr int kPairShift = 12; // 0 left, 1 top, 2 right: two bits of the state
        view.bits |= (integer() & 3) << kPairShift;
    }
    void layers(View& view) {
        if (take(kBrace) == nullptr) return;
        for (const OutGroup* group = at(m_next); group != nullptr && group->code == kLayer;
             group = at(++m_next))
            if (const Node* layer = m_layers.find(textOf(*group))) view.frozen.push_back(layer);
    }

    const RecordNames& m_layers;
    const OutGroups& m_tail;
    std::size_t m_next = 0;
    bool m_bad = false;
};

void addPair(OutGroups& out, int code, const double* values) {
    out.push_back(OutGroup::real(code, values[0]));
    out.push_back(OutGroup::real(code + 10, values[1]));
}

void addPoint(OutGroups& out, int code, const double* values) {
    addPair(out, code, values);
    out.push_back(OutGroup::real(code + 20, values[2]));
}

void addGroups(OutGroups& out, const View& view) {
    addPair(out, 12, view.center);
    addPair(out, 13, view.snapBase);
    addPair(out, 14, view.snapSpacing);
    addPair(out, 15, view.gridSpacing);
    addPoint(out, 16, view.direction);
    addPoint(out, 17, view.target);
    out.push_back(OutGroup::real(42, view.lens));
    out.push_back(OutGroup::real(43, view.front));
    out.push_back(OutGroup::real(44, view.back));
    out.push_back(OutGroup::real(45, view.height));
    out.push_back(OutGroup::real(50, view.snapAngle));
    out.push_back(OutGroup::real(51, view.twist));
    out.push_back(OutGroup::integer(72, view.circleZoom));
    for (const Node* layer : view.frozen) out.push_back(OutGroup::handle(331, layer->handle));
    constexpr int kModeBits =
        31; // perspective, clipping, following: the low bits mean the same in both forms
    out.push_back(OutGroup::integer(90, view.bits | (view.mode & kModeBits)));
    out.push_back(OutGroup::ascii(1, ""));
    out.push_back(OutGroup::integer(281, 0));
}

} // namespace

void addView(const RecordNames& layers, OutGroups& body, const OutGroups& tail) {
    constexpr int kViewHeight = 45;
    if (std::any_of(body.begin(), body.end(), [](const OutGroup& g) { return g.code == kViewHeight; }))
        return;
    View view;
    if (ViewReader(layers, tail).read(view)) addGroups(body, view);
}

} // namespace lm::drawing
