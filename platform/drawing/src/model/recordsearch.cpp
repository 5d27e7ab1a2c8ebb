// SPDX-License-Identifier: MIT
#include "drawing/recordsearch.h"

#include "model/databasedata.h"

namespace lm::drawing {

bool isValidName(WideView name, bool barAllowed) noexcept {
    constexpr std::size_t kLongest = 255;
    constexpr std::string_view kRefused = "<>/\\\":;?*,=`";
    if (name.empty() || name.size() > kLongest) return false;
    for (const WideChar unit : name) {
        const bool isRefused =
            unit < 0x80 && kRefused.find(static_cast<char>(unit)) != std::string_view::npos;
        if (unit < ' ' || isRefused || (unit == '|' && !barAllowed)) return false;
    }
    return true;
}

OdDbObjectId recordCalled(const OdDbSymbolTable& table, const OdString& name) {
    if (const OdDbObjectId id = table.getAt(name); !id.isNull() || !table.isDBRO()) return id;
    return OdDbObjectId(name.isEmpty() ? nullptr : ObjectAccess::findFolded(table, name.view()));
}

} // namespace lm::drawing
