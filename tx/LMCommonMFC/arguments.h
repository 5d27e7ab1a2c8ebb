// SPDX-License-Identifier: MIT
// Argument and result lists: what a function that is called by name reads and answers, and the small pieces
// of host state that such functions need.
//
//     RZString name;
//     if (!getAllArgs(name)) return returnBool(false);
//     CCListBuilder result;
//     result.add(name, RTSTR);
//     result.add(42);
//     result.retList();
//
// Everything here belongs to the host's main thread.
#pragma once

#include "export.h"
#include "text/cemap.h"
#include "text/rzstring.h"
#include "text/rzstringlist.h"

#include "drawing/geometry.h"
#include "host/resbuf.h"

#include <vector>

class CHostDatabase;

/// Builds a chain record by record. A plain value: a copy shares the records, and a builder that is dropped
/// without retList leaves its records to whoever took getList. Records come from odrxAlloc, all bytes 0
/// first, and texts from the C runtime, so that CHostAPI::relRb releases the chain.
class LM_COMMONMFC_API CCListBuilder {
public:
    CCListBuilder() = default;

    /// RTSHORT: only the low 16 bits are kept, so 70000 is stored as 4464.
    void add(int value);
    /// RTREAL.
    void add(double value);
    /// RTPOINT with z 0.
    void add(OdGePoint2d point);
    /// RTENAME with both words.
    void add(const unsigned long long name[2]);
    /// A record with a copy of the text up to its first 0 unit, and the given type; callers pass RTSTR.
    void add(RZString text, short type);
    /// Links the given record, which must be a single one: it becomes the tail, so the rest of a chain would
    /// be lost at the next add. Null adds nothing.
    void add(hst_resbufW* record);
    /// RTLB and RTLE around a nested list, RTDOTE between the halves of a dotted pair.
    void addListBegin();
    void addListEnd();
    void addDot();

    /// The first record; null while nothing was added.
    hst_resbufW* getList() const { return head; }
    /// Makes the chain the result of the call in progress; the host takes it over. Nil if nothing was added.
    /// Needs an active document.
    void retList();

    hst_resbufW* head = nullptr;
    hst_resbufW* tail = nullptr;
};

/// Readers of a chain. The index counts records from 0, nested ones and markers too; a negative one counts as
/// 0. Beyond the end, for a null list and for a type that a reader doesn't take, each gives its neutral
/// value.
LM_COMMONMFC_API hst_resbufW* getArg(hst_resbufW* list, int index);
/// Number of records, markers included.
LM_COMMONMFC_API int getArgCount(hst_resbufW* list);
/// RTLONG or RTSHORT, not RTREAL; else 0.
LM_COMMONMFC_API long getArgLong(hst_resbufW* list, int index);
/// RTREAL, RTLONG or RTSHORT; else 0.
LM_COMMONMFC_API double getArgDouble(hst_resbufW* list, int index);
/// x and y of an RTPOINT; else (0, 0).
LM_COMMONMFC_API OdGePoint2d getArgPoint(hst_resbufW* list, int index);
/// The record's text. The type isn't looked at: the caller must know that it is a text.
LM_COMMONMFC_API RZString getArgString(hst_resbufW* list, int index);

/// Read the arguments of the call in progress: true if the first records have the wanted types, and the
/// outputs are set; further records are ignored. On false the outputs keep their values. The host's list is
/// released on every path. They need an active document.
LM_COMMONMFC_API bool getAllArgs(int& value);                         // RTLONG or RTSHORT
LM_COMMONMFC_API bool getAllArgs(bool& value);                        // RTT or RTNIL; the output tells which
LM_COMMONMFC_API bool getAllArgs(RZString& text);                     // RTSTR
LM_COMMONMFC_API bool getAllArgs(RZString& first, RZString& second);  // two RTSTR
LM_COMMONMFC_API bool getAllArgs(RZString& text, OdGePoint2d& point); // RTSTR, RTPOINT

/// Make a value the result of the call in progress. They need an active document.
/// True or nil.
LM_COMMONMFC_API void returnBool(bool value);
/// A flat list of texts; nil for an empty list.
LM_COMMONMFC_API void returnList(RZStringList texts);
/// A pair of key and value for each entry, in map order, without markers around the whole; nil for null and
/// for an empty map.
LM_COMMONMFC_API void returnList(CEMap<RZString>* map);
/// For each map a nested list of its pairs, an empty one for an empty or null map; nil for null and for no
/// map.
LM_COMMONMFC_API void returnList(std::vector<CEMap<RZString>*>* maps);

/// The database that work goes to: the one of setDatabase if there is one, else that of the active document.
/// Null without either.
LM_COMMONMFC_API CHostDatabase* getDatabase();
/// Puts a database before that of the active document, unchecked and not owned, until the next call; null
/// removes it.
LM_COMMONMFC_API void setDatabase(CHostDatabase* database);

/// Opens one undo step of a database; one that is open is closed first, since they don't nest. Null is
/// ignored.
LM_COMMONMFC_API void undoBlockBegin(CHostDatabase* database);
/// Closes the open undo step; nothing without one.
LM_COMMONMFC_API void undoBlockEnd(CHostDatabase* database);
