// SPDX-License-Identifier: MIT
// hst_resbufW: one typed record of an argument or result list, as host and modules hand them to each other.
//
// A chain is flat: a nested list is RTLB, its elements, RTLE on the same chain. Records on the heap come from
// odrxAlloc with every byte 0, texts from the C runtime's malloc; CHostAPI::relRb releases both.
#pragma once

#include "host/export.h"

#include <cstddef>

/// Type codes of hst_resbufW.
enum HostRecordType : short {
    RTREAL = 5001,  ///< one double
    RTPOINT = 5002, ///< three doubles
    RTSHORT = 5003, ///< signed 16-bit integer
    RTSTR = 5005,   ///< wide text, closed by a 0 unit
    RTENAME = 5006, ///< two unsigned 64-bit words: an entity name
    RTLONG = 5010,  ///< signed 32-bit integer
    RTLB = 5016,    ///< opens a nested list
    RTLE = 5017,    ///< closes a nested list
    RTDOTE = 5018,  ///< the dot of a dotted pair
    RTNIL = 5019,   ///< nil, the false result
    RTT = 5021      ///< true
};

/// Result codes of the host's operations. Callers test for success alone.
enum HostResultCode : int {
    RTNORM = 5100,   ///< done
    RTERROR = -5001, ///< failed: unknown function, nothing found
    RTCAN = -5002    ///< cancelled
};

/// A record. The layout is shared with every module and must not change.
struct hst_resbufW {
    hst_resbufW* rbnext;        ///< the next record; null ends the chain
    short restype;              ///< one of HostRecordType, or a group code for filters
    unsigned short reserved[3]; ///< not read
    /// The value, read by `restype`.
    union Value {
        double real;                ///< RTREAL
        double point[3];            ///< RTPOINT
        short int16;                ///< RTSHORT
        int int32;                  ///< RTLONG
        unsigned short* text;       ///< RTSTR and the text group codes; null counts as empty
        unsigned long long name[2]; ///< RTENAME
    } value;
};

static_assert(sizeof(hst_resbufW) == 40);
static_assert(offsetof(hst_resbufW, rbnext) == 0);
static_assert(offsetof(hst_resbufW, restype) == 8);
static_assert(offsetof(hst_resbufW, value) == 16);
static_assert(sizeof(hst_resbufW::Value) == 24);

namespace lm::host {

/// Whether a record of this code holds a text: RTSTR and the group codes that hold text or a handle's text.
LM_HOST_API bool isTextCode(short restype) noexcept;

/// A record of this code with every other byte 0. Raises std::bad_alloc without memory.
LM_HOST_API hst_resbufW* newRecord(short restype);

/// A copy of a chain with its texts; null for null. The caller owns it. Raises std::bad_alloc without memory.
LM_HOST_API hst_resbufW* copyChain(const hst_resbufW* list);

/// Releases the records of a chain by odrxFree and their texts by the C runtime; null is allowed.
LM_HOST_API void releaseChain(hst_resbufW* list) noexcept;

} // namespace lm::host
