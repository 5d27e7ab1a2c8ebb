// SPDX-License-Identifier: MIT
// _LMVIRTUAL: attributes that no drawn attribute holds, and the components of the virtual schematic.
#include "commands.h"
#include "tools.h"

#include "vocabulary/names.h"

namespace lmtools {

namespace {

using lm::host::CommandInput;

constexpr const char kInvisible[] = "Invisible (Yes or No)";

AttributeList virtualsOf(CICad& cad, OdDbObjectId id) {
    CEListaAtributos* list = nullptr;
    cad.SearchAttributesVirtual(RZID(id), list);
    return AttributeList(list != nullptr ? list : new CEListaAtributos());
}

/// A field ends where the separator stands, so neither tag nor value may hold one.
const std::string& checkedField(const std::string& text) {
    if (text.find('\f') != std::string::npos)
        fail(inQuotes(text.substr(0, text.find('\f'))) +
             "...: a virtual attribute can't hold a form feed, which separates its fields");
    return text;
}

std::vector<TagValue> askVirtualValues(CommandInput& input) {
    std::vector<TagValue> values;
    for (std::string tag = input.text("Tag"); !tag.empty(); tag = input.text("Tag")) {
        TagValue item{checkedField(tag), checkedField(input.text("Value of " + tag))};
        item.invisible = input.keyword(kInvisible, {"Yes", "No"}) == 0;
        values.push_back(item);
    }
    return values;
}

AttributeList listOf(const std::vector<TagValue>& values) {
    AttributeList list(new CEListaAtributos());
    for (const TagValue& item : values)
        list->AdicionarAtributo(
            new CEAtributo(wide(item.tag), OdString(), wide(item.value), OdDbObjectId(), item.invisible));
    return list;
}

void tellOne(CICad& cad, const std::string& name, OdDbObjectId id) {
    say(name + "  handle " + handleOf(id));
    const AttributeList list = virtualsOf(cad, id);
    for (int i = 0; i < list->GetSize(); ++i) {
        const CEAtributo& record = *list->GetAt(i);
        say("    " + utf8(record.GetTag()) + " = " + utf8(record.GetValor()) +
            (record.GetInvisivel() ? "  [invisible]" : ""));
    }
}

/// The name that an entry of the virtual schematic gives as its block's.
std::string blockOf(const OdDbXrecord& record) {
    const OdSmartPtr<OdResBuf> first = record.rbChain();
    const OdSmartPtr<OdResBuf> second = first.isNull() ? first : first->next();
    return !second.isNull() && second->restype() == 2 ? lm::drawing::utf8(second->getString()) : "";
}

void listAll(CICad& cad, CHostDatabase& drawing) {
    const OdSmartPtr<OdDbDictionary> root(drawing.getNamedObjectsDictionaryId().openObject());
    OdSmartPtr<OdDbObject> object;
    if (!root.isNull()) object = root->getAt(lm::names::ESQ_VIRTUAL_RZ, OdDb::kForRead);
    std::size_t count = 0;
    if (OdDbDictionary* const schematic = OdDbDictionary::cast(object.get())) {
        const OdSmartPtr<OdDbDictionaryIterator> walk = schematic->newIterator();
        for (; !walk->done(); walk->next()) {
            const OdSmartPtr<OdDbObject> entry = walk->getObject();
            const auto* record = OdDbXrecord::cast(entry.get());
            if (record == nullptr) continue;
            tellOne(cad, lm::drawing::utf8(walk->name()) + "  block " + blockOf(*record), walk->objectId());
            ++count;
        }
    }
    say(counted(count, "component") + " in the virtual schematic");
}

void list(OdEdCommandContext& context) {
    CICad cad;
    CommandInput& input = context.input();
    const lm::host::Answer answer = input.ask("Component, or empty for all");
    if (answer.isEmpty()) return listAll(cad, drawingOf(context));
    lm::host::AnswerList one{answer};
    OdEdCommandContext inner(context.database(), context.document(), &one);
    const OdDbObjectId id = askObject(inner, "Component");
    tellOne(cad, described(cad, id), id);
}

/// Asks for the key, the block's name, and tags with values and visibility.
void makeNew(OdEdCommandContext& context) {
    CHostDatabase& drawing = drawingOf(context);
    CommandInput& input = context.input();
    const std::string key = input.name("Key");
    if (virtualEntry(drawing, key).isValid())
        fail("the virtual schematic has a component " + inQuotes(key) + " already, expected a new key");
    const std::string block = input.name("Block");
    const std::vector<TagValue> values = askVirtualValues(input);
    CICad cad;
    const OdSmartPtr<OdDbXrecord> record(new OdDbXrecord, lm::drawing::kAttach);
    const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(1, OdString(lm::names::ESQ_VIRTUAL_RZ));
    chain->append(OdResBuf::newRb(2, OdString(wide(block))));
    record->setFromRbChain(chain);
    const OdSmartPtr<OdDbDictionary> schematic = cad.getNamedDic(lm::names::ESQ_VIRTUAL_RZ, &drawing);
    if (schematic.isNull()) fail("the drawing has no dictionary of named objects");
    const OdDbObjectId id = schematic->setAt(wide(key), record);
    cad.AtualizarAtributosVirtual(RZID(id), listOf(values).get(), false);
    say("made virtual component " + inQuotes(key) + " of block " + inQuotes(block) + " with " +
        counted(values.size(), "attribute"));
}

bool beginsWith(const RZString& text, const RZString& start) {
    return RZStringList{start}.startsWithAnyNoCase(text);
}

/// The attribute that a change of this tag will reach must be the one that is meant: the library takes the
/// first line that begins with the tag.
void checkReach(CICad& cad, OdDbObjectId id, const std::string& tag) {
    const AttributeList list = virtualsOf(cad, id);
    if (list->GetAtributo(wide(tag)) == nullptr)
        fail("no virtual attribute " + inQuotes(tag) + " on " + described(cad, id));
    std::string before = beginsWith(RZString("TVO_RZ_ATT_VIRTUAL"), wide(tag)) ? "the application id" : "";
    for (int i = 0; before.empty() && i < list->GetSize(); ++i) {
        const RZString other = list->GetAt(i)->GetTag();
        if (lm::system::compareNoCase(other.view(), wide(tag).view()) == 0) return;
        if (beginsWith(other, wide(tag))) before = narrow(other);
    }
    fail(inQuotes(tag) + " on " + described(cad, id) + " can't be set alone, since " + before +
         ", which begins alike, stands before it; Replace sets all of them");
}

/// Asks for the component, the tag, the value, and whether it is to be invisible (empty: as it is).
void set(OdEdCommandContext& context) {
    CICad cad;
    CommandInput& input = context.input();
    const OdDbObjectId id = askObject(context, "Component");
    const std::string tag = input.name("Tag");
    checkReach(cad, id, tag);
    const std::string value = checkedField(input.text("Value of " + tag));
    const int answer = input.keyword(kInvisible, {"Yes", "No"});
    const bool was = virtualsOf(cad, id)->GetAtributo(wide(tag))->GetInvisivel();
    cad.AtualizarAtributoVirtual(RZID(id), wide(tag), wide(value), answer < 0 ? was : answer == 0);
    say("set virtual attribute " + inQuotes(tag) + " of " + described(cad, id));
}

/// Asks for the component, whether it keeps its tag (empty: yes), and for all attributes that it is to have.
void replace(OdEdCommandContext& context) {
    const OdDbObjectId id = askObject(context, "Component");
    CommandInput& input = context.input();
    const bool keepTag = input.keyword("Keep the component's tag (Yes or No)", {"Yes", "No"}) != 1;
    const std::vector<TagValue> values = askVirtualValues(input);
    CICad cad;
    cad.AtualizarAtributosVirtual(RZID(id), listOf(values).get(), keepTag);
    const int count = virtualsOf(cad, id)->GetSize();
    say(described(cad, id) + " has " + counted(static_cast<std::size_t>(count), "virtual attribute") +
        " now");
}

void run(OdEdCommandContext& context) {
    drawingOf(context);
    switch (context.input().keyword("List, New, Set or Replace", {"List", "New", "Set", "Replace"})) {
    case 1:
        return makeNew(context);
    case 2:
        return set(context);
    case 3:
        return replace(context);
    default:
        return list(context);
    }
}

} // namespace

void addVirtualCommand(Commands& commands) {
    commands.emplace_back("_LMVIRTUAL", &run);
}

} // namespace lmtools
