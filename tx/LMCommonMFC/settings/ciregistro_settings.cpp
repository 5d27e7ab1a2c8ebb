// SPDX-License-Identifier: MIT
// The one table of the settings, and their accessors, which are made of it.
#include "settings/ciregistro.h"

#include "lmcommon/cecryptography.h"

namespace {

/// How a kind of value becomes the text that is stored, and what a stored text means. An absent setting is
/// the empty text.
struct Text {
    using Value = RZString;
    static RZString written(const RZString& value) { return value; }
    static RZString meant(RZString stored) { return stored; }
};

struct Int {
    using Value = int;
    static RZString written(int value) { return RZString(value, 0); }
    static int meant(const RZString& stored) { return stored.toInt(); }
};

struct Bool {
    using Value = bool;
    static RZString written(bool value) { return value ? "1" : "0"; }
    /// Nothing but "1" is true, "true" neither.
    static bool meant(const RZString& stored) { return stored == "1"; }
};

struct Float {
    using Value = float;
    static RZString written(float value) { return RZString(value, false, -1); }
    static float meant(const RZString& stored) { return stored.toFloat(); }
};

struct Password {
    using Value = RZString;
    static RZString written(const RZString& value) { return CECryptography().crypt(value); }
    static RZString meant(const RZString& stored) { return CECryptography().decrypt(stored); }
};

} // namespace

// Key, getter, setter, kind.
#define LM_SETTINGS(SETTING)                                                                                 \
    SETTING("Platform", GetPlatform, SetPlatform, Text)                                                      \
    SETTING("VersionSP", GetServicePack, SetServicePack, Text)                                               \
    SETTING("VersionIN", GetVersionInternal, SetVersionInternal, Text)                                       \
    SETTING("VersionRZ", GetProductVersion, SetProductVersion, Text)                                         \
    SETTING("NetworkRZ", GetCaminhoBD, SetCaminhoDb, Text)                                                   \
    SETTING("PaletteSetState", GetPaletteState, SetPaletteState, Int)                                        \
    SETTING("LockUpdPalette", GetLockUpdatePalette, SetLockUpdatePalette, Int)                               \
    SETTING("Company", GetCompanyName, SetCompanyName, Text)                                                 \
    SETTING("DBName", GetNomeBD, SetDbName, Text)                                                            \
    SETTING("DBUser", GetUserBD, SetUserName, Text)                                                          \
    SETTING("DBPass", GetPassBD, SetUserPassword, Password)                                                  \
    SETTING("DBServer", GetServidorBD, SetDbServer, Text)                                                    \
    SETTING("Database", GetTipoBD, SetTipoBD, Text)                                                          \
    SETTING("padraosubstfio", GetPadraoSubstFio, SetPadraoSubstFio, Int)                                     \
    SETTING("padraoinsfio", GetPadraoInsFio, SetPadraoInsFio, Int)                                           \
    SETTING("statePComp", GetStatePComp, SetStatePComp, Int)                                                 \
    SETTING("statePFios", GetStatePFios, SetStatePFios, Int)                                                 \
    SETTING("statePPags", GetStatePPags, SetStatePPags, Int)                                                 \
    SETTING("statePProj", GetStatePProj, SetStatePProj, Int)                                                 \
    SETTING("cfgDefault", GetCfgDefault, SetCfgDefault, Text)                                                \
    SETTING("usarcfgdefault", getUsarCfgDefault, setUsarCfgDefault, Bool)                                    \
    SETTING("sizePLeft", GetSizePLeft, SetSizePLeft, Int)                                                    \
    SETTING("sizePRight", GetSizePRight, SetSizePRight, Int)                                                 \
    SETTING("lastViewProj", GetLastViewProj, SetLastViewProj, Int)                                           \
    SETTING("angle", GetAnguloLayout, SetAnguloLayout, Float)                                                \
    SETTING("distance", GetDistanciaLayout, SetDistanciaLayout, Float)                                       \
    SETTING("scale", GetEscalaLayout, SetEscalaLayout, Float)                                                \
    SETTING("useangledef", GetAnguloDefinidoLayout, SetAnguloDefinidoLayout, Int)                            \
    SETTING("libLang", getLibraryLang, setLibraryLang, Text)                                                 \
    SETTING("inidir", GetIniDir, SetIniDir, Text)                                                            \
    SETTING("cmddia", GetCmdDiagrama, SetCmdDiagrama, Text)                                                  \
    SETTING("LastUserSAP", GetLastUserSAP, SetLastUserSAP, Text)                                             \
    SETTING("LastServerSAP", GetLastServerSAP, SetLastServerSAP, Int)                                        \
    SETTING("UseStartPage", GetUseStartPage, SetUseStartPage, Bool)                                          \
    SETTING("PBLBLNFORCEEMPTY", GetPBLBLNFORCEEMPTY, SetPBLBLNFORCEEMPTY, Bool)                              \
    SETTING("PBLBLNFORCERZ", GetPBLBLNFORCERZ, SetPBLBLNFORCERZ, Bool)

#define LM_ACCESSORS(key, getter, setter, Kind)                                                              \
    Kind::Value CIRegistro::getter() {                                                                       \
        return Kind::meant(readValue(key));                                                                  \
    }                                                                                                        \
    void CIRegistro::setter(Kind::Value value) {                                                             \
        saveValue(key, Kind::written(value));                                                                \
    }

LM_SETTINGS(LM_ACCESSORS)

#undef LM_ACCESSORS
#undef LM_SETTINGS

RZString CIRegistro::GetNomeLocalBD() {
    return "ELECTRICALDB";
}

RZString CIRegistro::GetProductName() {
    return "Tessel Electrical";
}
