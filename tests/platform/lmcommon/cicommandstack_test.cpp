// SPDX-License-Identifier: MIT
#include "lmcommon/cicommandstack.h"

#include "host/documentmanager.h"

#include <gtest/gtest.h>

namespace {

TEST(CommandStack, TakesEveryDocumentForAProjectUnlessToldOtherwise) {
    CICommandStack* stack = CICommandStack::instance();
    ASSERT_NE(nullptr, stack);
    EXPECT_EQ(stack, CICommandStack::instance());
    CHostDocumentManager& manager = lm::host::documentManager();
    CHostDocument* a = manager.newDocument();
    CHostDocument* b = manager.newDocument();
    EXPECT_TRUE(stack->verifyProjectOnLoad(a));
    stack->setProjectTest([a](CHostDocument* document) { return document == a; });
    EXPECT_TRUE(stack->verifyProjectOnLoad(a));
    EXPECT_FALSE(stack->verifyProjectOnLoad(b));
    stack->setProjectTest({});
    EXPECT_TRUE(stack->verifyProjectOnLoad(b));
    manager.closeAll();
}

TEST(CommandStack, SaysYesToNullWithoutAsking) {
    CICommandStack* stack = CICommandStack::instance();
    stack->setProjectTest([](CHostDocument*) {
        ADD_FAILURE() << "asked";
        return false;
    });
    const unsigned long before = stack->verifications();
    EXPECT_TRUE(stack->verifyProjectOnLoad(nullptr));
    EXPECT_EQ(before + 1, stack->verifications());
    stack->setProjectTest({});
}

} // namespace
