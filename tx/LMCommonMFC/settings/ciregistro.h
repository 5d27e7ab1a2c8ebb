// SPDX-License-Identifier: MIT
// CIRegistro: the settings that all users of a machine share, kept in one small XML file, and a few look-ups
// on the machine.
//
//     CIRegistro settings;
//     if (settings.GetUseStartPage()) settings.SetIniDir("/projects");
//
// The file is "LM/LMREG2022SP0.xml" in the folder for common data where that has a folder "LM", be the file
// there or not, and else "Program/LMREG.xml" beside the program. The first element "local" below the root
// holds the settings as children with the attributes "key" and "value"; keys go without regard to case, and
// the first one counts. docs/formats/settings.md tells all of it.
#pragma once

#include "export.h"
#include "text/rzstring.h"

#include <cstdint>

/// Access to the settings. Has no state: each call finds, reads and, to set, rewrites the whole file, and any
/// thread may call.
///
/// A getter gives "", 0, 0.0 or false for a setting that isn't there and for a file that can't be opened or
/// isn't well-formed; a setter does nothing for such a file, nor for one whose container is empty. Neither
/// tells. What a number means is a matter of those who set it. Texts are read through the narrow code page.
///
/// A std::exception, such as for a folder whose state can't be told, is written to the log behind
/// "CIRegistro::readValue", "CIRegistro::saveValue" or "CIRegistro::ReadTextFile" and raised again.
class LM_COMMONMFC_API CIRegistro {
public:
    CIRegistro() {}
    CIRegistro(const CIRegistro&) {}
    CIRegistro& operator=(const CIRegistro&) { return *this; }
    ~CIRegistro() {}

    // The product.

    /// The name of the platform.
    RZString GetPlatform();
    void SetPlatform(RZString value);
    /// The service pack.
    RZString GetServicePack();
    void SetServicePack(RZString value);
    /// The internal version of the installed product, which projects are marked with.
    RZString GetVersionInternal();
    void SetVersionInternal(RZString value);
    /// The version of the product.
    RZString GetProductVersion();
    void SetProductVersion(RZString value);
    /// The name of the product, which is no setting: "Tessel Electrical".
    RZString GetProductName();
    /// The name of the company.
    RZString GetCompanyName();
    void SetCompanyName(RZString value);

    // The database.

    /// The path of the database.
    RZString GetCaminhoBD();
    void SetCaminhoDb(RZString value);
    /// The name of the database.
    RZString GetNomeBD();
    void SetDbName(RZString value);
    /// The name of the local database, which is no setting: "ELECTRICALDB".
    RZString GetNomeLocalBD();
    /// The user of the database.
    RZString GetUserBD();
    void SetUserName(RZString value);
    /// The user's password, the only setting that is stored enciphered (CECryptography). Empty for a stored
    /// text that no setting of it made.
    RZString GetPassBD();
    /// Raises std::runtime_error, without a line in the log, when the cipher library fails.
    void SetUserPassword(RZString value);
    /// The server of the database.
    RZString GetServidorBD();
    void SetDbServer(RZString value);
    /// The type of the database.
    RZString GetTipoBD();
    void SetTipoBD(RZString value);

    // Panes and palettes.

    /// The state of the set of palettes.
    int GetPaletteState();
    void SetPaletteState(int value);
    /// The lock on updates of palettes.
    int GetLockUpdatePalette();
    void SetLockUpdatePalette(int value);
    /// The states of the panes of components, wires, pages and projects.
    int GetStatePComp();
    void SetStatePComp(int value);
    int GetStatePFios();
    void SetStatePFios(int value);
    int GetStatePPags();
    void SetStatePPags(int value);
    int GetStatePProj();
    void SetStatePProj(int value);
    /// The sizes of the panes on the left and on the right.
    int GetSizePLeft();
    void SetSizePLeft(int value);
    int GetSizePRight();
    void SetSizePRight(int value);
    /// The view of the project that was shown last.
    int GetLastViewProj();
    void SetLastViewProj(int value);

    // Defaults for work in a project. Numbers are written with six decimals and a point.

    /// What replacing a wire does unless told otherwise.
    int GetPadraoSubstFio();
    void SetPadraoSubstFio(int value);
    /// What inserting a wire does unless told otherwise.
    int GetPadraoInsFio();
    void SetPadraoInsFio(int value);
    /// The default configuration, and whether it is used.
    RZString GetCfgDefault();
    void SetCfgDefault(RZString value);
    bool getUsarCfgDefault();
    void setUsarCfgDefault(bool value);
    /// Angle, distance and scale of a layout, and whether the angle is the one that was defined.
    float GetAnguloLayout();
    void SetAnguloLayout(float value);
    float GetDistanciaLayout();
    void SetDistanciaLayout(float value);
    float GetEscalaLayout();
    void SetEscalaLayout(float value);
    int GetAnguloDefinidoLayout();
    void SetAnguloDefinidoLayout(int value);
    /// The language of the library of symbols.
    RZString getLibraryLang();
    void setLibraryLang(RZString value);
    /// The folder to begin with.
    RZString GetIniDir();
    void SetIniDir(RZString value);
    /// The command for diagrams.
    RZString GetCmdDiagrama();
    void SetCmdDiagrama(RZString value);
    /// The user and the server of the last SAP session.
    RZString GetLastUserSAP();
    void SetLastUserSAP(RZString value);
    int GetLastServerSAP();
    void SetLastServerSAP(int value);
    /// Whether the start page is used.
    bool GetUseStartPage();
    void SetUseStartPage(bool value);
    /// Flags of these names.
    bool GetPBLBLNFORCEEMPTY();
    void SetPBLBLNFORCEEMPTY(bool value);
    bool GetPBLBLNFORCERZ();
    void SetPBLBLNFORCERZ(bool value);

    // The machine.

    /// The folder of the running program, with "\" at its end. Raises std::system_error, with the text
    /// "Failed to get executable path", when the system doesn't tell.
    lm::WideString GetPathToProgramFolder() const;
    /// The text of a value in the machine's part of the registry (system/registry.h); "" when it isn't there
    /// or takes more than 1,024 bytes. The value's type isn't looked at: any bytes are taken as units.
    RZString GetRegistryValue(RZString path, RZString name);
    /// The folder for temporary files, which is made when it isn't there, with a separator at its end.
    RZString GetCaminhoTemp();
    /// Makes a folder and those above it, "\" and "/" counting alike. Failures aren't told.
    void CreateFullDirectory(RZString path);
    /// Reads a text file AND DELETES IT. Its bytes aren't decoded: those of each line, without zeros among
    /// them, are taken as 16-bit units, two by two, and "\n" stands behind each line. False for a file that
    /// can't be opened, which stays; the output is empty then. A failure in the middle is raised, and the
    /// file stays.
    bool ReadTextFile(RZString path, RZString& output);
    /// The computer's name, at most 15 units; "" when it isn't known.
    RZString GetLocalComputerName();
    /// The login name of the user, at most 99 units; "" when it isn't known or longer.
    RZString GetLocalUserName();

private:
    RZString readValue(RZString key) const;
    void saveValue(RZString key, RZString value);
    /// The path of the file. Raises std::filesystem::filesystem_error when the folder can't be looked at, and
    /// std::system_error when the program's own path can't be told.
    lm::WideString getFileReg() const;
    /// In bytes; 0 for a file whose size can't be told.
    std::uint64_t GetSizeOfFile(const lm::WideString& path) const;
};
