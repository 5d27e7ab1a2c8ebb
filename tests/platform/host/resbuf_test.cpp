// SPDX-License-Identifier: MIT
#include "hostsupport.h"

#include "drawing/alloc.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using namespace lm::test;

TEST(HostRecord, HasTheLayoutThatModulesShare) {
    hst_resbufW record{};
    const auto offset = [&record](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&record);
    };
    EXPECT_EQ(40u, sizeof record);
    EXPECT_EQ(0, offset(&record.rbnext));
    EXPECT_EQ(8, offset(&record.restype));
    EXPECT_EQ(2u, sizeof record.restype);
    EXPECT_EQ(16, offset(&record.value));
    EXPECT_EQ(16, offset(&record.value.real));
    EXPECT_EQ(32, offset(&record.value.point[2]));
    EXPECT_EQ(16, offset(&record.value.int16));
    EXPECT_EQ(16, offset(&record.value.int32));
    EXPECT_EQ(16, offset(&record.value.text));
    EXPECT_EQ(24, offset(&record.value.name[1]));
    EXPECT_TRUE(std::is_trivial_v<hst_resbufW>);
}

TEST(HostRecord, HasTheTypeCodesThatModulesShare) {
    const int codes[] = {RTREAL, RTPOINT, RTSHORT, RTSTR, RTENAME, RTLONG, RTLB, RTLE, RTDOTE, RTNIL, RTT};
    const int expected[] = {5001, 5002, 5003, 5005, 5006, 5010, 5016, 5017, 5018, 5019, 5021};
    for (std::size_t i = 0; i < std::size(codes); ++i) EXPECT_EQ(expected[i], codes[i]);
    EXPECT_EQ(5100, RTNORM);
    EXPECT_EQ(-5001, RTERROR);
    EXPECT_EQ(-5002, RTCAN);
}

TEST(HostRecord, KnowsWhichCodesHoldText) {
    for (int code :
         {5005, 0, 1, 5, 8, 9, 100, 102, 105, 300, 309, 410, 430, 470, 999, 1000, 1001, 1003, 1005})
        EXPECT_TRUE(lm::host::isTextCode(static_cast<short>(code))) << code;
    for (int code :
         {10,   39,   40,   60,   70,   90,   99,   106,  210,  290,  310,  330,  360,  390,  420, 440, 1004,
          1010, 1040, 1070, 1071, 5001, 5002, 5003, 5006, 5010, 5016, 5017, 5018, 5019, 5021, -1,  -4})
        EXPECT_FALSE(lm::host::isTextCode(static_cast<short>(code))) << code;
}

TEST(HostRecord, CopiesAndReleasesWholeChains) {
    const std::size_t before = lm::drawing::liveBlocks();
    hst_resbufW* chain = textRecord("um", shortRecord(7, textRecord("três")));
    chain->rbnext->rbnext->restype = 1000;
    chain->rbnext->rbnext->rbnext = lm::host::newRecord(RTSTR);
    hst_resbufW* copy = lm::host::copyChain(chain);
    EXPECT_EQ("5005:um 5003:7 1000 5005:", told(copy));
    EXPECT_NE(chain->value.text, copy->value.text);
    EXPECT_EQ(CHostString(chain->rbnext->rbnext->value.text), CHostString(copy->rbnext->rbnext->value.text));
    EXPECT_EQ(nullptr, copy->rbnext->rbnext->rbnext->value.text) << "a missing text stays missing";
    lm::host::releaseChain(chain);
    lm::host::releaseChain(copy);
    lm::host::releaseChain(nullptr);
    EXPECT_EQ(nullptr, lm::host::copyChain(nullptr));
    EXPECT_EQ(before, lm::drawing::liveBlocks());
}

TEST(HostRecord, LeavesNothingBehindWhenACopyRunsOutOfMemory) {
    hst_resbufW* chain = textRecord("um", shortRecord(7, textRecord("dois")));
    const std::size_t before = lm::drawing::liveBlocks();
    lm::drawing::failAllocationAfter(2);
    EXPECT_THROW(lm::host::copyChain(chain), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
    EXPECT_EQ(before, lm::drawing::liveBlocks());
    lm::host::releaseChain(chain);
}

} // namespace
