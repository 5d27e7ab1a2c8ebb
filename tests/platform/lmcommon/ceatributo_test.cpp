// SPDX-License-Identifier: MIT
#include "lmcommon/ceatributo.h"

#include "host/database.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <type_traits>

namespace {

OdString od(const char* ascii) {
    return lm::drawing::odText(ascii);
}

TEST(Atributo, GivesWhatItWasMadeWith) {
    CHostDatabase database;
    const OdDbObjectId id = database.getModelSpaceId();
    const CEAtributo atributo(od("NUMERO"), od("Número?"), od("12"), id, true);
    EXPECT_EQ(CHostString(od("NUMERO")), atributo.GetTag());
    EXPECT_EQ(CHostString(od("Número?")), atributo.GetPrompt());
    EXPECT_EQ(CHostString(od("12")), atributo.GetValor());
    EXPECT_TRUE(atributo.GetInvisivel());
    EXPECT_EQ(id, atributo.GetObjectId());
    EXPECT_FALSE(CEAtributo(od(""), od(""), od(""), OdDbObjectId(), false).GetInvisivel());
    EXPECT_TRUE(CEAtributo(od(""), od(""), od(""), OdDbObjectId(), false).GetObjectId().isNull());
}

TEST(Atributo, KeepsEveryUnitAndSharesTheBuffer) {
    lm::WideString units;
    for (unsigned int unit = 1; unit <= 0xFFFF; ++unit) units.push_back(static_cast<lm::WideChar>(unit));
    const OdString text(units.c_str());
    const CEAtributo atributo(text, text, text, OdDbObjectId(), false);
    EXPECT_EQ(units, atributo.GetTag().view());
    EXPECT_EQ(text.c_str(), atributo.GetTag().c_str());
    EXPECT_EQ(text.c_str(), atributo.GetPrompt().c_str());
    EXPECT_EQ(text.c_str(), atributo.GetValor().c_str());
    const OdString back = atributo.GetValor();
    EXPECT_EQ(text.c_str(), back.c_str()) << "exact and without a copy on the way to the drawing";
}

TEST(Atributo, WidensNarrowText) {
    const CEAtributo atributo(OdString("\xE7\xE3o"), OdString(), OdString(), OdDbObjectId(), false);
    EXPECT_EQ((lm::WideString{0xE7, 0xE3, 'o'}), atributo.GetTag().view());
}

TEST(Atributo, TakesItsMemoryFromTheSharedAllocator) {
    const std::size_t before = lm::drawing::liveBlocks();
    auto* atributo = new CEAtributo(OdString(), OdString(), OdString(), OdDbObjectId(), false);
    EXPECT_EQ(before + 1, lm::drawing::liveBlocks());
    delete atributo;
    EXPECT_EQ(before, lm::drawing::liveBlocks());
    void* place = odrxAlloc(sizeof(CEAtributo));
    atributo = new (place) CEAtributo(od("A"), od("B"), od("C"), OdDbObjectId(), false);
    atributo->~CEAtributo();
    odrxFree(place);
    EXPECT_EQ(before, lm::drawing::liveBlocks());
}

TEST(Atributo, RaisesWithoutMemory) {
    lm::drawing::failAllocationAfter(0);
    EXPECT_THROW(new CEAtributo(OdString(), OdString(), OdString(), OdDbObjectId(), false), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
}

TEST(Atributo, StaysSmallAndWithoutVirtualOperations) {
    EXPECT_FALSE(std::is_polymorphic_v<CEAtributo>);
    EXPECT_LE(sizeof(CEAtributo), 40u);
}

TEST(Atributo, KnowsConnectionTags) {
    for (const char* tag : {"LIGACAO", "CONNECTION", "CONEXION", "ligacao", "Connection", "cOnExIoN"})
        EXPECT_TRUE(CEAtributo::isAttLigacao(tag)) << tag;
    for (const char* tag : {"", "LIGACAO1", " LIGACAO", "LIGACAO ", "CONEX", "LIGA\xC7\xC3O", "NUMERO"})
        EXPECT_FALSE(CEAtributo::isAttLigacao(tag)) << tag;
}

} // namespace
