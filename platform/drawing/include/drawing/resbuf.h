// SPDX-License-Identifier: MIT
// OdResBuf: one typed record of extended data, of an xrecord or of a filter, in a counted chain.
//
// Group code and payload are independent: a reader or setter of the payload leaves the code alone and the
// other way round. Readers never throw: a number read as text gives its decimal text, a text read as an
// integer its leading decimal number, else 0.
#pragma once

#include "drawing/geometry.h"
#include "drawing/objectid.h"

#include <string>
#include <variant>

/// A record of a chain. Counted; the chain owns what follows. A very long chain is released without
/// recursion.
class LM_DRAWING_API OdResBuf : public OdRxObject {
    LM_RX_CLASS(OdResBuf)
public:
    /// A record with a group code and no payload.
    static OdSmartPtr<OdResBuf> newRb(int restype = 0);
    static OdSmartPtr<OdResBuf> newRb(int restype, const OdString& text);
    static OdSmartPtr<OdResBuf> newRb(int restype, int value);
    static OdSmartPtr<OdResBuf> newRb(int restype, double value);

    int restype() const { return m_restype; }
    void setRestype(int restype) { m_restype = restype; }

    OdString getString() const;
    short getInt16() const;
    int getInt32() const;
    long long getInt64() const;
    double getDouble() const;
    OdGePoint3d getPoint3d() const;
    std::string getBinary() const;
    /// The id that the payload holds, null for another payload.
    OdDbObjectId getObjectId() const;

    void setString(const OdString& text) { m_payload = text; }
    void setInt16(short value) { m_payload = static_cast<long long>(value); }
    void setInt32(int value) { m_payload = static_cast<long long>(value); }
    void setInt64(long long value) { m_payload = value; }
    void setDouble(double value) { m_payload = value; }
    void setPoint3d(const OdGePoint3d& point) { m_payload = point; }
    void setBinary(const std::string& bytes) { m_payload = bytes; }
    void setObjectId(OdDbObjectId id) { m_payload = id; }

    /// What the payload is.
    enum Payload { kNone, kText, kInteger, kReal, kPoint, kId, kBinary };
    Payload payload() const { return static_cast<Payload>(m_payload.index()); }

    OdSmartPtr<OdResBuf> next() const { return m_next; }
    void setNext(OdSmartPtr<OdResBuf> next) { m_next = next; }
    /// Puts `record` behind this one and gives it.
    OdSmartPtr<OdResBuf> append(OdSmartPtr<OdResBuf> record);
    /// The last record of the chain.
    OdSmartPtr<OdResBuf> last();
    /// A copy of the whole chain.
    OdSmartPtr<OdResBuf> cloneChain() const;

    void addRef() final { ++m_refs; }
    void release() final;
    long numRefs() const override { return m_refs; }

private:
    OdResBuf() = default;
    ~OdResBuf() override;
    long m_refs = 1;
    int m_restype = 0;
    std::variant<std::monostate, OdString, long long, double, OdGePoint3d, OdDbObjectId, std::string>
        m_payload;
    OdSmartPtr<OdResBuf> m_next;
};
