// SPDX-License-Identifier: MIT
// The 58 lists, name by name: a lost, moved or respelled synonym would make symbols of one language
// unreadable.
#include "vocabulary/namelists.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

struct Expected {
    const char* constant;
    const RZStringList& list;
    std::vector<const char*> names;
};

const std::vector<Expected>& expectedLists() {
    static const std::vector<Expected> table = {
        {"ATT_ADDRESS", ATT_ADDRESS, {"ADDRESS", "END"}},
        {"ATT_BIT", ATT_BIT, {"BIT", "N"}},
        {"ATT_BLOCK", ATT_BLOCK, {"BLOCK", "BLOCO"}},
        {"ATT_CABLE", ATT_CABLE, {"CABLE", "CABO", "CABLE"}},
        {"ATT_CIRCUIT", ATT_CIRCUIT, {"CIRCUIT", "CIRCUITO"}},
        {"ATT_COMPONENTTYPE", ATT_COMPONENTTYPE, {"COMPONENTTYPE"}},
        {"ATT_HANDLE", ATT_HANDLE, {"HANDLE"}},
        {"ATT_POSITION", ATT_POSITION, {"POSITION", "POSICAO"}},
        {"ATT_CONNECTION", ATT_CONNECTION, {"CONNECTION", "LIGACAO", "CONEXION"}},
        {"ATT_CONNECTION_COUNT", ATT_CONNECTION_COUNT, {"CONNECTION_COUNT"}},
        {"ATT_CON", ATT_CON, {"CON", "LIG"}},
        {"ATT_CONNECTOR", ATT_CONNECTOR, {"CONNECTOR", "CONECTOR"}},
        {"ATT_CPOINT", ATT_CPOINT, {"CPOINT"}},
        {"ATT_DATE", ATT_DATE, {"DATE", "DATA"}},
        {"ATT_DESCRIPTION", ATT_DESCRIPTION, {"DESCRIPTION", "DESCRICAO", "TP_DESCRI"}},
        {"ATT_END", ATT_END, {"END", "FIM"}},
        {"ATT_DESCR_FULL", ATT_DESCR_FULL, {"DESCR_FULL"}},
        {"ATT_FUNCTION", ATT_FUNCTION, {"FUNCTION", "FUNCAO"}},
        {"ATT_INPUT", ATT_INPUT, {"INPUT", "ENTRADA"}},
        {"ATT_INVERTED", ATT_INVERTED, {"INVERTED", "INVERTIDO"}},
        {"ATT_JUMPER", ATT_JUMPER, {"JUMPER"}},
        {"ATT_KEY", ATT_KEY, {"KEY", "RZ_KEY"}},
        {"ATT_LAYER", ATT_LAYER, {"LAYER"}},
        {"ATT_LAYOUTPOSITIONX", ATT_LAYOUTPOSITIONX, {"LAYOUTPOSITIONX"}},
        {"ATT_LAYOUTPOSITIONY", ATT_LAYOUTPOSITIONY, {"LAYOUTPOSITIONY"}},
        {"ATT_LENGTH", ATT_LENGTH, {"LENGTH", "COMPRIMENTO"}},
        {"ATT_LIST", ATT_LIST, {"LIST", "RZ_LISTA"}},
        {"ATT_LOCAL", ATT_LOCAL, {"LOCAL", "PAINEL", "PANEL"}},
        {"ATT_MARKER", ATT_MARKER, {"MARKER", "ANILHA"}},
        {"ATT_NAME", ATT_NAME, {"NAME", "NOME"}},
        {"ATT_NUMBER", ATT_NUMBER, {"NUMBER", "NUMERO", "NUMERO"}},
        {"ATT_ORIENTATION", ATT_ORIENTATION, {"ORIENTATION", "ORIENTACAO"}},
        {"ATT_OUT_OF", ATT_OUT_OF, {"OUT_OF", "DE"}},
        {"ATT_PAGE", ATT_PAGE, {"PAGE", "PAGINA"}},
        {"ATT_GROUP", ATT_GROUP, {"GROUP", "GRUPO"}},
        {"ATT_PARENT", ATT_PARENT, {"PARENT"}},
        {"ATT_PATHWIRE", ATT_PATHWIRE, {"PATHWIRE", "CAMINHOFIO"}},
        {"ATT_POS_CTT_INS", ATT_POS_CTT_INS, {"POS_CTT_INS"}},
        {"ATT_POS_INS", ATT_POS_INS, {"POS_INS"}},
        {"ATT_RZ_PARAM_LENGTH", ATT_RZ_PARAM_LENGTH, {"RZ_PARAM_LENGTH"}},
        {"ATT_QTY", ATT_QTY, {"QTY", "QTD"}},
        {"ATT_SEG", ATT_SEG, {"SEG"}},
        {"ATT_SEGEND", ATT_SEGEND, {"SEGEND", "SEGFIM"}},
        {"ATT_SEGINI", ATT_SEGINI, {"SEGINI"}},
        {"ATT_SEQUENCE", ATT_SEQUENCE, {"SEQUENCE", "SEQUENCIA"}},
        {"ATT_INI", ATT_INI, {"INI"}},
        {"ATT_STRIP", ATT_STRIP, {"STRIP", "REGUA", "REGLETA"}},
        {"ATT_TAG", ATT_TAG, {"TAG", "RELACAO"}},
        {"ATT_TAG_INS", ATT_TAG_INS, {"TAG_INS"}},
        {"ATT_TAG_REL", ATT_TAG_REL, {"TAG", "REL"}},
        {"ATT_TIME", ATT_TIME, {"TIME", "HORA"}},
        {"ATT_TOTAL", ATT_TOTAL, {"TOTAL"}},
        {"ATT_TRANSITION_LENGTH", ATT_TRANSITION_LENGTH, {"TRANSITION_LENGTH"}},
        {"ATT_TYPE_LIST", ATT_TYPE_LIST, {"TYPE_LIST", "RZ_LISTA_TIPO"}},
        {"ATT_VARIABLE", ATT_VARIABLE, {"VARIABLE", "VARIAVEL"}},
        {"ATT_WAY", ATT_WAY, {"WAY", "VIA", "SEGMENTO"}},
        {"ATT_WIRE", ATT_WIRE, {"WIRE", "CABO", "FIO", "ALAMBRE"}},
        {"ATT_WIRE_LIST", ATT_WIRE_LIST, {"WIRE_LIST", "WIRE_LISTA"}},
    };
    return table;
}

