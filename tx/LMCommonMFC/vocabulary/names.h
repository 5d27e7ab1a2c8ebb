// SPDX-License-Identifier: MIT
// The fixed names that all modules share: commands, stored data, special attributes, kinds of block.
// Each constant is called by its own text, with an underscore for a hyphen: lm::names::BT_ holds "BT-".
//
//     if (name == lm::names::TVO_RZ_CAPA) ...
#pragma once

#include "export.h"
#include "host/hoststring.h"

// Built once when the module is loaded, from literals alone, in the order in which they stand here.
namespace lm::names {

/// @name Commands of the application, as the command modules register them.
/// @{
extern LM_COMMONMFC_API const CHostString LMCHANGEDERIVATION;
extern LM_COMMONMFC_API const CHostString LMCOMPLIB;
extern LM_COMMONMFC_API const CHostString LMCOMPPROP;
extern LM_COMMONMFC_API const CHostString LMCONNECTIONPOINTS;
extern LM_COMMONMFC_API const CHostString LMDDATTE;
extern LM_COMMONMFC_API const CHostString LMDEFCIRCLOCAL;
extern LM_COMMONMFC_API const CHostString LMEXPORT;
extern LM_COMMONMFC_API const CHostString LMFIND;
extern LM_COMMONMFC_API const CHostString LMIMPORTCATALOG;
extern LM_COMMONMFC_API const CHostString LMIMPORTCOMPONENTS;
extern LM_COMMONMFC_API const CHostString LMIMPORTSYMBOLS;
extern LM_COMMONMFC_API const CHostString LMLINKACCESS;
extern LM_COMMONMFC_API const CHostString LMNEW;
extern LM_COMMONMFC_API const CHostString LMNEWBLANK;
extern LM_COMMONMFC_API const CHostString LMNEWSOLUTION;
extern LM_COMMONMFC_API const CHostString LMPASTEWITHLINK;
extern LM_COMMONMFC_API const CHostString LMPRINT;
extern LM_COMMONMFC_API const CHostString LMRENUMTERMSEL;
extern LM_COMMONMFC_API const CHostString LMSTRETCHPARAM;
extern LM_COMMONMFC_API const CHostString LMTRANSLATEASSIST;
extern LM_COMMONMFC_API const CHostString LMWIREADDRESSMAN;
extern LM_COMMONMFC_API const CHostString LMWIRENUMBERSEL;
/// @}

/// @name Applications and dictionaries under which data is stored in a drawing.
/// @{
extern LM_COMMONMFC_API const CHostString TVO_COMPOSTO;
extern LM_COMMONMFC_API const CHostString TVO_COPIAR;
extern LM_COMMONMFC_API const CHostString TVO_COPIAR_RELAUTO;
extern LM_COMMONMFC_API const CHostString TVO_LAYOUT_ADITIVO;
extern LM_COMMONMFC_API const CHostString TVO_LAYOUT_ESQUEMA;
extern LM_COMMONMFC_API const CHostString TVO_LAYOUT_PAINEL;
extern LM_COMMONMFC_API const CHostString TVO_LAYOUT_RZ;
extern LM_COMMONMFC_API const CHostString TVO_MACROS_RZ;
extern LM_COMMONMFC_API const CHostString TVO_MACROS_RZ_DESATIVADAS;
extern LM_COMMONMFC_API const CHostString TVO_RZ;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ACESSORIO_REP;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ANILHACABO;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ANILHAFIO;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ATT_VIRTUAL;
extern LM_COMMONMFC_API const CHostString TVO_RZ_AUTOMATICA;
extern LM_COMMONMFC_API const CHostString TVO_RZ_BLOCK_GROUPS;
extern LM_COMMONMFC_API const CHostString TVO_RZ_BLOQUEIO;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CABO;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CABOANILHA;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CABOS;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CAPA;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CFG;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CIRCLOC;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CONEX_BLIND;
extern LM_COMMONMFC_API const CHostString TVO_RZ_CTOS_POS_DEF;
extern LM_COMMONMFC_API const CHostString TVO_RZ_DIC_CONECTORES;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ENDERCABM_FIM;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ENDERCABM_INI;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ENDERCAB_FIM;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ENDERCAB_INI;
extern LM_COMMONMFC_API const CHostString TVO_RZ_EQUIP;
extern LM_COMMONMFC_API const CHostString TVO_RZ_EQUIPO;
extern LM_COMMONMFC_API const CHostString TVO_RZ_ESQUEMATICO_UNIFILAR;
extern LM_COMMONMFC_API const CHostString TVO_RZ_FIOANILHA;
extern LM_COMMONMFC_API const CHostString TVO_RZ_GRADE;
extern LM_COMMONMFC_API const CHostString TVO_RZ_GRADEOCULTA;
extern LM_COMMONMFC_API const CHostString TVO_RZ_INDICE;
extern LM_COMMONMFC_API const CHostString TVO_RZ_LANGUAGES;
extern LM_COMMONMFC_API const CHostString TVO_RZ_LANG_CONFIG;
extern LM_COMMONMFC_API const CHostString TVO_RZ_LINK;
extern LM_COMMONMFC_API const CHostString TVO_RZ_MESTRE_ASK;
extern LM_COMMONMFC_API const CHostString TVO_RZ_MESTRE_ATT;
extern LM_COMMONMFC_API const CHostString TVO_RZ_MESTRE_ATTS;
extern LM_COMMONMFC_API const CHostString TVO_RZ_MESTRE_ATT_MULTI;
extern LM_COMMONMFC_API const CHostString TVO_RZ_OBJS_TRADS;
extern LM_COMMONMFC_API const CHostString TVO_RZ_PAINEL;
extern LM_COMMONMFC_API const CHostString TVO_RZ_PARENT;
extern LM_COMMONMFC_API const CHostString TVO_RZ_PTS_CORTE;
extern LM_COMMONMFC_API const CHostString TVO_RZ_REGION;
extern LM_COMMONMFC_API const CHostString TVO_RZ_REPRESENTACAO;
extern LM_COMMONMFC_API const CHostString TVO_RZ_REPRESENTACAO_ACE;
extern LM_COMMONMFC_API const CHostString TVO_RZ_REPRESENTACAO_ACE_ESQ;
extern LM_COMMONMFC_API const CHostString TVO_RZ_REPRESENTACAO_ESQ;
extern LM_COMMONMFC_API const CHostString TVO_RZ_REPRESENTACAO_KEY;
extern LM_COMMONMFC_API const CHostString TVO_RZ_TERMOS;
extern LM_COMMONMFC_API const CHostString TVO_RZ_TRANSITION;
extern LM_COMMONMFC_API const CHostString TVO_RZ_UNIFILAR;
extern LM_COMMONMFC_API const CHostString TVO_RZ_WIRE;
extern LM_COMMONMFC_API const CHostString TVO_RZ_WIRE_LAYOUT;
extern LM_COMMONMFC_API const CHostString TVO_RZ_WIRE_LAYOUT_MANUAL;
extern LM_COMMONMFC_API const CHostString TVO_RZ_WIRE_VISIBILIDADE;
extern LM_COMMONMFC_API const CHostString TVO_TRADUCAO;
extern LM_COMMONMFC_API const CHostString TVO_UPD_AUTO;
/// @}

/// @name Further stored values, and attributes of a special role.
/// @{
extern LM_COMMONMFC_API const CHostString ESQ_VIRTUAL_RZ;
extern LM_COMMONMFC_API const CHostString LM_GENERIC_SYMBOL;
extern LM_COMMONMFC_API const CHostString LM_PREVIOUS_SCHEMATIC_HANDLE;
extern LM_COMMONMFC_API const CHostString RZ_CTT_ADITIVO;
extern LM_COMMONMFC_API const CHostString RZ_CTT_ADITIVO_REP;
extern LM_COMMONMFC_API const CHostString RZ_ORC;
extern LM_COMMONMFC_API const CHostString RZ_PARAM_LENGTH;
extern LM_COMMONMFC_API const CHostString RZ_PINO;
extern LM_COMMONMFC_API const CHostString RZ_TOVAN_ORC;
extern LM_COMMONMFC_API const CHostString RZ_TOVAN_ORC_A;
extern LM_COMMONMFC_API const CHostString RZ_VINC_ADITIVO;
extern LM_COMMONMFC_API const CHostString RZ_VINC_ADITIVO_REP;
/// @}

/// @name Kinds of block, of contact and of drawing part, and attributes that have no list. A name that ends
/// in an underscore is the start of a block name: its text ends in a hyphen.
/// @{
extern LM_COMMONMFC_API const CHostString ALAMBRE;
extern LM_COMMONMFC_API const CHostString BLK_CTR;
extern LM_COMMONMFC_API const CHostString BLK_CTR_DERIVACAO;
extern LM_COMMONMFC_API const CHostString BOR_;
extern LM_COMMONMFC_API const CHostString BORNE;
extern LM_COMMONMFC_API const CHostString BT_;
extern LM_COMMONMFC_API const CHostString BUS;
extern LM_COMMONMFC_API const CHostString CABLE;
extern LM_COMMONMFC_API const CHostString CABO;
extern LM_COMMONMFC_API const CHostString CALHA;
extern LM_COMMONMFC_API const CHostString CON_;
extern LM_COMMONMFC_API const CHostString CONEXION;
extern LM_COMMONMFC_API const CHostString CONNECTION;
extern LM_COMMONMFC_API const CHostString CONTA;
extern LM_COMMONMFC_API const CHostString CPOINT;
extern LM_COMMONMFC_API const CHostString DE;
extern LM_COMMONMFC_API const CHostString DISTANCE;
extern LM_COMMONMFC_API const CHostString DISTANCIA;
extern LM_COMMONMFC_API const CHostString END_;
extern LM_COMMONMFC_API const CHostString ETIQUETA;
extern LM_COMMONMFC_API const CHostString FIO;
extern LM_COMMONMFC_API const CHostString FORMATO;
extern LM_COMMONMFC_API const CHostString IDENTIFY;
extern LM_COMMONMFC_API const CHostString ID_PIN;
extern LM_COMMONMFC_API const CHostString ID_PINO;
extern LM_COMMONMFC_API const CHostString INS_;
extern LM_COMMONMFC_API const CHostString LIGACAO;
extern LM_COMMONMFC_API const CHostString NA_;
extern LM_COMMONMFC_API const CHostString NAF_;
extern LM_COMMONMFC_API const CHostString NF_;
extern LM_COMMONMFC_API const CHostString NUMBER;
extern LM_COMMONMFC_API const CHostString NUMERO;
extern LM_COMMONMFC_API const CHostString PAGINA;
extern LM_COMMONMFC_API const CHostString PARENT;
extern LM_COMMONMFC_API const CHostString PIN_;
extern LM_COMMONMFC_API const CHostString POSICAO_CTT;
extern LM_COMMONMFC_API const CHostString POSICION_CTT;
extern LM_COMMONMFC_API const CHostString POSITION_CTT;
extern LM_COMMONMFC_API const CHostString POS_CTT_INS;
extern LM_COMMONMFC_API const CHostString POS_INS;
extern LM_COMMONMFC_API const CHostString REGLETA;
extern LM_COMMONMFC_API const CHostString REGUA;
extern LM_COMMONMFC_API const CHostString RELACAO;
extern LM_COMMONMFC_API const CHostString RELE;
extern LM_COMMONMFC_API const CHostString SEGMENTO;
extern LM_COMMONMFC_API const CHostString SELO;
extern LM_COMMONMFC_API const CHostString STRIP;
extern LM_COMMONMFC_API const CHostString TAG;
extern LM_COMMONMFC_API const CHostString TRANS;
extern LM_COMMONMFC_API const CHostString TRANSITION_LENGTH;
extern LM_COMMONMFC_API const CHostString TRILHO;
extern LM_COMMONMFC_API const CHostString VIA;
extern LM_COMMONMFC_API const CHostString WAY;
extern LM_COMMONMFC_API const CHostString WIRE;
/// @}

} // namespace lm::names
