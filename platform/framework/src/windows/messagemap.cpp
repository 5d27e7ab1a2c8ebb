// SPDX-License-Identifier: MIT
#include "framework/windows/messagemap.h"

#include "framework/values/cstring.h"

#include <map>
#include <mutex>

namespace lm::windows {

const MessageEntry* MessageMap::find(MessageEntry::Kind kind, UINT number, UINT id) const {
    const bool hasId = kind == MessageEntry::kControl || kind == MessageEntry::kCommand;
    for (const MessageMap* map = this; map != nullptr; map = map->m_base)
        for (const MessageEntry& entry : map->m_entries)
            if (entry.kind == kind && entry.number == number && (!hasId || entry.id == id)) return &entry;
    return nullptr;
}

} // namespace lm::windows

UINT RegisterWindowMessage(const unsigned short* name) {
    static std::mutex& mutex = *new std::mutex;
    static auto& numbers = *new std::map<CString, UINT>;
    CString folded(name);
    folded.MakeLower();
    const std::lock_guard lock(mutex);
    const UINT next = 0xC000 + static_cast<UINT>(numbers.size());
    return numbers.try_emplace(std::move(folded), next).first->second;
}

UINT RegisterWindowMessage(const char* name) {
    return RegisterWindowMessage(CString(QString::fromLatin1(name)));
}
