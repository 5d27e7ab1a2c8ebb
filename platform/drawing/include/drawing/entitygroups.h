// SPDX-License-Identifier: MIT
// Objects group by group, as drawing files have them: for who makes and changes objects by lists of groups
// and may lose none of them. What a class has members for is set by them; this is for the rest.
#pragma once

#include "drawing/curves.h"
#include "drawing/database.h"
#include "drawing/resbuf.h"

#include <optional>
#include <span>
#include <vector>

namespace lm::drawing {

/// The number that an object has under a group code, in the unit of files: thickness, widths, flags,
/// distances of an array. Nothing for a code that the class doesn't read as a number.
LM_DRAWING_API std::optional<double> numberAt(const OdDbObject& object, int code);

/// Sets such a number; what the field holds decides whether it is rounded to an integer. False, with nothing
/// changed, for a code that the class doesn't read as a number, and for a number that a file can't hold.
/// Raises OdError (eNotOpenForWrite) as setters do. `database` is that of the object, or that it is made for.
LM_DRAWING_API bool setNumberAt(OdDbDatabase& database, OdDbObject& object, int code, double number);

/// The same for a text.
LM_DRAWING_API bool setTextAt(OdDbDatabase& database, OdDbObject& object, int code, const OdString& text);

/// A vertex of a polyline, with what begins at it.
struct PolylineVertex {
    OdGePoint2d point;
    double bulge = 0;
    double startWidth = 0;
    double endWidth = 0;
    friend bool operator==(const PolylineVertex&, const PolylineVertex&) = default;
};
LM_DRAWING_API std::vector<PolylineVertex> verticesOf(const OdDbPolyline& polyline);
/// Puts vertices in place of all that there are. Raises as setters do.
LM_DRAWING_API void setVertices(OdDbDatabase& database, OdDbPolyline& polyline,
                                std::span<const PolylineVertex> vertices);

/// Groups that the class of an object doesn't read and the object holds nevertheless, in their order: those
/// of the codes that are asked for. Handles are texts. Null when it holds none.
LM_DRAWING_API OdSmartPtr<OdResBuf> keptGroups(const OdDbObject& object, std::span<const int> codes);

/// Lets a new object hold such groups, which a saved drawing has behind the fields of the class, or in place
/// of what every object of the class has there. Groups that it held before are gone. `database` is that which
/// the object is made for. Raises OdError (eAlreadyInDatabase) for an object that stands in one.
LM_DRAWING_API void keepGroups(OdDbDatabase& database, OdDbObject& object, const OdResBuf* groups);

/// The block that a layout shows, by the name of the layout in either case; null for none. A drawing that has
/// no layouts yet gets "Model", "Layout1" and so on for its spaces when it is saved, so these names count.
LM_DRAWING_API OdDbObjectId blockOfLayout(const OdDbDatabase& database, const OdString& layout);
/// The other way round; empty for a block that no layout shows.
LM_DRAWING_API OdString layoutOfBlock(const OdDbDatabase& database, OdDbObjectId block);

} // namespace lm::drawing
