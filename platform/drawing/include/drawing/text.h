// SPDX-License-Identifier: MIT
// Single-line text, the two attribute classes that derive from it, and multi-line text.
#pragma once

#include "drawing/entity.h"
#include "drawing/odarray.h"

class OdDbAttributeDefinition;
class OdDbMText;

/// A line of text. Angles in radians, lengths in drawing units, points in the object coordinate system of the
/// normal.
class LM_DRAWING_API OdDbText : public OdDbEntity {
    LM_RX_CLASS(OdDbText)
public:
    enum HorzMode : unsigned char { kLeft = 0, kCenter = 1, kRight = 2, kAlign = 3, kMiddle = 4, kFit = 5 };
    enum VertMode : unsigned char { kBase = 0, kBottom = 1, kVertMid = 2, kTop = 3 };

    OdDbText() = default;
    OdDbText(const OdDbText&) = default;

    /// The text. The reference holds until the text changes; copying it costs one count.
    const OdString& textString() const { return m_text; }
    virtual void setTextString(const OdString& text);
    OdGePoint3d position() const { return m_position; }
    void setPosition(const OdGePoint3d& point);
    /// The second point, which counts unless isDefaultAlignment.
    OdGePoint3d alignmentPoint() const { return m_alignment; }
    void setAlignmentPoint(const OdGePoint3d& point);
    /// Whether the text stands by its position alone: left and on the base line.
    bool isDefaultAlignment() const { return m_horizontal == kLeft && m_vertical == kBase; }
    double height() const { return m_height; }
    void setHeight(double height);
    double rotation() const { return m_rotation; }
    void setRotation(double radians);
    double oblique() const { return m_oblique; }
    void setOblique(double radians);
    double widthFactor() const { return m_widthFactor; }
    void setWidthFactor(double factor);
    double thickness() const { return m_thickness; }
    void setThickness(double thickness);
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    OdDbObjectId textStyle() const { return m_style; }
    void setTextStyle(OdDbObjectId id);
    int horizontalMode() const { return m_horizontal; }
    void setHorizontalMode(int mode);
    int verticalMode() const { return m_vertical; }
    void setVerticalMode(int mode);
    bool isMirroredInX() const { return (m_mirror & 2) != 0; }
    void setMirrorInX(bool mirror);
    bool isMirroredInY() const { return (m_mirror & 4) != 0; }
    void setMirrorInY(bool mirror);

    /// The four corners of the text's box, lower left first, counter-clockwise, turned by the rotation. The
    /// width is 0.6 times height times width factor times units: a fixed rule, so that results are the same
    /// on every machine.
    void getBoundingPoints(OdArray<OdGePoint3d>& corners) const;
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// The box of the bounding points, or that of the multi-line form where there is one.
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbText)
    OdDbText& operator=(const OdDbText&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdGePoint3d m_position;
    OdGePoint3d m_alignment;
    OdGeVector3d m_normal{0, 0, 1};
    double m_height = 0.2;
    double m_rotation = 0;
    double m_oblique = 0;
    double m_widthFactor = 1;
    double m_thickness = 0;
    OdDbObjectId m_style;
    unsigned char m_horizontal = kLeft;
    unsigned char m_vertical = kBase;
    unsigned char m_mirror = 0;
    OdString m_text; // last, so that it lies in one line of the cache with the tag of an attribute
};

/// An attribute of a block reference: the value of one placed symbol.
class LM_DRAWING_API OdDbAttribute : public OdDbText {
    LM_RX_CLASS(OdDbAttribute)
public:
    OdDbAttribute();
    OdDbAttribute(const OdDbAttribute& other);
    ~OdDbAttribute() override;

    const OdString& tag() const { return m_tag; }
    void setTag(const OdString& tag);
    bool isInvisible() const { return (m_attributeFlags & 1) != 0; }
    void setInvisible(bool invisible);
    bool isConstant() const { return (m_attributeFlags & 2) != 0; }
    int fieldLength() const { return m_fieldLength; }
    void setFieldLength(int length);
    /// Sets the text, and with it the contents of the multi-line form: lines that end with a line feed become
    /// its lines, and a backslash or a brace shows as itself. Setting the text that is there already leaves
    /// the contents with their formatting.
    void setTextString(const OdString& text) override;
    bool isMTextAttribute() const { return m_mtext.get() != nullptr; }
    /// The multi-line form, null for none. Where it comes to an empty text, the text is what its lines show.
    OdSmartPtr<OdDbMText> getMTextAttribute() const;
    void setMTextAttribute(OdSmartPtr<OdDbMText> mtext);
    /// Initialises the attribute from a definition under a matrix, such as the blockTransform of its
    /// reference: place, alignment point, height, rotation, oblique angle, width factor, thickness, style,
    /// normal, modes and mirroring are the definition's, moved by the matrix, and the text is its default.
    /// Tag, invisibility, layer and a multi-line form stay. A matrix that stretches is taken as exactly as a
    /// text can show it. A null definition, and on an attribute in a database a style of another drawing,
    /// raises OdError; nothing has changed then.
    void setAttributeFromBlock(const OdDbAttributeDefinition* definition, const OdGeMatrix3d& matrix);
    /// Moves the multi-line form as well.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;

