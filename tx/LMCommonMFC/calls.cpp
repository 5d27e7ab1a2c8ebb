// SPDX-License-Identifier: MIT
#include "calls.h"

#include "arguments.h"
#include "log.h"

#include "host/document.h"

#include <vector>

namespace lm::calls {

/// One RTSTR for each text, side by side. The texts are never released: a called function may have kept their
/// pointers. The leak checker knows this function by its name.
__attribute__((noinline)) std::vector<hst_resbufW> recordsLeftBehind(const RZStringList& texts) {
    std::vector<hst_resbufW> records;
    records.reserve(static_cast<std::size_t>(texts.count()));
    for (const RZString& text : texts) records.push_back(text);
    return records;
}

namespace {

void link(std::vector<hst_resbufW>& records) {
    for (std::size_t i = 1; i < records.size(); ++i) records[i - 1].rbnext = &records[i];
}

/// Releases a result; without a document where the called function left none active.
void release(hst_resbufW* result) {
    if (CHostDocument* const document = ACTIVE_DOCUMENT())
        document->getAPI()->relRb(result);
    else
        lm::host::releaseChain(result);
}

} // namespace

} // namespace lm::calls

hst_resbufW* rzInvoke2(RZStringList list) {
    return lm::log::guarded("rzInvoke2", [&]() -> hst_resbufW* {
        if (ACTIVE_DOCUMENT() == nullptr) return nullptr;
        std::vector<hst_resbufW> records = lm::calls::recordsLeftBehind(list);
        lm::calls::link(records);
        hst_resbufW* result = nullptr;
        ACTIVE_DOCUMENT()->getAPI()->invoke(records.data(), result);
        return result;
    });
}

bool rzInvokeBool(RZStringList list) {
    hst_resbufW* const result = rzInvoke2(list);
    const bool answer = result != nullptr && result->restype != RTNIL;
    lm::calls::release(result);
    return answer;
}

int rzInvokeInt(RZStringList list) {
    hst_resbufW* const result = rzInvoke2(list);
    const int answer = static_cast<int>(getArgLong(result, 0));
    lm::calls::release(result);
    return answer;
}

RZString rzInvokeStr(RZStringList list) {
    hst_resbufW* const result = rzInvoke2(list);
    if (result == nullptr || result->restype != RTSTR) return RZString(); // stays allocated; see the header
    const RZString answer = getArgString(result, 0);
    lm::calls::release(result);
    return answer;
}

void rzInvokeVoid(RZStringList list) {
    lm::log::guarded("rzInvokeVoid", [&] { lm::calls::release(rzInvoke2(list)); });
}

// All forms with texts are the same forwarder to the form with the list.
#define LM_DEFINE_CALLS(Result, name)                                                                        \
    Result name(RZString a) {                                                                                \
        return name(RZStringList{a});                                                                        \
    }                                                                                                        \
    Result name(RZString a, RZString b) {                                                                    \
        return name(RZStringList{a, b});                                                                     \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c) {                                                        \
        return name(RZStringList{a, b, c});                                                                  \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d) {                                            \
        return name(RZStringList{a, b, c, d});                                                               \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d, RZString e) {                                \
        return name(RZStringList{a, b, c, d, e});                                                            \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f) {                    \
        return name(RZStringList{a, b, c, d, e, f});                                                         \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f, RZString g) {        \
        return name(RZStringList{a, b, c, d, e, f, g});                                                      \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f, RZString g,          \
                RZString h) {                                                                                \
        return name(RZStringList{a, b, c, d, e, f, g, h});                                                   \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f, RZString g,          \
                RZString h, RZString i) {                                                                    \
        return name(RZStringList{a, b, c, d, e, f, g, h, i});                                                \
    }                                                                                                        \
    Result name(RZString a, RZString b, RZString c, RZString d, RZString e, RZString f, RZString g,          \
                RZString h, RZString i, RZString j) {                                                        \
        return name(RZStringList{a, b, c, d, e, f, g, h, i, j});                                             \
    }

LM_DEFINE_CALLS(hst_resbufW*, rzInvoke2)
LM_DEFINE_CALLS(bool, rzInvokeBool)
LM_DEFINE_CALLS(int, rzInvokeInt)
LM_DEFINE_CALLS(RZString, rzInvokeStr)
LM_DEFINE_CALLS(void, rzInvokeVoid)
