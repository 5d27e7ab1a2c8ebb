// SPDX-License-Identifier: MIT
#include "tools.h"

#include <algorithm>
#include <charconv>

namespace lmtools {

namespace {

/// Patterns stand behind one another with ";" between them.
std::vector<OdString> patternsOf(std::string_view text) {
    std::vector<OdString> patterns;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(';'), text.size());
        if (end != 0) patterns.emplace_back(lm::WideView(lm::system::fromUtf8(text.substr(0, end))));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return patterns;
}

} // namespace

std::optional<Options> readOptions(lm::host::ToolContext& context,
                                   std::initializer_list<std::string_view> allowed) {
    Options options;
    const std::vector<std::string>& given = context.arguments;
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (std::find(allowed.begin(), allowed.end(), given[i]) == allowed.end()) {
            context.error("unknown argument \"" + given[i] + "\"");
            return std::nullopt;
        }
        const std::string& option = given[i];
        if (option == "--json") options.json = true;
        if (option == "--no-prompts") options.prompts = false;
        if (option == "--on-stamp-layer") options.onStampLayer = true;
        if (option == "--json" || option == "--no-prompts" || option == "--on-stamp-layer") continue;
        if (++i == given.size()) {
            context.error(option + (option == "--name" ? " needs patterns behind it, such as \"NA-*;NF-*\""
                                                       : " needs a name behind it"));
            return std::nullopt;
        }
        if (option == "--name") options.names = patternsOf(given[i]);
        if (option == "--stamp") options.stamp = given[i];
        if (option == "--tag") options.tag = given[i];
    }
    return options;
}

AttributeList attributesOf(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference, bool prompts) {
    CEListaAtributos* list = nullptr;
    cad.SearchAttributes(reference, list, prompts, false, RZString());
    return AttributeList(list != nullptr ? list : new CEListaAtributos());
}

void forEachReference(CHostDocument& document,
                      const std::function<void(const OdSmartPtr<OdDbBlockReference>&)>& visit) {
    const OdSmartPtr<OdDbBlockTableRecord> space(document.database()->getModelSpaceId().openObject());
    if (space.isNull()) return;
    const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
    for (; !walk->done(); walk->step()) {
        const OdSmartPtr<OdDbEntity> entity = walk->entity();
        if (OdDbBlockReference* const reference = OdDbBlockReference::cast(entity.get()))
            visit(OdSmartPtr<OdDbBlockReference>(reference));
    }
}

std::string decimal(double number) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    return std::string(digits, end.ptr);
}

std::string utf8(const CHostString& text) {
    return lm::system::toUtf8(text.view());
}

} // namespace lmtools
