// SPDX-License-Identifier: MIT
// The table of the settings: key, getter, setter and type of each, compared with what the store does and with
// its documentation.
#include "settingssupport.h"

#include "lmcommon/cecryptography.h"

#include <cmath>
#include <limits>
#include <set>
#include <variant>

namespace {

using namespace settings_test;

template<class Value>
struct Accessors {
    Value (CIRegistro::*get)();
    void (CIRegistro::*set)(Value);
};
struct Password : Accessors<RZString> {};

struct Row {
    const char* key;
    const char* getter;
    const char* setter;
    std::variant<Accessors<RZString>, Accessors<int>, Accessors<bool>, Accessors<float>, Password> type;
};

#define LM_ROW(key, getter, setter, Type)                                                                    \
    {                                                                                                        \
        key, #getter, #setter, Type {                                                                        \
            &CIRegistro::getter, &CIRegistro::setter                                                         \
        }                                                                                                    \
    }
using Text = Accessors<RZString>;
using Int = Accessors<int>;
using Bool = Accessors<bool>;
using Float = Accessors<float>;

const Row kRows[] = {
    LM_ROW("Platform", GetPlatform, SetPlatform, Text),
    LM_ROW("VersionSP", GetServicePack, SetServicePack, Text),
    LM_ROW("VersionIN", GetVersionInternal, SetVersionInternal, Text),
    LM_ROW("VersionRZ", GetProductVersion, SetProductVersion, Text),
    LM_ROW("NetworkRZ", GetCaminhoBD, SetCaminhoDb, Text),
    LM_ROW("PaletteSetState", GetPaletteState, SetPaletteState, Int),
    LM_ROW("LockUpdPalette", GetLockUpdatePalette, SetLockUpdatePalette, Int),
    LM_ROW("Company", GetCompanyName, SetCompanyName, Text),
    LM_ROW("DBName", GetNomeBD, SetDbName, Text),
    LM_ROW("DBUser", GetUserBD, SetUserName, Text),
    {"DBPass", "GetPassBD", "SetUserPassword",
     Password{{&CIRegistro::GetPassBD, &CIRegistro::SetUserPassword}}},
    LM_ROW("DBServer", GetServidorBD, SetDbServer, Text),
    LM_ROW("Database", GetTipoBD, SetTipoBD, Text),
    LM_ROW("padraosubstfio", GetPadraoSubstFio, SetPadraoSubstFio, Int),
    LM_ROW("padraoinsfio", GetPadraoInsFio, SetPadraoInsFio, Int),
    LM_ROW("statePComp", GetStatePComp, SetStatePComp, Int),
    LM_ROW("statePFios", GetStatePFios, SetStatePFios, Int),
    LM_ROW("statePPags", GetStatePPags, SetStatePPags, Int),
    LM_ROW("statePProj", GetStatePProj, SetStatePProj, Int),
    LM_ROW("cfgDefault", GetCfgDefault, SetCfgDefault, Text),
    LM_ROW("usarcfgdefault", getUsarCfgDefault, setUsarCfgDefault, Bool),
    LM_ROW("sizePLeft", GetSizePLeft, SetSizePLeft, Int),
    LM_ROW("sizePRight", GetSizePRight, SetSizePRight, Int),
    LM_ROW("lastViewProj", GetLastViewProj, SetLastViewProj, Int),
    LM_ROW("angle", GetAnguloLayout, SetAnguloLayout, Float),
    LM_ROW("distance", GetDistanciaLayout, SetDistanciaLayout, Float),
    LM_ROW("scale", GetEscalaLayout, SetEscalaLayout, Float),
    LM_ROW("useangledef", GetAnguloDefinidoLayout, SetAnguloDefinidoLayout, Int),
    LM_ROW("libLang", getLibraryLang, setLibraryLang, Text),
    LM_ROW("inidir", GetIniDir, SetIniDir, Text),
    LM_ROW("cmddia", GetCmdDiagrama, SetCmdDiagrama, Text),
    LM_ROW("LastUserSAP", GetLastUserSAP, SetLastUserSAP, Text),
    LM_ROW("LastServerSAP", GetLastServerSAP, SetLastServerSAP, Int),
    LM_ROW("UseStartPage", GetUseStartPage, SetUseStartPage, Bool),
    LM_ROW("PBLBLNFORCEEMPTY", GetPBLBLNFORCEEMPTY, SetPBLBLNFORCEEMPTY, Bool),
    LM_ROW("PBLBLNFORCERZ", GetPBLBLNFORCERZ, SetPBLBLNFORCERZ, Bool),
};

class SettingsTable : public SettingsTest {
protected:
    /// What the file holds under a key.
    std::string stored(const char* key) { return read(rz(key)); }

    void check(const char* key, const Text& text) {
        (m_settings.*text.set)(settings_test::text("as given \xC3\xA7"));
        EXPECT_EQ(stored(key), "as given \xC3\xA7");
        EXPECT_EQ(told((m_settings.*text.get)()), "as given \xC3\xA7");
    }
    void check(const char* key, const Int& number) {
        (m_settings.*number.set)(-42);
        EXPECT_EQ(stored(key), "-42");
        EXPECT_EQ((m_settings.*number.get)(), -42);
    }
    void check(const char* key, const Bool& flag) {
        (m_settings.*flag.set)(true);
        EXPECT_EQ(stored(key), "1");
        EXPECT_TRUE((m_settings.*flag.get)());
        (m_settings.*flag.set)(false);
        EXPECT_EQ(stored(key), "0");
        EXPECT_FALSE((m_settings.*flag.get)());
    }
    void check(const char* key, const Float& number) {
        (m_settings.*number.set)(-2.5f);
        EXPECT_EQ(stored(key), "-2.500000");
        EXPECT_EQ((m_settings.*number.get)(), -2.5f);
    }
    void check(const char* key, const Password& password) {
        (m_settings.*password.set)(text("senha \xC3\xA7"));
        EXPECT_EQ(stored(key).find("senha"), std::string::npos);
        EXPECT_EQ(CECryptography().decrypt(QString::fromStdString(stored(key))), QStringLiteral("senha ç"));
        EXPECT_EQ(told((m_settings.*password.get)()), "senha \xC3\xA7");
    }
    /// Whether the getter gives its type's empty value.
    bool isEmpty(const Row& row) {
        return std::visit(
            [this](const auto& type) {
                return (m_settings.*type.get)() == decltype((m_settings.*type.get)()){};
            },
            row.type);
    }
};

