// SPDX-License-Identifier: MIT
// From groups to chains of records.
#pragma once

#include "dxf/place.h"

#include "drawing/resbuf.h"

namespace lm::drawing {

/// A record of a chain from a group; the components of a point come together.
class ChainBuilder {
public:
    explicit ChainBuilder(const Values& values) : m_values(values) {}

    void add(const Group& group) {
        bool bad = false;
        const int base = pointBase(group.code);
        if (base >= 0 && !m_tail.isNull() && m_tail->payload() == OdResBuf::kPoint && m_pointCode == base &&
            (group.code - base) / 10 == m_next) {
            OdGePoint3d point = m_tail->getPoint3d();
            (m_next == 1 ? point.y : point.z) = m_values.real(group, bad);
            m_tail->setPoint3d(point);
            ++m_next;
            return;
        }
        OdSmartPtr<OdResBuf> record = OdResBuf::newRb(group.code);
        m_next = 3;
        fill(*record.get(), group, bad);
        if (m_head.isNull())
            m_head = record;
        else
            m_tail->setNext(record);
        m_tail = record;
    }
    OdSmartPtr<OdResBuf> take() {
        OdSmartPtr<OdResBuf> head = m_head;
        m_head.release();
        m_tail.release();
        return head;
    }
    bool isEmpty() const { return m_head.isNull(); }

private:
    void fill(OdResBuf& record, const Group& group, bool& bad) {
        switch (valueTypeOf(group.code)) {
        case ValueType::kReal: {
            const double value = m_values.real(group, bad);
            if (pointBase(group.code) == group.code) {
                record.setPoint3d({value, 0, 0});
                m_pointCode = group.code;
                m_next = 1;
            } else {
                record.setDouble(value);
            }
            break;
        }
        case ValueType::kInt16:
        case ValueType::kInt32:
        case ValueType::kInt64:
        case ValueType::kBool:
            record.setInt64(m_values.integer(group, bad));
            break;
        case ValueType::kBinary:
            record.setBinary(m_values.binary(group, bad));
            break;
        default:
            record.setString(m_values.text(group, bad));
        }
    }

    const Values& m_values;
    OdSmartPtr<OdResBuf> m_head, m_tail;
    int m_pointCode = -1;
    int m_next = 3; // component of an open point that comes next
};

} // namespace lm::drawing