TEST(NameLists, AreFiftyEight) {
    std::set<const RZStringList*> different;
    for (const Expected& row : expectedLists()) different.insert(&row.list);
    EXPECT_EQ(different.size(), 58u);
    EXPECT_EQ(expectedLists().size(), 58u);
}

TEST(NameLists, HoldTheirNamesInOrder) {
    for (const Expected& row : expectedLists()) {
        SCOPED_TRACE(row.constant);
        RZStringList names = row.list;
        ASSERT_EQ(names.count(), static_cast<int>(row.names.size()));
        for (int i = 0; i < names.count(); ++i)
            EXPECT_TRUE(names.getIndex(i) == RZString(row.names[i])) << row.names[i];
    }
}

TEST(NameLists, KeepAWordThatTwoLanguagesShareTwice) {
    RZStringList number = ATT_NUMBER;
    number.remove(RZString("NUMERO"));
    EXPECT_EQ(number.count(), ATT_NUMBER.count() - 2);
    RZStringList cable = ATT_CABLE;
    cable.remove(RZString("CABLE"));
    EXPECT_EQ(cable.count(), ATT_CABLE.count() - 2);
}

TEST(NameLists, TakeTheWordForCableAsSecondNameOfAWire) {
    RZStringList wire = ATT_WIRE;
    ASSERT_EQ(wire.count(), 4);
    EXPECT_TRUE(wire.getIndex(1) == RZString("CABO"));
}

} // namespace
