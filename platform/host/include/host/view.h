// SPDX-License-Identifier: MIT
// CHostView: what a document shows; and CHostCoordinateService: from the user's coordinates to the drawing's.
#pragma once

#include "host/export.h"

#include "drawing/geometry.h"

/// The view of a document. Without a window nothing is drawn: it counts how often drawing was asked for.
class LM_HOST_API CHostView {
public:
    CHostView() = default;
    CHostView(const CHostView&) = delete;
    CHostView& operator=(const CHostView&) = delete;

    /// How often the view was regenerated.
    unsigned long regenerations() const { return m_regenerations; }

private:
    friend class CHostDocument;
    unsigned long m_regenerations = 0;
};

/// Turns points of the user's coordinate system into points of the drawing.
class LM_HOST_API CHostCoordinateService {
public:
    CHostCoordinateService() = default;
    CHostCoordinateService(const CHostCoordinateService&) = delete;
    CHostCoordinateService& operator=(const CHostCoordinateService&) = delete;

    /// Sets the user's system by its transform to the drawing's; the identity at the start.
    void setUserSystem(const OdGeMatrix3d& toDrawing) { m_toDrawing = toDrawing; }
    /// Converts a point in place.
    void toDrawing(OdGePoint3d& point) {
        point = m_toDrawing * point;
        ++m_conversions;
    }
    /// Points converted so far. For tests.
    unsigned long conversions() const { return m_conversions; }

private:
    OdGeMatrix3d m_toDrawing;
    unsigned long m_conversions = 0;
};
