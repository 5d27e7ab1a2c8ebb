// SPDX-License-Identifier: MIT
#include "host/resbuf.h"

#include "drawing/alloc.h"
#include "system/wide.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace lm::host {

namespace {

struct CodeRange {
    short first, last;
};

constexpr CodeRange kTextCodes[] = {{0, 9},       {100, 102},   {105, 105},    {300, 309},
                                    {410, 419},   {430, 439},   {470, 479},    {999, 999},
                                    {1000, 1003}, {1005, 1005}, {RTSTR, RTSTR}};

unsigned short* copyText(const unsigned short* text) {
    const std::size_t bytes = (lm::system::wideLength(text) + 1) * sizeof(unsigned short);
    void* copy = std::malloc(bytes);
    if (copy == nullptr) throw std::bad_alloc();
    return static_cast<unsigned short*>(std::memcpy(copy, text, bytes));
}

} // namespace

bool isTextCode(short restype) noexcept {
    for (const CodeRange& range : kTextCodes)
        if (restype >= range.first && restype <= range.last) return true;
    return false;
}

hst_resbufW* newRecord(short restype) {
    void* block = odrxAlloc(sizeof(hst_resbufW));
    if (block == nullptr) throw std::bad_alloc();
    std::memset(block, 0, sizeof(hst_resbufW));
    hst_resbufW* record = static_cast<hst_resbufW*>(block);
    record->restype = restype;
    return record;
}

hst_resbufW* copyChain(const hst_resbufW* list) {
    hst_resbufW* head = nullptr;
    hst_resbufW** end = &head;
    try {
        for (const hst_resbufW* at = list; at != nullptr; at = at->rbnext) {
            *end = newRecord(at->restype);
            if (isTextCode(at->restype)) {
                if (at->value.text != nullptr) (*end)->value.text = copyText(at->value.text);
            } else {
                (*end)->value = at->value;
            }
            end = &(*end)->rbnext;
        }
    } catch (...) {
        releaseChain(head);
        throw;
    }
    return head;
}

void releaseChain(hst_resbufW* list) noexcept {
    while (list != nullptr) {
        hst_resbufW* next = list->rbnext;
        if (isTextCode(list->restype)) std::free(list->value.text);
        odrxFree(list);
        list = next;
    }
}

} // namespace lm::host
