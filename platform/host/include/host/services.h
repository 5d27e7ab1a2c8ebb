// SPDX-License-Identifier: MIT
// The services of the host: documents, language, reading of drawing files, the title for messages.
//
//     if (CHostSystemServices* services = GetHostSystemServices())
//         OdSmartPtr<CHostDatabase> symbol = services->readFile(path);
#pragma once

#include "host/documentmanager.h"
#include "host/hoststring.h"

class QWidget;

/// The language of the host.
class LM_HOST_API CHostLocale {
public:
    /// 19 Portuguese, 2 English, 11 Spanish; 2 unless set otherwise.
    int languageCode() const { return m_code; }
    void setLanguageCode(int code) { m_code = code; }

private:
    int m_code = 2;
};

/// What the host does for modules.
class LM_HOST_API CHostSystemServices {
public:
    /// Never null.
    CHostDocumentManager* documentManager() const;
    /// Null when the host doesn't know its language.
    CHostLocale* locale() const;
    /// Reads a drawing file into a separate database: without document, without reactors, ended by its last
    /// smart pointer. Text of older files goes through their code page when `allowCPConversion` is set. The
    /// file is always read whole and never locked, and drawing files have no password: the last three
    /// arguments change nothing. Raises OdError for a missing, unreadable or damaged file and for a folder.
    OdSmartPtr<CHostDatabase> readFile(const OdString& path, bool allowCPConversion = true,
                                       bool partialLoad = false, int shareMode = 64,
                                       const OdString& password = OdString());
    /// Title for message boxes.
    CHostString title() const;
    /// The window over which dialogs open, which stays the host's. Null in a host without windows. For the
    /// main thread.
    QWidget* mainWindow() const;
};

/// The services, or null in a host without them.
LM_HOST_API CHostSystemServices* GetHostSystemServices();

namespace lm::host {

/// Whether GetHostSystemServices gives the services. For tests.
LM_HOST_API void setServicesPresent(bool present);
/// Whether the services give the locale. For tests.
LM_HOST_API void setLocalePresent(bool present);
/// Says which window mainWindow gives; null takes it back. Whoever names a window takes it back before the
/// window ends.
LM_HOST_API void setMainWindow(QWidget* window);

} // namespace lm::host
