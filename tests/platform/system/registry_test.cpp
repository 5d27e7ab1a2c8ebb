// SPDX-License-Identifier: MIT
#include "system/registry.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::system;

struct Registry : testing::Test {
    ~Registry() override { clearRegistry(); }
};

std::optional<std::string> machine(const char* key, const char* name) {
    return registryValue(RegistryRoot::kMachine, widen(key), widen(name));
}

TEST_F(Registry, IsEmptyUntilItIsFilledAndAfterItIsCleared) {
    EXPECT_EQ(machine("Software", "Name"), std::nullopt);
    EXPECT_EQ(machine("", ""), std::nullopt);
    setRegistryValue(RegistryRoot::kMachine, widen("Software"), widen("Name"), "bytes");
    EXPECT_EQ(machine("Software", "Name"), "bytes");
    clearRegistry();
    EXPECT_EQ(machine("Software", "Name"), std::nullopt);
}

TEST_F(Registry, GoesByRootKeyAndNameWithoutRegardToCase) {
    setRegistryValue(RegistryRoot::kMachine, widen("Software\\A"), widen("Name"), "1");
    setRegistryValue(RegistryRoot::kMachine, widen("Software\\A"), widen(""), "own");
    setRegistryValue(RegistryRoot::kUser, widen("Software\\A"), widen("Name"), "2");
    EXPECT_EQ(machine("SOFTWARE\\a", "nAME"), "1");
    EXPECT_EQ(machine("Software\\A", ""), "own");
    EXPECT_EQ(registryValue(RegistryRoot::kUser, widen("Software\\A"), widen("Name")), "2");
    EXPECT_EQ(registryValue(RegistryRoot::kUser, widen("Software\\A"), {}), std::nullopt);
    EXPECT_EQ(machine("Software", "A"), std::nullopt);
    EXPECT_EQ(machine("Software\\A", "Other"), std::nullopt);
    setRegistryValue(RegistryRoot::kMachine, widen("software\\a"), widen("NAME"), "3");
    EXPECT_EQ(machine("Software\\A", "Name"), "3");
}

TEST_F(Registry, HoldsTextsByTheirUnitsWithAZeroBehind) {
    const lm::WideChar text[] = {'a', 0x03A9};
    setRegistryText(RegistryRoot::kMachine, widen("K"), widen("N"), {text, 2});
    EXPECT_EQ(machine("K", "N"), std::string("a\0\xA9\x03\0\0", 6));
    setRegistryText(RegistryRoot::kMachine, widen("K"), widen("N"), {});
    EXPECT_EQ(machine("K", "N"), std::string("\0\0", 2));
}

} // namespace
