// SPDX-License-Identifier: MIT
// The record of a block: exact keys, shared attribute records, nothing freed.
#include "cad/cebloco.h"

#include "ce_attributes.h"

#include "drawing/alloc.h"
#include "drawing/database.h"
#include "host/hoststring.h"

#include <gtest/gtest.h>

namespace {

using lm::tests::Records;

TEST(Block, BeginsWithItsNameANullIdAndNoAttribute) {
    CEBloco block("BT-1");
    EXPECT_TRUE(block.GetNome() == RZString("BT-1"));
    EXPECT_TRUE(block.GetObjectId().isNull());
    EXPECT_EQ(block.GetAtributo("TAG"), nullptr);
    EXPECT_EQ(block.GetAtributo(""), nullptr);
}

TEST(Block, CountsItsEntries) {
    Records made;
    CEBloco block("B");
    EXPECT_EQ(block.AdicionarAtributo(made("TAG", "1")), 1);
    EXPECT_EQ(block.AdicionarAtributo(made("CABO", "2")), 2);
}

TEST(Block, KeepsTheSecondOfTwoRecordsWithOneTagAndItsCount) {
    Records made;
    CEBloco block("B");
    block.AdicionarAtributo(made("CABO", "0"));
    CEAtributo* first = made("TAG", "1");
    CEAtributo* second = made("TAG", "2");
    EXPECT_EQ(block.AdicionarAtributo(first), 2);
    EXPECT_EQ(block.AdicionarAtributo(second), 2);
    EXPECT_EQ(block.GetAtributo("TAG"), second);
    EXPECT_EQ(first->GetValor(), CHostString("1")) << "the dropped record must live on";
}

TEST(Block, TellsSpellingsApart) {
    Records made;
    CEBloco block("B");
    CEAtributo* upper = made("TAG", "1");
    CEAtributo* lower = made("tag", "2");
    EXPECT_EQ(block.AdicionarAtributo(upper), 1);
    EXPECT_EQ(block.AdicionarAtributo(lower), 2);
    EXPECT_EQ(block.GetAtributo("TAG"), upper);
    EXPECT_EQ(block.GetAtributo("tag"), lower);
    EXPECT_EQ(block.GetAtributo("Tag"), nullptr);
}

TEST(Block, MakesNoEntryForATagThatIsAskedForInVain) {
    Records made;
    CEBloco block("B");
    EXPECT_EQ(block.GetAtributo("NONE"), nullptr);
    EXPECT_EQ(block.AdicionarAtributo(made("TAG", "1")), 1);
}

TEST(Block, KeysAreTheNarrowFormOfTheTag) {
    const unsigned short omega[] = {0x03A9, 0};
    CEAtributo record(OdString(omega), OdString(), OdString(), OdDbObjectId(), false);
    CEBloco block("B");
    block.AdicionarAtributo(&record);
    EXPECT_EQ(block.GetAtributo("?"), &record);
    EXPECT_EQ(block.GetAtributo(RZString(static_cast<const unsigned short*>(omega))), nullptr);
}

TEST(Block, TakesTheIdThatItIsGiven) {
    OdSmartPtr<OdDbDatabase> database(new OdDbDatabase, lm::drawing::kAttach);
    CEBloco block("B");
    block.SetObjectId(RZID(database->getModelSpaceId()));
    EXPECT_TRUE(block.GetObjectId() == database->getModelSpaceId());
    block.SetObjectId(RZID());
    EXPECT_TRUE(block.GetObjectId().isNull());
}

TEST(Block, SharesItsRecordsWithItsCopies) {
    OdSmartPtr<OdDbDatabase> database(new OdDbDatabase, lm::drawing::kAttach);
    Records made;
    CEBloco block("B");
    block.SetObjectId(RZID(database->getModelSpaceId()));
    CEAtributo* record = made("TAG", "1");
    block.AdicionarAtributo(record);
    CEBloco copy(block);
    CEBloco assigned("other");
    assigned.AdicionarAtributo(made("CABO", "2"));
    assigned = block;
    for (CEBloco* each : {&copy, &assigned}) {
        EXPECT_TRUE(each->GetNome() == RZString("B"));
        EXPECT_TRUE(each->GetObjectId() == database->getModelSpaceId());
        EXPECT_EQ(each->GetAtributo("TAG"), record);
        EXPECT_EQ(each->GetAtributo("CABO"), nullptr);
    }
}

TEST(Block, HasEntriesOfItsOwnInACopy) {
    Records made;
    CEBloco block("B");
    block.AdicionarAtributo(made("TAG", "1"));
    CEBloco copy(block);
    EXPECT_EQ(copy.AdicionarAtributo(made("CABO", "2")), 2);
    EXPECT_EQ(block.GetAtributo("CABO"), nullptr);
}

TEST(Block, IsUnchangedByAssignmentToItself) {
    Records made;
    CEBloco block("B");
    CEAtributo* record = made("TAG", "1");
    block.AdicionarAtributo(record);
    CEBloco& same = block;
    block = same;
    EXPECT_TRUE(block.GetNome() == RZString("B"));
    EXPECT_EQ(block.GetAtributo("TAG"), record);
    EXPECT_EQ(block.AdicionarAtributo(made("CABO", "2")), 2);
}

TEST(Block, FreesNoRecordWhenItEnds) {
    Records made;
    CEAtributo* record = made("TAG", "1");
    {
        CEBloco block("B");
        block.AdicionarAtributo(record);
        const CEBloco copy(block);
    }
    EXPECT_EQ(record->GetValor(), CHostString("1"));
}

TEST(Block, LivesInTheMemoryThatModulesShare) {
    const std::size_t before = lm::drawing::liveBlocks();
    CEBloco* block = new CEBloco("B");
    EXPECT_EQ(lm::drawing::liveBlocks(), before + 1);
    delete block;
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(Block, OrdersItsKeysByLengthFirst) {
    const CEMapComparador before;
    const auto key = [](const char* text) {
        return std::basic_string<unsigned short>(static_cast<const unsigned short*>(RZString(text)));
    };
    EXPECT_TRUE(before(key("PIN"), key("CABO")));
    EXPECT_FALSE(before(key("CABO"), key("PIN")));
    EXPECT_TRUE(before(key("CABO"), key("NUMERO")));
    EXPECT_TRUE(before(key("Z"), key("AA")));
    EXPECT_FALSE(before(key("PIN"), key("PIN")));
}

} // namespace
