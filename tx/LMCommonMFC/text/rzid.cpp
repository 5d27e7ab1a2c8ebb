// SPDX-License-Identifier: MIT
#include "text/rzid.h"

#include "arguments.h"

#include "drawing/object.h"
#include "host/database.h"
#include "host/document.h"
#include "host/hostapi.h"

#include <algorithm>

constinit const RZID RZID::kNull;

namespace {

OdDbObjectId lookUp(const OdDbHandle& handle, OdDbDatabase* database) {
    return database == nullptr ? OdDbObjectId() : database->getOdDbObjectId(handle, false, 0);
}

OdDbHandle parsed(const unsigned short* text) {
    OdDbHandle handle;
    handle = text;
    return handle;
}

} // namespace

RZID::RZID(OdDbHandle handle) : m_id(lookUp(handle, getDatabase())) {}

RZID::RZID(const unsigned short* text) : m_id(lookUp(parsed(text), getDatabase())) {}

RZID::RZID(const unsigned short* text, OdDbDatabase* database) : m_id(lookUp(parsed(text), database)) {}

RZID::RZID(const unsigned short* text, CHostDatabase* database)
    : RZID(text, static_cast<OdDbDatabase*>(database)) {}

RZID::RZID(unsigned long long* const name) {
    CHostDocument* document = ACTIVE_DOCUMENT();
    if (document != nullptr && name != nullptr) document->getAPI()->GetObjectId(name, m_id);
}

const unsigned short* RZID::toLPCWSTR() const {
    // A plain array, since an object with a destructor would keep the module loaded until its thread ends.
    constexpr std::size_t kDigits = 16;
    thread_local unsigned short buffer[kDigits + 1];
    const OdString text = m_id.getHandle().ascii();
    const std::size_t size = std::min(text.getLength(), kDigits);
    std::copy_n(text.c_str(), size, buffer);
    buffer[size] = 0;
    return buffer;
}

OdSmartPtr<OdDbObject> RZID::openObject(OdDb::OpenMode mode, bool openErased) const {
    if (m_id.database() == nullptr || !m_id.isValid()) return OdSmartPtr<OdDbObject>();
    return m_id.openObject(mode, openErased);
}

RZString::RZString(const RZID& id) : RZString(static_cast<OdDbHandle>(id)) {}

RZString& RZString::operator=(const RZID& id) {
    return *this = RZString(id);
}