TEST_F(SettingsTable, HoldsEachSettingUnderItsKeyInItsType) {
    layContainer("<r key='X' value='1'/>");
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.key);
        std::visit([&](const auto& type) { check(row.key, type); }, row.type);
    }
    // Each once, and each under a key of its own: none has changed another's.
    QDomDocument document;
    ASSERT_TRUE(document.setContent(QByteArray::fromStdString(content())));
    std::set<QString> keys;
    const QDomNodeList all = document.elementsByTagName("registro");
    for (int i = 0; i < all.size(); ++i) keys.insert(all.at(i).toElement().attribute("key"));
    EXPECT_EQ(static_cast<std::size_t>(all.size()), std::size(kRows));
    EXPECT_EQ(keys.size(), std::size(kRows));
    for (const Row& row : kRows) EXPECT_EQ(keys.count(QString(row.key).toUpper()), 1u) << row.key;
}

TEST_F(SettingsTable, GivesEachTypesEmptyValueForWhatIsNotThere) {
    for (const Row& row : kRows) EXPECT_TRUE(isEmpty(row)) << row.key;
    layContainer("<r key='X' value='1'/>");
    for (const Row& row : kRows) EXPECT_TRUE(isEmpty(row)) << row.key;
    EXPECT_EQ(treeOf(content()), treeOf("<any><local><r key='X' value='1'/></local></any>"))
        << "no getter writes";
}

TEST_F(SettingsTable, IsThatOfTheDocumentation) {
    const std::string page = contentOf(LM_SOURCE_DIR "/docs/formats/settings.md");
    for (const Row& row : kRows) {
        const char* const types[] = {"text", "int", "bool", "float", "password"};
        const std::string line = std::string("| `") + row.key + "` | `" + row.getter + "` | `" + row.setter +
                                 "` | " + types[row.type.index()] + " |";
        EXPECT_NE(page.find(line), std::string::npos) << line;
    }
}

TEST_F(SettingsTable, ReadsNumbersFromTheirBeginning) {
    const struct {
        const char* stored;
        int whole;
        float number;
        bool flag;
    } rows[] = {{"1", 1, 1.0f, true},        {"true", 0, 0.0f, false},   {"0", 0, 0.0f, false},
                {" 1", 1, 1.0f, false},      {"01", 1, 1.0f, false},     {"1 ", 1, 1.0f, false},
                {"12abc", 12, 12.0f, false}, {"-7.5", -7, -7.5f, false}, {"", 0, 0.0f, false},
                {"2,5", 2, 2.0f, false},     {"1e3", 1, 1000.0f, false}};
    for (const auto& row : rows) {
        layContainer(std::string("<r key='padraoinsfio' value='") + row.stored + "'/><r key='ANGLE' value='" +
                     row.stored + "'/><r key='pblblnforcerz' value='" + row.stored + "'/>");
        EXPECT_EQ(m_settings.GetPadraoInsFio(), row.whole) << row.stored;
        EXPECT_EQ(m_settings.GetAnguloLayout(), row.number) << row.stored;
        EXPECT_EQ(m_settings.GetPBLBLNFORCERZ(), row.flag) << row.stored;
    }
}

TEST_F(SettingsTable, WritesNumbersWithoutALocaleAndToSixDecimals) {
    layContainer("<r key='X' value='1'/>");
    for (const auto& [value, written] : {std::pair(1234567.0f, "1234567.000000"),
                                         {0.1f, "0.100000"},
                                         {1e-7f, "0.000000"},
                                         {-0.0f, "-0.000000"}}) {
        m_settings.SetEscalaLayout(value);
        EXPECT_EQ(stored("scale"), written);
    }
    for (const int value : {0, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        m_settings.SetSizePLeft(value);
        EXPECT_EQ(stored("sizePLeft"), std::to_string(value));
        EXPECT_EQ(m_settings.GetSizePLeft(), value);
    }
    layContainer("<r key='distance' value='1e300'/>");
    EXPECT_TRUE(std::isinf(m_settings.GetDistanciaLayout())) << "narrowed from a double";
    m_settings.SetDistanciaLayout(std::numeric_limits<float>::infinity());
    EXPECT_EQ(stored("distance"), "inf");
    EXPECT_EQ(m_settings.GetDistanciaLayout(), 0.0f) << "which is no number to a reader";
}

TEST_F(SettingsTable, GivesNoPasswordForAForeignText) {
    layContainer("<r key='DBPass' value='plain'/>");
    EXPECT_EQ(m_settings.GetPassBD(), "");
    m_settings.SetUserPassword("");
    EXPECT_NE(stored("DBPass"), "") << "an empty password is enciphered too";
    EXPECT_EQ(m_settings.GetPassBD(), "");
}

TEST_F(SettingsTable, HasTwoGettersOfConstants) {
    EXPECT_EQ(m_settings.GetNomeLocalBD(), "ELECTRICALDB");
    EXPECT_EQ(m_settings.GetProductName(), "Tessel Electrical");
}

} // namespace
