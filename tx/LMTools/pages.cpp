// SPDX-License-Identifier: MIT
#include "pages.h"

namespace lmtools {

namespace {

constexpr char kStampEnding[] = "$SELO";
constexpr const char* kCompanions[] = {"$DE", "$FORMATO", kStampEnding};

} // namespace

bool canBePage(const RZString& layer) {
    if (layer == RZString("0") || layer == RZString(kCarrierLayer)) return false;
    for (const char* const ending : kCompanions)
        if (layer.view().ends_with(RZString(ending).view())) return false;
    return true;
}

RZString headOf(const RZString& page) {
    return RZString(page.view().substr(0, page.view().find(lm::WideChar{'$'})));
}

std::vector<RZString> companionsOf(const RZString& page) {
    std::vector<RZString> names;
    for (const char* const ending : kCompanions) names.push_back(headOf(page) + ending);
    return names;
}

RZString stampLayerOf(const RZString& page) {
    return headOf(page) + kStampEnding;
}

} // namespace lmtools
