// SPDX-License-Identifier: MIT
// The tools of this module, and what their listings share.
#pragma once

#include "cad/icad.h"

#include "host/jsonwriter.h"
#include "host/tools.h"

#include <functional>
#include <memory>
#include <optional>

namespace lmtools {

lm::host::Tool blocksTool();
lm::host::Tool componentsTool();
lm::host::Tool pagesTool();

/// Options of a listing: `--json`, and what the tool adds itself.
struct Options {
    bool json = false;
    bool prompts = true;
    std::optional<std::vector<OdString>> names; ///< patterns of `--name`
    std::optional<std::string> stamp, tag;      ///< a block and an attribute of it
    bool onStampLayer = false;                  ///< the block stands on the layer that a page has for it
};

/// Reads the arguments. `allowed` names the options that the tool takes. Nothing, after an error line, for
/// wrong ones.
std::optional<Options> readOptions(lm::host::ToolContext& context,
                                   std::initializer_list<std::string_view> allowed);

/// A list with its records.
struct FreeList {
    void operator()(CEListaAtributos* list) const {
        list->releaseAllAttributes();
        delete list;
    }
};
using AttributeList = std::unique_ptr<CEListaAtributos, FreeList>;

/// The attributes of a reference as the library's search reads them.
AttributeList attributesOf(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference, bool prompts);

/// Visits the references of model space in drawing order.
void forEachReference(CHostDocument& document,
                      const std::function<void(const OdSmartPtr<OdDbBlockReference>&)>& visit);

/// A number in its shortest decimal form.
std::string decimal(double number);
std::string utf8(const CHostString& text);

} // namespace lmtools
