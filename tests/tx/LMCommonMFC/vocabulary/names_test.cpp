// SPDX-License-Identifier: MIT
// The four groups of fixed names, text by text: drawings and other modules know these spellings and no
// others.
#include "vocabulary/names.h"

#include "text/rzstring.h"

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <string>

namespace {

namespace names = lm::names;

struct Named {
    const CHostString& constant;
    const char* text;
};

const Named kCommands[] = {{names::LMCHANGEDERIVATION, "LMCHANGEDERIVATION"},
                           {names::LMCOMPLIB, "LMCOMPLIB"},
                           {names::LMCOMPPROP, "LMCOMPPROP"},
                           {names::LMCONNECTIONPOINTS, "LMCONNECTIONPOINTS"},
                           {names::LMDDATTE, "LMDDATTE"},
                           {names::LMDEFCIRCLOCAL, "LMDEFCIRCLOCAL"},
                           {names::LMEXPORT, "LMEXPORT"},
                           {names::LMFIND, "LMFIND"},
                           {names::LMIMPORTCATALOG, "LMIMPORTCATALOG"},
                           {names::LMIMPORTCOMPONENTS, "LMIMPORTCOMPONENTS"},
                           {names::LMIMPORTSYMBOLS, "LMIMPORTSYMBOLS"},
                           {names::LMLINKACCESS, "LMLINKACCESS"},
                           {names::LMNEW, "LMNEW"},
                           {names::LMNEWBLANK, "LMNEWBLANK"},
                           {names::LMNEWSOLUTION, "LMNEWSOLUTION"},
                           {names::LMPASTEWITHLINK, "LMPASTEWITHLINK"},
                           {names::LMPRINT, "LMPRINT"},
                           {names::LMRENUMTERMSEL, "LMRENUMTERMSEL"},
                           {names::LMSTRETCHPARAM, "LMSTRETCHPARAM"},
                           {names::LMTRANSLATEASSIST, "LMTRANSLATEASSIST"},
                           {names::LMWIREADDRESSMAN, "LMWIREADDRESSMAN"},
                           {names::LMWIRENUMBERSEL, "LMWIRENUMBERSEL"}};

const Named kStoredNames[] = {{names::TVO_COMPOSTO, "TVO_COMPOSTO"},
                              {names::TVO_COPIAR, "TVO_COPIAR"},
                              {names::TVO_COPIAR_RELAUTO, "TVO_COPIAR_RELAUTO"},
                              {names::TVO_LAYOUT_ADITIVO, "TVO_LAYOUT_ADITIVO"},
                              {names::TVO_LAYOUT_ESQUEMA, "TVO_LAYOUT_ESQUEMA"},
                              {names::TVO_LAYOUT_PAINEL, "TVO_LAYOUT_PAINEL"},
                              {names::TVO_LAYOUT_RZ, "TVO_LAYOUT_RZ"},
                              {names::TVO_MACROS_RZ, "TVO_MACROS_RZ"},
                              {names::TVO_MACROS_RZ_DESATIVADAS, "TVO_MACROS_RZ_DESATIVADAS"},
                              {names::TVO_RZ, "TVO_RZ"},
                              {names::TVO_RZ_ACESSORIO_REP, "TVO_RZ_ACESSORIO_REP"},
                              {names::TVO_RZ_ANILHACABO, "TVO_RZ_ANILHACABO"},
                              {names::TVO_RZ_ANILHAFIO, "TVO_RZ_ANILHAFIO"},
                              {names::TVO_RZ_ATT_VIRTUAL, "TVO_RZ_ATT_VIRTUAL"},
                              {names::TVO_RZ_AUTOMATICA, "TVO_RZ_AUTOMATICA"},
                              {names::TVO_RZ_BLOCK_GROUPS, "TVO_RZ_BLOCK_GROUPS"},
                              {names::TVO_RZ_BLOQUEIO, "TVO_RZ_BLOQUEIO"},
                              {names::TVO_RZ_CABO, "TVO_RZ_CABO"},
                              {names::TVO_RZ_CABOANILHA, "TVO_RZ_CABOANILHA"},
                              {names::TVO_RZ_CABOS, "TVO_RZ_CABOS"},
                              {names::TVO_RZ_CAPA, "TVO_RZ_CAPA"},
                              {names::TVO_RZ_CFG, "TVO_RZ_CFG"},
                              {names::TVO_RZ_CIRCLOC, "TVO_RZ_CIRCLOC"},
                              {names::TVO_RZ_CONEX_BLIND, "TVO_RZ_CONEX_BLIND"},
                              {names::TVO_RZ_CTOS_POS_DEF, "TVO_RZ_CTOS_POS_DEF"},
                              {names::TVO_RZ_DIC_CONECTORES, "TVO_RZ_DIC_CONECTORES"},
                              {names::TVO_RZ_ENDERCABM_FIM, "TVO_RZ_ENDERCABM_FIM"},
                              {names::TVO_RZ_ENDERCABM_INI, "TVO_RZ_ENDERCABM_INI"},
                              {names::TVO_RZ_ENDERCAB_FIM, "TVO_RZ_ENDERCAB_FIM"},
                              {names::TVO_RZ_ENDERCAB_INI, "TVO_RZ_ENDERCAB_INI"},
                              {names::TVO_RZ_EQUIP, "TVO_RZ_EQUIP"},
                              {names::TVO_RZ_EQUIPO, "TVO_RZ_EQUIPO"},
                              {names::TVO_RZ_ESQUEMATICO_UNIFILAR, "TVO_RZ_ESQUEMATICO_UNIFILAR"},
                              {names::TVO_RZ_FIOANILHA, "TVO_RZ_FIOANILHA"},
                              {names::TVO_RZ_GRADE, "TVO_RZ_GRADE"},
                              {names::TVO_RZ_GRADEOCULTA, "TVO_RZ_GRADEOCULTA"},
                              {names::TVO_RZ_INDICE, "TVO_RZ_INDICE"},
                              {names::TVO_RZ_LANGUAGES, "TVO_RZ_LANGUAGES"},
                              {names::TVO_RZ_LANG_CONFIG, "TVO_RZ_LANG_CONFIG"},
                              {names::TVO_RZ_LINK, "TVO_RZ_LINK"},
                              {names::TVO_RZ_MESTRE_ASK, "TVO_RZ_MESTRE_ASK"},
                              {names::TVO_RZ_MESTRE_ATT, "TVO_RZ_MESTRE_ATT"},
                              {names::TVO_RZ_MESTRE_ATTS, "TVO_RZ_MESTRE_ATTS"},
                              {names::TVO_RZ_MESTRE_ATT_MULTI, "TVO_RZ_MESTRE_ATT_MULTI"},
                              {names::TVO_RZ_OBJS_TRADS, "TVO_RZ_OBJS_TRADS"},
                              {names::TVO_RZ_PAINEL, "TVO_RZ_PAINEL"},
                              {names::TVO_RZ_PARENT, "TVO_RZ_PARENT"},
                              {names::TVO_RZ_PTS_CORTE, "TVO_RZ_PTS_CORTE"},
                              {names::TVO_RZ_REGION, "TVO_RZ_REGION"},
                              {names::TVO_RZ_REPRESENTACAO, "TVO_RZ_REPRESENTACAO"},
                              {names::TVO_RZ_REPRESENTACAO_ACE, "TVO_RZ_REPRESENTACAO_ACE"},
                              {names::TVO_RZ_REPRESENTACAO_ACE_ESQ, "TVO_RZ_REPRESENTACAO_ACE_ESQ"},
                              {names::TVO_RZ_REPRESENTACAO_ESQ, "TVO_RZ_REPRESENTACAO_ESQ"},
                              {names::TVO_RZ_REPRESENTACAO_KEY, "TVO_RZ_REPRESENTACAO_KEY"},
                              {names::TVO_RZ_TERMOS, "TVO_RZ_TERMOS"},
                              {names::TVO_RZ_TRANSITION, "TVO_RZ_TRANSITION"},
                              {names::TVO_RZ_UNIFILAR, "TVO_RZ_UNIFILAR"},
                              {names::TVO_RZ_WIRE, "TVO_RZ_WIRE"},
                              {names::TVO_RZ_WIRE_LAYOUT, "TVO_RZ_WIRE_LAYOUT"},
                              {names::TVO_RZ_WIRE_LAYOUT_MANUAL, "TVO_RZ_WIRE_LAYOUT_MANUAL"},
                              {names::TVO_RZ_WIRE_VISIBILIDADE, "TVO_RZ_WIRE_VISIBILIDADE"},
                              {names::TVO_TRADUCAO, "TVO_TRADUCAO"},
                              {names::TVO_UPD_AUTO, "TVO_UPD_AUTO"}};

const Named kSpecialNames[] = {{names::ESQ_VIRTUAL_RZ, "ESQ_VIRTUAL_RZ"},
                               {names::LM_GENERIC_SYMBOL, "LM_GENERIC_SYMBOL"},
                               {names::LM_PREVIOUS_SCHEMATIC_HANDLE, "LM_PREVIOUS_SCHEMATIC_HANDLE"},
                               {names::RZ_CTT_ADITIVO, "RZ_CTT_ADITIVO"},
                               {names::RZ_CTT_ADITIVO_REP, "RZ_CTT_ADITIVO_REP"},
                               {names::RZ_ORC, "RZ_ORC"},
                               {names::RZ_PARAM_LENGTH, "RZ_PARAM_LENGTH"},
                               {names::RZ_PINO, "RZ_PINO"},
                               {names::RZ_TOVAN_ORC, "RZ_TOVAN_ORC"},
                               {names::RZ_TOVAN_ORC_A, "RZ_TOVAN_ORC_A"},
                               {names::RZ_VINC_ADITIVO, "RZ_VINC_ADITIVO"},
                               {names::RZ_VINC_ADITIVO_REP, "RZ_VINC_ADITIVO_REP"}};

const Named kKinds[] = {{names::ALAMBRE, "ALAMBRE"},
                        {names::BLK_CTR, "BLK_CTR"},
                        {names::BLK_CTR_DERIVACAO, "BLK_CTR_DERIVACAO"},
                        {names::BOR_, "BOR-"},
                        {names::BORNE, "BORNE"},
                        {names::BT_, "BT-"},
                        {names::BUS, "BUS"},
                        {names::CABLE, "CABLE"},
                        {names::CABO, "CABO"},
                        {names::CALHA, "CALHA"},
                        {names::CON_, "CON-"},
                        {names::CONEXION, "CONEXION"},
                        {names::CONNECTION, "CONNECTION"},
                        {names::CONTA, "CONTA"},
                        {names::CPOINT, "CPOINT"},
                        {names::DE, "DE"},
                        {names::DISTANCE, "DISTANCE"},
                        {names::DISTANCIA, "DISTANCIA"},
                        {names::END_, "END-"},
                        {names::ETIQUETA, "ETIQUETA"},
                        {names::FIO, "FIO"},
                        {names::FORMATO, "FORMATO"},
                        {names::IDENTIFY, "IDENTIFY"},
                        {names::ID_PIN, "ID_PIN"},
                        {names::ID_PINO, "ID_PINO"},
                        {names::INS_, "INS-"},
                        {names::LIGACAO, "LIGACAO"},
                        {names::NA_, "NA-"},
                        {names::NAF_, "NAF-"},
                        {names::NF_, "NF-"},
                        {names::NUMBER, "NUMBER"},
                        {names::NUMERO, "NUMERO"},
                        {names::PAGINA, "PAGINA"},
                        {names::PARENT, "PARENT"},
                        {names::PIN_, "PIN-"},
                        {names::POSICAO_CTT, "POSICAO_CTT"},
                        {names::POSICION_CTT, "POSICION_CTT"},
                        {names::POSITION_CTT, "POSITION_CTT"},
                        {names::POS_CTT_INS, "POS_CTT_INS"},
                        {names::POS_INS, "POS_INS"},
                        {names::REGLETA, "REGLETA"},
                        {names::REGUA, "REGUA"},
                        {names::RELACAO, "RELACAO"},
                        {names::RELE, "RELE"},
                        {names::SEGMENTO, "SEGMENTO"},
                        {names::SELO, "SELO"},
                        {names::STRIP, "STRIP"},
                        {names::TAG, "TAG"},
                        {names::TRANS, "TRANS"},
                        {names::TRANSITION_LENGTH, "TRANSITION_LENGTH"},
                        {names::TRILHO, "TRILHO"},
                        {names::VIA, "VIA"},
                        {names::WAY, "WAY"},
                        {names::WIRE, "WIRE"}};

template<std::size_t N>
void expectTexts(const Named (&group)[N]) {
    for (const Named& row : group) EXPECT_TRUE(RZString(row.constant) == RZString(row.text)) << row.text;
}

template<std::size_t N>
void collect(const Named (&group)[N], std::set<const CHostString*>& constants, std::set<std::string>& texts) {
    for (const Named& row : group) {
        constants.insert(&row.constant);
        texts.insert(row.text);
    }
}

TEST(Names, CommandsAreTwentyTwo) {
    EXPECT_EQ(std::size(kCommands), 22u);
    expectTexts(kCommands);
}

TEST(Names, StoredNamesAreSixtyThree) {
    EXPECT_EQ(std::size(kStoredNames), 63u);
    expectTexts(kStoredNames);
}

TEST(Names, SpecialNamesAreTwelve) {
    EXPECT_EQ(std::size(kSpecialNames), 12u);
    expectTexts(kSpecialNames);
}

TEST(Names, KindsAreFiftyFour) {
    EXPECT_EQ(std::size(kKinds), 54u);
    expectTexts(kKinds);
}

TEST(Names, NoConstantStandsTwice) {
    std::set<const CHostString*> constants;
    std::set<std::string> texts;
    collect(kCommands, constants, texts);
    collect(kStoredNames, constants, texts);
    collect(kSpecialNames, constants, texts);
    collect(kKinds, constants, texts);
    EXPECT_EQ(constants.size(), 151u);
    EXPECT_EQ(texts.size(), 151u);
}

TEST(Names, AHyphenAtTheEndIsPartOfTheText) {
    EXPECT_TRUE(RZString(names::BT_) == RZString("BT-"));
    EXPECT_FALSE(RZString(names::NA_) == RZString("NA"));
}

} // namespace
