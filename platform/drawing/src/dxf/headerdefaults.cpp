// SPDX-License-Identifier: MIT
#include "dxf/headerdefaults.h"

namespace lm::drawing {

namespace {

/// A variable of one group with a number or a text.
struct Variable {
    const char* name;
    int code;
    double number;
    const char* text = nullptr;
};

/// A variable that is a point; two coordinates or three.
struct PointVariable {
    const char* name;
    double x, y, z;
    bool flat;
};

constexpr double kFar = 1e20; // a drawing without extents has them turned round

constexpr PointVariable kBounds[] = {{"$EXTMIN", kFar, kFar, kFar, false},
                                     {"$EXTMAX", -kFar, -kFar, -kFar, false},
                                     {"$LIMMIN", 0, 0, 0, true},
                                     {"$LIMMAX", 420, 297, 0, true}};

constexpr Variable kVariables[] = {{"$ORTHOMODE", 70, 0},
                                   {"$REGENMODE", 70, 1},
                                   {"$FILLMODE", 70, 1},
                                   {"$QTEXTMODE", 70, 0},
                                   {"$MIRRTEXT", 70, 0},
                                   {"$LTSCALE", 40, 1},
                                   {"$ATTMODE", 70, 1},
                                   {"$TEXTSIZE", 40, 2.5},
                                   {"$TRACEWID", 40, 1},
                                   {"$TEXTSTYLE", 7, 0, "Standard"},
                                   {"$CELTYPE", 6, 0, "ByLayer"},
                                   {"$CECOLOR", 62, 256},
                                   {"$CELTSCALE", 40, 1},
                                   {"$DISPSILH", 70, 0},
                                   {"$DIMSTYLE", 2, 0, "Standard"},
                                   {"$LUNITS", 70, 2},
                                   {"$LUPREC", 70, 4},
                                   {"$AUNITS", 70, 0},
                                   {"$AUPREC", 70, 0},
                                   {"$ELEVATION", 40, 0},
                                   {"$PELEVATION", 40, 0},
                                   {"$THICKNESS", 40, 0},
                                   {"$LIMCHECK", 70, 0},
                                   {"$ANGBASE", 50, 0},
                                   {"$ANGDIR", 70, 0},
                                   {"$PDMODE", 70, 0},
                                   {"$PDSIZE", 40, 0},
                                   {"$PLINEWID", 40, 0},
                                   {"$TILEMODE", 70, 1},
                                   {"$MAXACTVP", 70, 64},
                                   {"$UNITMODE", 70, 0},
                                   {"$VISRETAIN", 70, 1},
                                   {"$PLINEGEN", 70, 0},
                                   {"$PSLTSCALE", 70, 1},
                                   {"$CMLSTYLE", 2, 0, "Standard"},
                                   {"$CMLJUST", 70, 0},
                                   {"$CMLSCALE", 40, 20},
                                   {"$PROXYGRAPHICS", 70, 1},
                                   {"$MEASUREMENT", 70, 1},
                                   {"$CELWEIGHT", 370, -1},
                                   {"$LWDISPLAY", 290, 0},
                                   {"$INSUNITS", 70, 4},
                                   {"$PSTYLEMODE", 290, 1},
                                   {"$EXTNAMES", 290, 1}};

bool isReal(int code) {
    return valueTypeOf(code) == ValueType::kReal;
}

OutGroup valueOf(const Variable& variable) {
    if (variable.text != nullptr) return OutGroup::ascii(variable.code, variable.text);
    if (isReal(variable.code)) return OutGroup::real(variable.code, variable.number);
    return OutGroup::integer(variable.code, static_cast<long long>(variable.number));
}

} // namespace

OutGroups newDrawingHeader() {
    OutGroups groups;
    for (const PointVariable& point : kBounds) {
        groups.push_back(OutGroup::ascii(9, point.name));
        groups.push_back(OutGroup::real(10, point.x));
        groups.push_back(OutGroup::real(20, point.y));
        if (!point.flat) groups.push_back(OutGroup::real(30, point.z));
    }
    for (const Variable& variable : kVariables) {
        groups.push_back(OutGroup::ascii(9, variable.name));
        groups.push_back(valueOf(variable));
    }
    return groups;
}

} // namespace lm::drawing
