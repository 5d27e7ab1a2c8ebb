// SPDX-License-Identifier: MIT
#include "dxf/read.h"

#include "dxf/chainbuilder.h"
#include "dxf/place.h"
#include "dxf/resolver.h"

#include "drawing/blockreference.h"

#include <charconv>

namespace lm::drawing {

namespace {

constexpr int kSubclass = 100;
constexpr int kComment = 999;
constexpr int kFirstXData = 1000;
constexpr int kApplication = 1001;
constexpr std::string_view kXrecordMark = "AcDbXrecord";

/// What counts in place of a number that can't be read: its beginning where that is a number, else 0.
std::string takenFor(const Values& values, const Group& group) {
    bool bad = false;
    switch (valueTypeOf(group.code)) {
    case ValueType::kReal: {
        char digits[40];
        return {digits, std::to_chars(digits, digits + sizeof digits, values.real(group, bad)).ptr};
    }
    case ValueType::kInt16:
    case ValueType::kInt32:
    case ValueType::kInt64:
    case ValueType::kBool:
        return std::to_string(values.integer(group, bad));
    default:
        return "0";
    }
}

void reportBad(ReadContext& context, const Group& group) {
    const Source& source = context.values.source();
    Report& report = context.data.report;
    // Lines are counted from the start for each report, so only those that are kept are given one.
    const auto place = [&](Defect defect) {
        return report.count(defect) < Report::kKept ? source.placeOf(group.data) : 0;
    };
    if (context.bad)
        report.add({Defect::kBadNumber, context.node.handle, place(Defect::kBadNumber),
                    "group " + std::to_string(group.code) + ", found \"" +
                        (source.binary ? std::string("?") : std::string(group.raw().substr(0, 60))) +
                        "\", taken as " + takenFor(context.values, group)});
    if (context.badText)
        report.add({Defect::kBadText, context.node.handle, place(Defect::kBadText),
                    "group " + std::to_string(group.code)});
    context.bad = context.badText = false;
}

/// Tells whether the entry had an embedded object; its fields go into `embedded` unless that is null.
bool readFields(OdDbObject& object, const ClassSpec& spec, const Source& source, const Node& place,
                ReadContext& context, OdDbMText* embedded) {
    PlaceInEntry where;
    forEachGroup(source, place, [&](const Group& group) {
        if (group.code >= kFirstXData) return false;
        const bool field = where.isField(group);
        if (!field && !(where.isEmbedded() && embedded != nullptr)) return true;
        OdDbObject& target = field ? object : *embedded;
        const FieldSpec* const row = (field ? spec : mtextSpec()).find(group.code);
        if (row == nullptr) return true;
        row->read(target, group, context);
        if (context.bad || context.badText) reportBad(context, group);
        return true;
    });
    return where.isEmbedded();
}

void readXrecord(OdDbXrecord& record, const Source& source, const Node& node, const Values& values) {
    constexpr int kCloning = 280;
    ChainBuilder chain(values);
    bool inside = false;
    bool first = true;
    forEachGroup(source, node, [&](const Group& group) {
        if (group.code >= kFirstXData) return false;
        if (group.code == kComment) return true;
        if (!inside) {
            inside = group.code == kSubclass && stripped(group.raw()) == kXrecordMark;
            return true;
        }
        if (!first || group.code != kCloning) chain.add(group);
        first = false;
        return true;
    });
    record.setFromRbChain(chain.take());
}

} // namespace

void readBody(DatabaseData& data, Node& node) {
    const KindSpec& kind = specOf(node);
    OdSmartPtr<OdDbObject> object(kind.make(), kAttach);
    if (data.source != nullptr && node.length != 0) {
        const Source& source = *data.source;
        const Values values(source);
        ReadContext context{data, values, node};
        OdSmartPtr<OdDbMText> embedded;
        const bool mayEmbed = node.kind == kKindAttrib || node.kind == kKindAttdef;
        if (mayEmbed && hasEmbeddedObject(source, node))
            embedded = OdSmartPtr<OdDbMText>(new OdDbMText(), kAttach);
        // The words that the look-out went by may also stand in a text.
        if (!readFields(*object.get(), *kind.fields, source, node, context, embedded.get()))
            embedded.release();
        if (auto* attribute = OdDbAttribute::cast(object.get()); attribute != nullptr && !embedded.isNull())
            attribute->setMTextAttribute(embedded);
        if (auto* definition = OdDbAttributeDefinition::cast(object.get());
            definition != nullptr && !embedded.isNull())
            definition->setMTextAttributeDefinition(embedded);
        if (auto* record = OdDbXrecord::cast(object.get())) readXrecord(*record, source, node, values);
    }
    if (auto* entity = OdDbEntity::cast(object.get()))
        if (OdDbObjectId& layer = ObjectAccess::layerOf(*entity); layer.isNull())
            layer = OdDbObjectId(data.fixed.layerZero);
    node.body = object.get();
    ObjectAccess::setNode(*object.get(), &node);
    ObjectAccess::setRefs(*object.detach(), 0);
}

bool hasEmbeddedObject(const Source& source, const Node& node) {
    constexpr std::string_view kMark = "Embedded Object";
    return ::memmem(source.begin() + node.offset, node.length, kMark.data(), kMark.size()) != nullptr;
}

void readFieldsFrom(DatabaseData& data, Node& from, OdDbObject& object, const ClassSpec& spec) {
    if (data.source == nullptr) return;
    const Values values(*data.source);
    ReadContext context{data, values, from};
    readFields(object, spec, *data.source, from, context, nullptr);
}

void readXData(Node& node, const std::function<void(const OdString&, OdSmartPtr<OdResBuf>)>& take) {
    const DatabaseData& data = node.database()->data();
    if (data.source == nullptr || node.length == 0) return;
    const Values values(*data.source);
    ChainBuilder chain(values);
    OdString application;
    const auto flush = [&] {
        if (!chain.isEmpty()) take(application, chain.take());
    };
    forEachGroup(*data.source, node, [&](const Group& group) {
        if (group.code < kFirstXData) return true;
        if (group.code == kApplication) {
            flush();
            bool bad = false;
            application = values.sharedText(group, bad);
        } else if (chain.isEmpty()) {
            return true; // data before any application belongs to nobody
        }
        chain.add(group);
        return true;
    });
    flush();
}

OdSmartPtr<OdResBuf> readHeaderVariable(const DatabaseData& data, std::string_view name) {
    for (const HeaderVariable& variable : data.header) {
        if (variable.name.size() != name.size() + 1 || variable.name.substr(1) != name) continue;
        Node place;
        place.offset = variable.offset;
        place.length = variable.length;
        const Values values(*data.source);
        ChainBuilder chain(values);
        forEachGroup(*data.source, place, [&](const Group& group) {
            if (group.code != kComment) chain.add(group);
            return true;
        });
        return chain.take();
    }
    return {};
}

} // namespace lm::drawing
