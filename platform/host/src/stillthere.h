// SPDX-License-Identifier: MIT
// Walks a list of listeners that may change while they are called.
#pragma once

#include <algorithm>
#include <exception>
#include <vector>

namespace lm::host {

/// Calls `visit` for each member of a copy of the list that is still in the list when its turn comes. An
/// exception doesn't keep the members behind from being visited; the first one is raised again at the end.
template<class T, class Visit>
void visitThoseStillThere(const std::vector<T*>& list, Visit visit) {
    const std::vector<T*> copy = list;
    std::exception_ptr first;
    for (T* member : copy) {
        if (std::find(list.begin(), list.end(), member) == list.end()) continue;
        try {
            visit(*member);
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}

/// Adds a member unless it is null or there already.
template<class T>
void addOnce(std::vector<T*>& list, T* member) {
    if (member != nullptr && std::find(list.begin(), list.end(), member) == list.end())
        list.push_back(member);
}

} // namespace lm::host
