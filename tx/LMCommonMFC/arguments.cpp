// SPDX-License-Identifier: MIT
#include "arguments.h"

#include "host/document.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <initializer_list>

namespace {

CHostAPI& api() {
    return *ACTIVE_DOCUMENT()->getAPI();
}

/// The arguments of the call in progress, released at the end.
class Arguments {
public:
    Arguments() : m_api(api()), m_list(m_api.getArgs()) {}
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() { m_api.relRb(m_list); }

    hst_resbufW* list() const { return m_list; }
    /// Whether the record at an index has one of these types.
    bool is(int index, std::initializer_list<short> types) const {
        const hst_resbufW* const record = getArg(m_list, index);
        if (record == nullptr) return false;
        for (const short type : types)
            if (record->restype == type) return true;
        return false;
    }

private:
    CHostAPI& m_api;
    hst_resbufW* m_list;
};

void addPairs(CCListBuilder& builder, const CEMap<RZString>& map) {
    for (const auto& [key, value] : map) {
        builder.addListBegin();
        builder.add(RZString(lm::WideView(key)), RTSTR);
        builder.add(value, RTSTR);
        builder.addListEnd();
    }
}

/// The database of setDatabase.
CHostDatabase* chosenDatabase = nullptr;

} // namespace

void CCListBuilder::add(int value) {
    hst_resbufW* const record = lm::host::newRecord(RTSHORT);
    record->value.int16 = static_cast<short>(value);
    add(record);
}

void CCListBuilder::add(double value) {
    hst_resbufW* const record = lm::host::newRecord(RTREAL);
    record->value.real = value;
    add(record);
}

void CCListBuilder::add(OdGePoint2d point) {
    hst_resbufW* const record = lm::host::newRecord(RTPOINT);
    record->value.point[0] = point.x;
    record->value.point[1] = point.y;
    add(record);
}

void CCListBuilder::add(const unsigned long long name[2]) {
    hst_resbufW* const record = lm::host::newRecord(RTENAME);
    std::memcpy(record->value.name, name, sizeof record->value.name);
    add(record);
}

void CCListBuilder::add(RZString text, short type) {
    const hst_resbufW made = text;
    // Either of the two can fail for want of memory; the copy of the text then goes again.
    std::unique_ptr<unsigned short, void (*)(void*)> held(made.value.text, &std::free);
    hst_resbufW* const record = lm::host::newRecord(type);
    record->value = made.value;
    held.release();
    add(record);
}

void CCListBuilder::add(hst_resbufW* record) {
    if (record == nullptr) return;
    if (tail == nullptr)
        head = record;
    else
        tail->rbnext = record;
    tail = record;
}

void CCListBuilder::addListBegin() {
    add(lm::host::newRecord(RTLB));
}

void CCListBuilder::addListEnd() {
    add(lm::host::newRecord(RTLE));
}

void CCListBuilder::addDot() {
    add(lm::host::newRecord(RTDOTE));
}

void CCListBuilder::retList() {
    if (head == nullptr)
        api().retNil();
    else
        api().retList(head);
}

hst_resbufW* getArg(hst_resbufW* list, int index) {
    for (; list != nullptr && index > 0; --index) list = list->rbnext;
    return list;
}

int getArgCount(hst_resbufW* list) {
    int count = 0;
    for (; list != nullptr; list = list->rbnext) ++count;
    return count;
}

long getArgLong(hst_resbufW* list, int index) {
    const hst_resbufW* const record = getArg(list, index);
    if (record == nullptr) return 0;
    if (record->restype == RTLONG) return record->value.int32;
    return record->restype == RTSHORT ? record->value.int16 : 0;
}

double getArgDouble(hst_resbufW* list, int index) {
    const hst_resbufW* const record = getArg(list, index);
    if (record != nullptr && record->restype == RTREAL) return record->value.real;
    return static_cast<double>(getArgLong(list, index));
}

OdGePoint2d getArgPoint(hst_resbufW* list, int index) {
    const hst_resbufW* const record = getArg(list, index);
    if (record == nullptr || record->restype != RTPOINT) return {};
    return {record->value.point[0], record->value.point[1]};
}

RZString getArgString(hst_resbufW* list, int index) {
    const hst_resbufW* const record = getArg(list, index);
    return record == nullptr ? RZString() : RZString(record->value.text);
}

bool getAllArgs(int& value) {
    const Arguments arguments;
    if (!arguments.is(0, {RTLONG, RTSHORT})) return false;
    value = static_cast<int>(getArgLong(arguments.list(), 0));
    return true;
}

bool getAllArgs(bool& value) {
    const Arguments arguments;
    if (!arguments.is(0, {RTT, RTNIL})) return false;
    value = arguments.is(0, {RTT});
    return true;
}

bool getAllArgs(RZString& text) {
    const Arguments arguments;
    if (!arguments.is(0, {RTSTR})) return false;
    text = getArgString(arguments.list(), 0);
    return true;
}

bool getAllArgs(RZString& first, RZString& second) {
    const Arguments arguments;
    if (!arguments.is(0, {RTSTR}) || !arguments.is(1, {RTSTR})) return false;
    first = getArgString(arguments.list(), 0);
    second = getArgString(arguments.list(), 1);
    return true;
}

bool getAllArgs(RZString& text, OdGePoint2d& point) {
    const Arguments arguments;
    if (!arguments.is(0, {RTSTR}) || !arguments.is(1, {RTPOINT})) return false;
    text = getArgString(arguments.list(), 0);
    point = getArgPoint(arguments.list(), 1);
    return true;
}

void returnBool(bool value) {
    if (value)
        api().retT();
    else
        api().retNil();
}

void returnList(RZStringList texts) {
    CCListBuilder builder;
    for (const RZString& text : texts) builder.add(text, RTSTR);
    builder.retList();
}

void returnList(CEMap<RZString>* map) {
    CCListBuilder builder;
    if (map != nullptr) addPairs(builder, *map);
    builder.retList();
}

void returnList(std::vector<CEMap<RZString>*>* maps) {
    CCListBuilder builder;
    if (maps != nullptr) {
        for (const CEMap<RZString>* const map : *maps) {
            builder.addListBegin();
            if (map != nullptr) addPairs(builder, *map);
            builder.addListEnd();
        }
    }
    builder.retList();
}

CHostDatabase* getDatabase() {
    if (chosenDatabase != nullptr) return chosenDatabase;
    const CHostDocument* const document = ACTIVE_DOCUMENT();
    return document == nullptr ? nullptr : document->database();
}

void setDatabase(CHostDatabase* database) {
    chosenDatabase = database;
}

void undoBlockBegin(CHostDatabase* database) {
    if (database == nullptr) return;
    if (database->isUndoBlockStarted()) database->blockUndoRecording(false);
    database->startUndoRecord();
    database->blockUndoRecording(true);
}

void undoBlockEnd(CHostDatabase* database) {
    if (database != nullptr && database->isUndoBlockStarted()) database->blockUndoRecording(false);
}
