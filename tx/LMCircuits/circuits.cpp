// SPDX-License-Identifier: MIT
#include "circuits.h"

#include "cad/icad.h"

#include "drawing/dictionary.h"
#include "drawing/resbuf.h"

#include <algorithm>
#include <optional>

namespace lmcircuits {

namespace {

const char kDictionary[] = "LM_LOCAL_CIRCUITS";
constexpr int kNumber = 70, kFirstText = 1, kPage = 8, kLower = 10, kUpper = 11;

OdGePoint3d inSpace(const OdGePoint2d& point) {
    return {point.x, point.y, 0};
}

OdSmartPtr<OdResBuf> pointRecord(int code, const OdGePoint2d& point) {
    const OdSmartPtr<OdResBuf> record = OdResBuf::newRb(code);
    record->setPoint3d(inSpace(point));
    return record;
}

OdSmartPtr<OdResBuf> chainOf(const Circuit& circuit) {
    const OdSmartPtr<OdResBuf> chain = OdResBuf::newRb(kNumber, circuit.number);
    OdSmartPtr<OdResBuf> last = chain;
    int code = kFirstText;
    for (const RZString& text : circuit.texts)
        last = last->append(OdResBuf::newRb(code++, OdString(text.view())));
    last = last->append(OdResBuf::newRb(kPage, OdString(circuit.page.view())));
    last = last->append(pointRecord(kLower, circuit.lower));
    last->append(pointRecord(kUpper, circuit.upper));
    return chain;
}

std::optional<Circuit> circuitOf(const OdDbXrecord& record) {
    Circuit circuit;
    OdGePoint2d corners[2];
    std::size_t seen = 0;
    for (OdSmartPtr<OdResBuf> at = record.rbChain(); !at.isNull(); at = at->next(), ++seen) {
        const int code = at->restype();
        const OdGePoint3d point = at->getPoint3d();
        if (code == kNumber) circuit.number = at->getInt32();
        if (code >= kFirstText && code < kFirstText + int(circuit.texts.size()))
            circuit.texts[std::size_t(code - kFirstText)] = RZString(at->getString());
        if (code == kPage) circuit.page = RZString(at->getString());
        if (code == kLower || code == kUpper) corners[code - kLower] = {point.x, point.y};
    }
    circuit.setRegion(corners[0], corners[1]);
    constexpr std::size_t kRecords = 7;
    const bool isWhole =
        seen == kRecords && circuit.number >= Circuit::kLeast && circuit.number <= Circuit::kMost;
    return isWhole ? std::optional(circuit) : std::nullopt;
}

OdSmartPtr<OdDbDictionary> openDictionary(const OdDbDatabase& drawing, OdDb::OpenMode mode) {
    const OdSmartPtr<OdDbDictionary> root(drawing.getNamedObjectsDictionaryId().openObject());
    if (root.isNull()) return {};
    const OdSmartPtr<OdDbObject> entry = root->getAt(kDictionary, mode);
    return OdSmartPtr<OdDbDictionary>(OdDbDictionary::cast(entry.get()));
}

/// The name of a circuit's entry.
OdString entryOf(int number) {
    return OdString(RZString(number, 0).view());
}

} // namespace

void Circuit::setRegion(const OdGePoint2d& corner, const OdGePoint2d& opposite) {
    lower = {std::min(corner.x, opposite.x), std::min(corner.y, opposite.y)};
    upper = {std::max(corner.x, opposite.x), std::max(corner.y, opposite.y)};
}

bool Circuit::holds(const RZString& onPage, const OdGePoint2d& point) const {
    return onPage == page && point.x >= lower.x && point.x <= upper.x && point.y >= lower.y &&
           point.y <= upper.y;
}

Circuits circuitsOf(const OdDbDatabase& drawing) {
    Circuits circuits;
    const OdSmartPtr<OdDbDictionary> dictionary = openDictionary(drawing, OdDb::kForRead);
    if (dictionary.isNull()) return circuits;
    const OdSmartPtr<OdDbDictionaryIterator> walk = dictionary->newIterator();
    for (; !walk->done(); walk->next()) {
        const OdSmartPtr<OdDbObject> entry = walk->getObject();
        const OdDbXrecord* const record = OdDbXrecord::cast(entry.get());
        if (record == nullptr) continue;
        const std::optional<Circuit> circuit = circuitOf(*record);
        // One that isn't entered under its number would be listed, and never dropped.
        if (circuit && walk->name() == entryOf(circuit->number)) circuits.emplace(circuit->number, *circuit);
    }
    return circuits;
}

void keep(OdDbDatabase& drawing, const Circuit& circuit) {
    const OdSmartPtr<OdDbDictionary> dictionary = CICad().getNamedDic(kDictionary, &drawing);
    if (dictionary.isNull()) return;
    const OdSmartPtr<OdDbXrecord> record(new OdDbXrecord, lm::drawing::kAttach);
    record->setFromRbChain(chainOf(circuit));
    dictionary->setAt(entryOf(circuit.number), record);
}

int drop(OdDbDatabase& drawing, const std::function<bool(const Circuit&)>& isMeant) {
    int dropped = 0;
    for (const auto& [number, circuit] : circuitsOf(drawing)) {
        if (!isMeant(circuit)) continue;
        openDictionary(drawing, OdDb::kForWrite)->remove(entryOf(number));
        ++dropped;
    }
    return dropped;
}

} // namespace lmcircuits
