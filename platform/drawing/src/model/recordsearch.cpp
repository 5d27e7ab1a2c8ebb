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
    if (name.isEmpty()) return OdDbObjectId();
    DatabaseData& data = table.database()->data();
    const WideView wanted = name.view();
    const WideChar last = system::toLower(wanted.back());
    for (Node* node = table.objectId().node()->firstPart; node != nullptr; node = node->next) {
        const OdDbObject* const body = node->body != nullptr ? node->body : data.bodyOf(node);
        if (body == nullptr) continue;
        // Names that are made in numbers differ in their last sign, so that is looked at first.
        const WideView there = static_cast<const OdDbSymbolTableRecord*>(body)->getName().view();
        if (there.size() != wanted.size() || system::toLower(there.back()) != last) continue;
        if (node->isLive() && system::equalsNoCase(there, wanted)) return OdDbObjectId(node);
    }
    return OdDbObjectId();
}

} // namespace lm::drawing
