// SPDX-License-Identifier: MIT
// _LMATTRIBUTES and _LMVISIBILITY: values and visibility of the attributes of placed symbols.
#include "commands.h"
#include "tools.h"

namespace lmtools {

namespace {

using References = std::vector<OdSmartPtr<OdDbBlockReference>>;

/// Asks for references, and for tags with values.
void attributes(OdEdCommandContext& context) {
    const References references = askReferences(context);
    const std::vector<TagValue> values = askValues(context.input());
    if (values.empty()) fail("no tag was given, expected at least one tag and its value");
    CICad cad;
    for (const OdSmartPtr<OdDbBlockReference>& reference : references) {
        context.checkTime();
        setValues(cad, reference, values);
    }
    say("set " + counted(values.size(), "attribute") + " on " +
        counted(references.size(), "block reference"));
}

/// Shows or hides the first attribute of a tag, ignoring case. Its value stays, blanks at its ends too, which
/// a search would have trimmed.
void setVisibility(CICad& cad, const OdSmartPtr<OdDbBlockReference>& reference, const std::string& tag,
                   bool invisible) {
    const AttributeList list = attributesOf(cad, reference, false);
    const CEAtributo* const found = list->GetAtributo(wide(tag));
    if (found == nullptr)
        fail("no attribute " + inQuotes(tag) + " on " + described(cad, reference->objectId()));
    const OdSmartPtr<OdDbAttribute> attribute(found->GetObjectId().openObject());
    cad.AtualizarAtributo(reference, RZString(attribute->tag()), RZString(attribute->textString()),
                          invisible);
}

/// Asks for references, whether to show or hide, and for tags until an empty one.
void visibility(OdEdCommandContext& context) {
    const References references = askReferences(context);
    lm::host::CommandInput& input = context.input();
    const int way = input.keyword("Show or Hide", {"Show", "Hide"});
    if (way < 0) fail("\"Show or Hide\" needs an answer that isn't empty");
    std::vector<std::string> tags;
    for (std::string tag = input.text("Tag"); !tag.empty(); tag = input.text("Tag")) tags.push_back(tag);
    if (tags.empty()) fail("no tag was given, expected at least one");
    CICad cad;
    for (const OdSmartPtr<OdDbBlockReference>& reference : references) {
        context.checkTime();
        for (const std::string& tag : tags) setVisibility(cad, reference, tag, way == 1);
    }
    say((way == 1 ? "hid " : "showed ") + counted(tags.size(), "attribute") + " on " +
        counted(references.size(), "block reference"));
}

} // namespace

void addAttributeCommands(Commands& commands) {
    commands.emplace_back("_LMATTRIBUTES", &attributes);
    commands.emplace_back("_LMVISIBILITY", &visibility);
}

} // namespace lmtools
