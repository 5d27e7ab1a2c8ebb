// SPDX-License-Identifier: MIT
// The local circuits of a drawing: what one is, and where the drawing keeps it.
//
// The dictionary LM_LOCAL_CIRCUITS among the named objects has one xrecord for each circuit, under its
// number: the number (70), three texts (1, 2, 3), the page of its region (8) and two corners of it (10, 11).
#pragma once

#include "text/rzstring.h"

#include "drawing/database.h"

#include <array>
#include <functional>
#include <map>

namespace lmcircuits {

/// A circuit. Its region is an upright rectangle on a page; the limits belong to it.
struct Circuit {
    static constexpr int kLeast = 1, kMost = 32767; // what a record of a call can tell

    int number = kLeast;
    std::array<RZString, 3> texts;
    RZString page;
    OdGePoint2d lower, upper;

    /// Any two opposite corners.
    void setRegion(const OdGePoint2d& corner, const OdGePoint2d& opposite);
    bool holds(const RZString& onPage, const OdGePoint2d& point) const;
};

using Circuits = std::map<int, Circuit>;

/// The circuits of a drawing by number. What isn't a whole circuit entered under its number is passed over.
Circuits circuitsOf(const OdDbDatabase& drawing);
/// Keeps a circuit in the drawing, in place of the one of the same number.
void keep(OdDbDatabase& drawing, const Circuit& circuit);
/// Drops the circuits of which `isMeant` says so; gives how many.
int drop(OdDbDatabase& drawing, const std::function<bool(const Circuit&)>& isMeant);

} // namespace lmcircuits
