// SPDX-License-Identifier: MIT
// The list of attribute records: look-ups that ignore case, look-ups by role, and who frees what.
#include "cad/celistaatributos.h"

#include "ce_attributes.h"

#include "drawing/alloc.h"
#include "framework/values/carray.h"
#include "host/hoststring.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <type_traits>
#include <vector>

namespace {

/// Blocks in the order in which they were freed, while a test asks for it.
std::vector<void*>* freedBlocks = nullptr;

} // namespace

// Stands before the shared function of this name, so that a test sees the order in which records are freed.
__attribute__((visibility("default"))) void odrxFree(void* block) noexcept {
    using Free = void (*)(void*);
    static const Free next = reinterpret_cast<Free>(dlsym(RTLD_NEXT, "_Z8odrxFreePv"));
    if (freedBlocks != nullptr) freedBlocks->push_back(block);
    next(block);
}

namespace {

using lm::tests::makeAttribute;
using lm::tests::Records;

struct Role {
    const char* role;
    CEAtributo* (CEListaAtributos::*get)();
    void (CEListaAtributos::*remove)();
    std::vector<const char*> tags; // every spelling that plays the role
};

const std::vector<Role>& roles() {
    using L = CEListaAtributos;
    static const std::vector<Role> table = {
        {"cable", &L::GetAtributoCabo, &L::RemoveAttributeCabo, {"CABO", "CABLE", "cabo", "Cable"}},
        {"number",
         &L::GetAtributoNumber,
         &L::RemoveAttributeNumber,
         {"NUMERO", "NUMBER", "numero", "Number"}},
        {"pin", &L::GetAtributoPin, &L::RemoveAttributePin, {"ID_PINO", "ID_PIN", "id_pino", "Id_Pin"}},
        {"contact position",
         &L::GetAtributoPosCtt,
         &L::RemoveAttributePosCtt,
         {"POSICAO_CTT", "POSITION_CTT", "POSICION_CTT", "posicion_ctt"}},
        {"strip", &L::GetAtributoStrip, &L::RemoveAttributeStrip, {"REGUA", "STRIP", "REGLETA", "regleta"}},
        {"tag", &L::GetAtributoTag, &L::RemoveAttributeTag, {"RELACAO", "TAG", "ETIQUETA", "Etiqueta"}},
    };
    return table;
}

TEST(AttributeList, StartsEmpty) {
    CEListaAtributos list;
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_EQ(list.GetAtributo("TAG"), nullptr);
}

TEST(AttributeList, IsThePointerArrayAndNothingMore) {
    using Base = CArray<CEAtributo*, CEAtributo*>;
    static_assert(std::is_base_of_v<Base, CEListaAtributos>);
    EXPECT_EQ(sizeof(CEListaAtributos), sizeof(Base));
}

TEST(AttributeList, AppendsAndGivesTheRecordBack) {
    Records made;
    CEListaAtributos list;
    CEAtributo* first = made("TAG", "1");
    CEAtributo* second = made("TAG", "2");
    EXPECT_EQ(list.AdicionarAtributo(first), first);
    EXPECT_EQ(list.AdicionarAtributo(second), second);
    ASSERT_EQ(list.GetSize(), 2);
    EXPECT_EQ(list.GetAt(0), first);
    EXPECT_EQ(list[1], second);
    EXPECT_EQ(list.GetUpperBound(), 1);
}

TEST(AttributeList, FindsTheFirstRecordOfATagIgnoringCase) {
    Records made;
    CEListaAtributos list;
    CEAtributo* lower = list.AdicionarAtributo(made("tag", "1"));
    list.AdicionarAtributo(made("TAG", "2"));
    CEAtributo* accented = list.AdicionarAtributo(made("POSI\xC7\xC3O", "3"));
    EXPECT_EQ(list.GetAtributo("TAG"), lower);
    EXPECT_EQ(list.GetAtributo("tag"), lower);
    EXPECT_EQ(list.GetAtributo("posi\xE7\xE3o"), accented);
    EXPECT_EQ(list.GetAtributo("TA"), nullptr);
    EXPECT_EQ(list.GetAtributo("TAG1"), nullptr);
    EXPECT_EQ(list.GetAtributo(""), nullptr);
}

TEST(AttributeList, ComparesTagsInFullAndNotInNarrowForm) {
    const unsigned short omega[] = {0x03A9, 0};
    const unsigned short delta[] = {0x0394, 0};
    CEAtributo* record = new CEAtributo(OdString(omega), OdString(), OdString(), OdDbObjectId(), false);
    CEListaAtributos list;
    list.AdicionarAtributo(record);
    EXPECT_EQ(list.GetAtributo(RZString(static_cast<const unsigned short*>(omega))), record);
    EXPECT_EQ(list.GetAtributo(RZString(static_cast<const unsigned short*>(delta))), nullptr);
    EXPECT_EQ(list.GetAtributo("?"), nullptr);
    list.releaseAllAttributes();
}

TEST(AttributeList, TakesOutTheFirstRecordOfATagAndKeepsItAlive) {
    Records made;
    CEListaAtributos list;
    CEAtributo* first = list.AdicionarAtributo(made("Tag", "1"));
    CEAtributo* other = list.AdicionarAtributo(made("CABO", "2"));
    CEAtributo* second = list.AdicionarAtributo(made("TAG", "3"));
    list.RemoveAttribute("tAG");
    ASSERT_EQ(list.GetSize(), 2);
    EXPECT_EQ(list.GetAt(0), other);
    EXPECT_EQ(list.GetAt(1), second);
    EXPECT_EQ(first->GetValor(), CHostString("1"));
}

TEST(AttributeList, IgnoresTheRemovalOfWhatIsNotThere) {
    Records made;
    CEListaAtributos list;
    list.RemoveAttribute("TAG");
    EXPECT_TRUE(list.IsEmpty());
    list.AdicionarAtributo(made("TAG", "1"));
    list.RemoveAttribute("CABO");
    EXPECT_EQ(list.GetSize(), 1);
}

TEST(AttributeListRoles, FindTheFirstRecordByEverySpelling) {
    ASSERT_EQ(roles().size(), 6u);
    for (const Role& row : roles()) {
        for (const char* tag : row.tags) {
            SCOPED_TRACE(tag);
            Records made;
            CEListaAtributos list;
            list.AdicionarAtributo(made("OTHER", "0"));
            CEAtributo* first = list.AdicionarAtributo(made(tag, "1"));
            list.AdicionarAtributo(made(tag, "2"));
            for (const Role& other : roles())
                EXPECT_EQ((list.*other.get)(), &other == &row ? first : nullptr) << other.role;
        }
    }
}

TEST(AttributeListRoles, FollowTheOrderOfTheListAndNotOfTheLanguages) {
    Records made;
    CEListaAtributos list;
    CEAtributo* spanish = list.AdicionarAtributo(made("ETIQUETA", "1"));
    list.AdicionarAtributo(made("RELACAO", "2"));
    list.AdicionarAtributo(made("TAG", "3"));
    EXPECT_EQ(list.GetAtributoTag(), spanish);
}

TEST(AttributeListRoles, TakeOutEveryRecordOfTheRoleNeighboursIncluded) {
    for (const Role& row : roles()) {
        SCOPED_TRACE(row.role);
        Records made;
        CEListaAtributos list;
        std::vector<CEAtributo*> taken;
        for (const char* tag : row.tags) taken.push_back(list.AdicionarAtributo(made(tag, tag)));
        CEAtributo* kept = list.AdicionarAtributo(made("OTHER", "0"));
        taken.push_back(list.AdicionarAtributo(made(row.tags[0], row.tags[0])));
        (list.*row.remove)();
        ASSERT_EQ(list.GetSize(), 1);
        EXPECT_EQ(list.GetAt(0), kept);
        for (CEAtributo* record : taken) EXPECT_EQ(record->GetValor(), record->GetTag());
    }
}

TEST(AttributeListRoles, LeaveTheRecordsOfOtherRoles) {
    for (const Role& row : roles()) {
        Records made;
        CEListaAtributos list;
        for (const Role& other : roles()) list.AdicionarAtributo(made(other.tags[0], "1"));
        (list.*row.remove)();
        EXPECT_EQ(list.GetSize(), static_cast<int>(roles().size()) - 1) << row.role;
        for (const Role& other : roles())
            EXPECT_EQ((list.*other.get)() == nullptr, &other == &row) << row.role << ", " << other.role;
    }
}

TEST(AttributeListRoles, FindAndTakeNothingInAnEmptyList) {
    for (const Role& row : roles()) {
        SCOPED_TRACE(row.role);
        CEListaAtributos list;
        EXPECT_EQ((list.*row.get)(), nullptr);
        (list.*row.remove)();
        EXPECT_TRUE(list.IsEmpty());
    }
}

TEST(AttributeListRoles, TakeThreePinsAndLeaveThemAlive) {
    Records made;
    CEListaAtributos list;
    CEAtributo* pins[] = {made("ID_PINO", "1"), made("ID_PIN", "2"), made("id_pin", "3")};
    for (CEAtributo* pin : pins) list.AdicionarAtributo(pin);
    list.RemoveAttributePin();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(pins[0]->GetValor(), CHostString("1"));
    EXPECT_EQ(pins[1]->GetValor(), CHostString("2"));
    EXPECT_EQ(pins[2]->GetValor(), CHostString("3"));
}

TEST(AttributeListRelease, DeletesTheRecordsAndTheMemoryOfTheArray) {
    const std::size_t before = lm::drawing::liveBlocks();
    CEListaAtributos* list = new CEListaAtributos;
    for (int i = 0; i < 5; ++i) list->AdicionarAtributo(makeAttribute("TAG", "1"));
    EXPECT_GT(lm::drawing::liveBlocks(), before);
    list->releaseAllAttributes();
    EXPECT_EQ(list->GetSize(), 0);
    EXPECT_EQ(list->GetData(), nullptr);
    delete list;
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(AttributeListRelease, GoesFromTheLastRecordToTheFirst) {
    CEListaAtributos list;
    std::vector<void*> records;
    for (const char* value : {"1", "2", "3"})
        records.push_back(list.AdicionarAtributo(makeAttribute("TAG", value)));
    std::vector<void*> freed;
    freedBlocks = &freed;
    list.releaseAllAttributes();
    freedBlocks = nullptr;
    std::vector<void*> order;
    for (void* block : freed)
        for (void* record : records)
            if (block == record) order.push_back(block);
    EXPECT_EQ(order, std::vector<void*>(records.rbegin(), records.rend()));
}

TEST(AttributeListRelease, KeepsTheSpareMemoryOfAnEmptyList) {
    Records made;
    CEListaAtributos list;
    list.AdicionarAtributo(made("TAG", "1"));
    list.RemoveAttribute("TAG");
    ASSERT_TRUE(list.IsEmpty());
    CEAtributo** const memory = list.GetData();
    ASSERT_NE(memory, nullptr);
    list.releaseAllAttributes();
    EXPECT_EQ(list.GetData(), memory);
}

TEST(AttributeListRelease, PassesOverNullAndCanBeCalledAgain) {
    CEListaAtributos list;
    list.Add(nullptr);
    list.AdicionarAtributo(makeAttribute("TAG", "1"));
    list.Add(nullptr);
    list.releaseAllAttributes();
    EXPECT_TRUE(list.IsEmpty());
    list.releaseAllAttributes();
    EXPECT_TRUE(list.IsEmpty());
}

TEST(AttributeListRelease, LeavesAListThatCanBeUsedAgain) {
    CEListaAtributos list;
    list.AdicionarAtributo(makeAttribute("TAG", "1"));
    list.releaseAllAttributes();
    CEAtributo* again = list.AdicionarAtributo(makeAttribute("CABO", "2"));
    EXPECT_EQ(list.GetAtributoCabo(), again);
    list.releaseAllAttributes();
}

TEST(AttributeList, LeavesItsRecordsAliveWhenItEnds) {
    Records made;
    CEAtributo* record = made("TAG", "1");
    {
        CEListaAtributos list;
        list.AdicionarAtributo(record);
    }
    EXPECT_EQ(record->GetTag(), CHostString("TAG"));
    EXPECT_EQ(record->GetValor(), CHostString("1"));
}

TEST(AttributeList, EndsWholeThroughAPointerToItsRoot) {
    const std::size_t before = lm::drawing::liveBlocks();
    CObject* list = new CEListaAtributos;
    delete list;
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(AttributeList, RaisesForAnIndexOutside) {
    Records made;
    CEListaAtributos list;
    list.AdicionarAtributo(made("TAG", "1"));
    const CEListaAtributos& fixed = list;
    EXPECT_THROW(list.GetAt(1), CInvalidArgException);
    EXPECT_THROW(fixed.GetAt(-1), CInvalidArgException);
    EXPECT_THROW(list.ElementAt(1), CInvalidArgException);
    EXPECT_THROW(list[-1], CInvalidArgException);
    EXPECT_THROW(list.SetAt(1, nullptr), CInvalidArgException);
    EXPECT_THROW(list.RemoveAt(1), CInvalidArgException);
    EXPECT_EQ(list.GetSize(), 1);
}

} // namespace
