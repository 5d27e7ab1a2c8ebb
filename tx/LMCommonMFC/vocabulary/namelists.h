// SPDX-License-Identifier: MIT
// The name lists that all modules share: for each attribute its synonyms, as drawings of the three languages
// spell it.
//
//     CEAtributo* wire = nullptr;
//     if (CEAttributeHelper::findAtt(id, ATT_WIRE, wire)) ...
#pragma once

#include "export.h"
#include "text/rzstringlist.h"

/// @name Synonyms of one attribute each
/// Built once when the module is loaded, from literals alone, and never changed. A list goes English,
/// Portuguese, Spanish, with further synonyms behind. It is a list and no set: a word that two languages
/// share may stand twice.
/// @{
extern LM_COMMONMFC_API const RZStringList ATT_ADDRESS;
extern LM_COMMONMFC_API const RZStringList ATT_BIT;
extern LM_COMMONMFC_API const RZStringList ATT_BLOCK;
extern LM_COMMONMFC_API const RZStringList ATT_CABLE;
extern LM_COMMONMFC_API const RZStringList ATT_CIRCUIT;
extern LM_COMMONMFC_API const RZStringList ATT_COMPONENTTYPE;
extern LM_COMMONMFC_API const RZStringList ATT_HANDLE;
extern LM_COMMONMFC_API const RZStringList ATT_POSITION;
extern LM_COMMONMFC_API const RZStringList ATT_CONNECTION;
extern LM_COMMONMFC_API const RZStringList ATT_CONNECTION_COUNT;
extern LM_COMMONMFC_API const RZStringList ATT_CON;
extern LM_COMMONMFC_API const RZStringList ATT_CONNECTOR;
extern LM_COMMONMFC_API const RZStringList ATT_CPOINT;
extern LM_COMMONMFC_API const RZStringList ATT_DATE;
extern LM_COMMONMFC_API const RZStringList ATT_DESCRIPTION;
extern LM_COMMONMFC_API const RZStringList ATT_END;
extern LM_COMMONMFC_API const RZStringList ATT_DESCR_FULL;
extern LM_COMMONMFC_API const RZStringList ATT_FUNCTION;
extern LM_COMMONMFC_API const RZStringList ATT_INPUT;
extern LM_COMMONMFC_API const RZStringList ATT_INVERTED;
extern LM_COMMONMFC_API const RZStringList ATT_JUMPER;
extern LM_COMMONMFC_API const RZStringList ATT_KEY;
extern LM_COMMONMFC_API const RZStringList ATT_LAYER;
extern LM_COMMONMFC_API const RZStringList ATT_LAYOUTPOSITIONX;
extern LM_COMMONMFC_API const RZStringList ATT_LAYOUTPOSITIONY;
extern LM_COMMONMFC_API const RZStringList ATT_LENGTH;
extern LM_COMMONMFC_API const RZStringList ATT_LIST;
extern LM_COMMONMFC_API const RZStringList ATT_LOCAL;
extern LM_COMMONMFC_API const RZStringList ATT_MARKER;
extern LM_COMMONMFC_API const RZStringList ATT_NAME;
extern LM_COMMONMFC_API const RZStringList ATT_NUMBER;
extern LM_COMMONMFC_API const RZStringList ATT_ORIENTATION;
extern LM_COMMONMFC_API const RZStringList ATT_OUT_OF;
extern LM_COMMONMFC_API const RZStringList ATT_PAGE;
extern LM_COMMONMFC_API const RZStringList ATT_GROUP;
extern LM_COMMONMFC_API const RZStringList ATT_PARENT;
extern LM_COMMONMFC_API const RZStringList ATT_PATHWIRE;
extern LM_COMMONMFC_API const RZStringList ATT_POS_CTT_INS;
extern LM_COMMONMFC_API const RZStringList ATT_POS_INS;
extern LM_COMMONMFC_API const RZStringList ATT_RZ_PARAM_LENGTH;
extern LM_COMMONMFC_API const RZStringList ATT_QTY;
extern LM_COMMONMFC_API const RZStringList ATT_SEG;
extern LM_COMMONMFC_API const RZStringList ATT_SEGEND;
extern LM_COMMONMFC_API const RZStringList ATT_SEGINI;
extern LM_COMMONMFC_API const RZStringList ATT_SEQUENCE;
extern LM_COMMONMFC_API const RZStringList ATT_INI;
extern LM_COMMONMFC_API const RZStringList ATT_STRIP;
extern LM_COMMONMFC_API const RZStringList ATT_TAG;
extern LM_COMMONMFC_API const RZStringList ATT_TAG_INS;
extern LM_COMMONMFC_API const RZStringList ATT_TAG_REL;
extern LM_COMMONMFC_API const RZStringList ATT_TIME;
extern LM_COMMONMFC_API const RZStringList ATT_TOTAL;
extern LM_COMMONMFC_API const RZStringList ATT_TRANSITION_LENGTH;
extern LM_COMMONMFC_API const RZStringList ATT_TYPE_LIST;
extern LM_COMMONMFC_API const RZStringList ATT_VARIABLE;
extern LM_COMMONMFC_API const RZStringList ATT_WAY;
extern LM_COMMONMFC_API const RZStringList ATT_WIRE;
extern LM_COMMONMFC_API const RZStringList ATT_WIRE_LIST;
/// @}