    LM_DB_STATE(OdDbAttribute)
    OdDbAttribute& operator=(const OdDbAttribute& other);

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    OdString m_tag;
    std::shared_ptr<OdDbMText> m_mtext;
    short m_fieldLength = 0;
    unsigned char m_attributeFlags = 0;
};

/// The definition of an attribute in a block: prompt and default value.
class LM_DRAWING_API OdDbAttributeDefinition : public OdDbText {
    LM_RX_CLASS(OdDbAttributeDefinition)
public:
    OdDbAttributeDefinition();
    OdDbAttributeDefinition(const OdDbAttributeDefinition& other);
    ~OdDbAttributeDefinition() override;

    const OdString& tag() const { return m_tag; }
    void setTag(const OdString& tag);
    const OdString& prompt() const { return m_prompt; }
    void setPrompt(const OdString& prompt);
    bool isInvisible() const { return (m_attributeFlags & 1) != 0; }
    void setInvisible(bool invisible);
    bool isConstant() const { return (m_attributeFlags & 2) != 0; }
    void setConstant(bool constant);
    int fieldLength() const { return m_fieldLength; }
    void setFieldLength(int length);
    /// As for attributes.
    void setTextString(const OdString& text) override;
    bool isMTextAttributeDefinition() const { return m_mtext.get() != nullptr; }
    OdSmartPtr<OdDbMText> getMTextAttributeDefinition() const;
    void setMTextAttributeDefinition(OdSmartPtr<OdDbMText> mtext);
    /// As for attributes.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;

    LM_DB_STATE(OdDbAttributeDefinition)
    OdDbAttributeDefinition& operator=(const OdDbAttributeDefinition& other);

private:
    friend struct lm::drawing::ClassSpecs;
    friend struct lm::drawing::ObjectAccess;
    OdString m_tag;
    OdString m_prompt;
    std::shared_ptr<OdDbMText> m_mtext;
    short m_fieldLength = 0;
    unsigned char m_attributeFlags = 0;
};

/// Text of several lines with its formatting codes as they stand.
class LM_DRAWING_API OdDbMText : public OdDbEntity {
    LM_RX_CLASS(OdDbMText)
public:
    OdDbMText() = default;
    OdDbMText(const OdDbMText&) = default;

    /// The text with its formatting codes.
    OdString contents() const { return m_contents; }
    void setContents(const OdString& text);
    OdGePoint3d location() const { return m_location; }
    void setLocation(const OdGePoint3d& point);
    /// Where the lines run to. A file may tell it by a rotation instead; that one counts unless the direction
    /// was set to another one than the x axis.
    OdGeVector3d direction() const { return m_direction; }
    void setDirection(const OdGeVector3d& direction);
    double rotation() const { return m_rotation; }
    OdGeVector3d normal() const { return m_normal; }
    void setNormal(const OdGeVector3d& normal);
    double textHeight() const { return m_height; }
    void setTextHeight(double height);
    double width() const { return m_width; }
    void setWidth(double width);
    /// Which point of the box the location is: 1 to 3 left to right at the top, 4 to 6 in the middle, 7 to 9
    /// at the bottom.
    int attachment() const { return m_attachment; }
    void setAttachment(int attachment);
    OdDbObjectId textStyle() const { return m_style; }
    void setTextStyle(OdDbObjectId id);
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// The box by a fixed rule, so that results are the same on every machine: lines end at "\\P"; the width
    /// is that of the frame, without one 0.6 times height times units of the longest line with its codes; the
    /// height is the text's, and 5/3 of it for each further line.
    OdResult getGeomExtents(OdGeExtents3d& extents) const override;

    LM_DB_STATE(OdDbMText)
    OdDbMText& operator=(const OdDbMText&) = default;

private:
    friend struct lm::drawing::ClassSpecs;
    OdString m_contents;
    OdGePoint3d m_location;
    OdGeVector3d m_direction{1, 0, 0};
    OdGeVector3d m_normal{0, 0, 1};
    double m_height = 0.2;
    double m_width = 0;
    double m_rotation = 0;
    // What the program that wrote the text measured, and the height that its frame was given.
    double m_shownWidth = 0;
    double m_shownHeight = 0;
    double m_frameHeight = 0;
    OdDbObjectId m_style;
    short m_attachment = 1;
};
