// SPDX-License-Identifier: MIT
// CMensagem: the nine key roles that an attribute can play, and its name for each role in three languages.
//
//     RZString tag = CMensagem::getAttNumber(2);          // "NUMBER"
//     if (CMensagem::isAttNumber("numero")) ...           // true, whatever the language
#pragma once

#include "export.h"
#include "text/rzstring.h"

/// Names of attribute roles. Languages are 1 Portuguese, 2 English, 3 Spanish; every other number, 0 among
/// them, gives the Portuguese name. No function here fails or changes anything, and all may be called from
/// any thread.
class LM_COMMONMFC_API CMensagem {
public:
    /// @name The role's name in a language
    /// @{
    static RZString getAttCabo(int language);     ///< Cable.
    static RZString getAttDistance(int language); ///< Distance.
    static RZString getAttFio(int language);      ///< Wire. Its Portuguese name is the cable's, "CABO".
    static RZString getAttLigacao(int language);  ///< Connection.
    static RZString getAttNumber(int language);   ///< Number.
    static RZString getAttPin(int language);      ///< Pin.
    static RZString getAttPosCtt(int language);   ///< Contact position.
    static RZString getAttStrip(int language);    ///< Terminal strip.
    static RZString getAttTag(int language);      ///< Tag, that is the name of a component.
    /// @}

    /// @name The role's name in the language of the host
    /// These hand the number of getLang() to the functions above as it is. getLang() counts from 0 and they
    /// count from 1, so the default is Portuguese for 0 and for 1, English for 2, and never Spanish.
    /// @{
    static RZString getAttCaboDefault();
    static RZString getAttDistanceDefault();
    static RZString getAttFioDefault();
    static RZString getAttLigacaoDefault();
    static RZString getAttNumeroDefault();
    static RZString getAttPinoDefault();
    static RZString getAttPosCttDefault();
    static RZString getAttReguaDefault();
    static RZString getAttRelacaoDefault();
    /// @}

    /// @name Whether a tag is one of the role's names, in any language, ignoring case
    /// The role of a connection has its test in CEAtributo::isAttLigacao.
    /// @{
    static bool isAttCabo(RZString tag);
    static bool isAttDistance(RZString tag);
    static bool isAttFio(RZString tag); ///< Accepts "FIO" beside the three names.
    static bool isAttNumber(RZString tag);
    static bool isAttPin(RZString tag);
    static bool isAttPosCtt(RZString tag);
    static bool isAttStrip(RZString tag);
    static bool isAttTag(RZString tag);
    /// @}

    /// The language of the host: 0, 1 or 2. The host is asked at the first call; the answer then stays for
    /// the life of the process, also when the host had none (which counts as 1).
    static int getLang();
};
