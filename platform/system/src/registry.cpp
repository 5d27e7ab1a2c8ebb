// SPDX-License-Identifier: MIT
#include "system/registry.h"

#include <map>
#include <mutex>
#include <tuple>

namespace lm::system {

namespace {

using Place = std::tuple<RegistryRoot, WideString, WideString>;

std::mutex g_access;
std::map<Place, std::string> g_values;

WideString lowered(WideView text) {
    WideString result;
    result.reserve(text.size());
    for (const WideChar unit : text) result += toLower(unit);
    return result;
}

Place placeOf(RegistryRoot root, WideView key, WideView name) {
    return {root, lowered(key), lowered(name)};
}

} // namespace

std::optional<std::string> registryValue(RegistryRoot root, WideView key, WideView name) {
    const Place place = placeOf(root, key, name);
    const std::lock_guard<std::mutex> lock(g_access);
    const auto at = g_values.find(place);
    return at == g_values.end() ? std::nullopt : std::optional<std::string>(at->second);
}

void setRegistryValue(RegistryRoot root, WideView key, WideView name, std::string bytes) {
    Place place = placeOf(root, key, name);
    const std::lock_guard<std::mutex> lock(g_access);
    g_values[std::move(place)] = std::move(bytes);
}

void setRegistryText(RegistryRoot root, WideView key, WideView name, WideView text) {
    std::string bytes;
    bytes.reserve(2 * text.size() + 2);
    for (const WideChar unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    bytes.append(2, '\0');
    setRegistryValue(root, key, name, std::move(bytes));
}

void clearRegistry() {
    const std::lock_guard<std::mutex> lock(g_access);
    g_values.clear();
}

} // namespace lm::system
