// SPDX-License-Identifier: MIT
#include "drawing/text.h"

#include "base/rxclass.h"
#include "model/linetext.h"
#include "model/transform.h"

LM_RX_DEFINE(OdDbText, OdDbEntity)
LM_RX_DEFINE(OdDbAttribute, OdDbText)
LM_RX_DEFINE(OdDbAttributeDefinition, OdDbText)
LM_RX_DEFINE(OdDbMText, OdDbEntity)

void OdDbText::setTextString(const OdString& text) {
    beginChange();
    m_text = text;
}

void OdDbText::setPosition(const OdGePoint3d& point) {
    beginChange();
    m_position = point;
}

void OdDbText::setAlignmentPoint(const OdGePoint3d& point) {
    beginChange();
    m_alignment = point;
}

void OdDbText::setHeight(double height) {
    beginChange();
    m_height = height;
}

void OdDbText::setRotation(double radians) {
    beginChange();
    m_rotation = radians;
}

void OdDbText::setOblique(double radians) {
    beginChange();
    m_oblique = radians;
}

void OdDbText::setWidthFactor(double factor) {
    beginChange();
    m_widthFactor = factor;
}

void OdDbText::setThickness(double thickness) {
    beginChange();
    m_thickness = thickness;
}

void OdDbText::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

void OdDbText::setTextStyle(OdDbObjectId id) {
    beginChange();
    m_style = id;
}

void OdDbText::setHorizontalMode(int mode) {
    beginChange();
    m_horizontal = static_cast<unsigned char>(mode);
}

void OdDbText::setVerticalMode(int mode) {
    beginChange();
    m_vertical = static_cast<unsigned char>(mode);
}

void OdDbText::setMirrorInX(bool mirror) {
    beginChange();
    m_mirror = static_cast<unsigned char>(mirror ? m_mirror | 2 : m_mirror & ~2);
}

void OdDbText::setMirrorInY(bool mirror) {
    beginChange();
    m_mirror = static_cast<unsigned char>(mirror ? m_mirror | 4 : m_mirror & ~4);
}

void OdDbText::getBoundingPoints(OdArray<OdGePoint3d>& corners) const {
    constexpr double kUnitWidth = 0.6;
    const double width = kUnitWidth * m_height * m_widthFactor * static_cast<double>(m_text.getLength());
    const OdGeVector3d along = OdGeVector3d(std::cos(m_rotation), std::sin(m_rotation), 0) * width;
    const OdGeVector3d up = OdGeVector3d(-std::sin(m_rotation), std::cos(m_rotation), 0) * m_height;
    corners.clear();
    corners.append(m_position);
    corners.append(m_position + along);
    corners.append(m_position + along + up);
    corners.append(m_position + up);
}

OdResult OdDbText::transformBy(const OdGeMatrix3d& matrix) {
    lm::drawing::PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    m_position = plane.point(m_position);
    // A text that stands by its position has no second point in most files, and gets none by moving.
    if (!isDefaultAlignment() || m_alignment != OdGePoint3d()) m_alignment = plane.point(m_alignment);
    m_rotation = plane.angle(m_rotation);
    m_height *= plane.factor();
    m_thickness *= plane.factor();
    m_normal = plane.normal();
    return eOk;
}

OdDbAttribute::OdDbAttribute() = default;
OdDbAttribute::~OdDbAttribute() = default;

namespace {

std::shared_ptr<OdDbMText> hold(const OdSmartPtr<OdDbMText>& mtext) {
    if (mtext.isNull()) return {};
    mtext->addRef();
    return {mtext.get(), [](OdDbMText* text) { text->release(); }};
}

std::shared_ptr<OdDbMText> copyOf(const OdDbMText* mtext) {
    if (mtext == nullptr) return {};
    return {new OdDbMText(*mtext), [](OdDbMText* text) { text->release(); }};
}

} // namespace

OdDbAttribute::OdDbAttribute(const OdDbAttribute& other)
    : OdDbText(other), m_tag(other.m_tag), m_mtext(copyOf(other.m_mtext.get())),
      m_fieldLength(other.m_fieldLength), m_attributeFlags(other.m_attributeFlags) {}

OdDbAttribute& OdDbAttribute::operator=(const OdDbAttribute& other) {
    OdDbText::operator=(other);
    m_tag = other.m_tag;
    m_mtext = copyOf(other.m_mtext.get());
    m_fieldLength = other.m_fieldLength;
    m_attributeFlags = other.m_attributeFlags;
    return *this;
}

void OdDbAttribute::setTextString(const OdString& text) {
    const bool same = text == textString();
    OdDbText::setTextString(text);
    if (m_mtext != nullptr && !same) m_mtext->setContents(lm::drawing::contentsOf(text));
}

OdResult OdDbAttribute::transformBy(const OdGeMatrix3d& matrix) {
    const OdResult result = OdDbText::transformBy(matrix);
    if (result == eOk && m_mtext != nullptr) m_mtext->transformBy(matrix);
    return result;
}

void OdDbAttribute::setTag(const OdString& tag) {
    beginChange();
    m_tag = tag;
}

void OdDbAttribute::setInvisible(bool invisible) {
    beginChange();
    m_attributeFlags = static_cast<unsigned char>(invisible ? m_attributeFlags | 1 : m_attributeFlags & ~1);
}

void OdDbAttribute::setFieldLength(int length) {
    beginChange();
    m_fieldLength = static_cast<short>(length);
}

OdSmartPtr<OdDbMText> OdDbAttribute::getMTextAttribute() const {
    return OdSmartPtr<OdDbMText>(m_mtext.get());
}

void OdDbAttribute::setMTextAttribute(OdSmartPtr<OdDbMText> mtext) {
    beginChange();
    m_mtext = hold(mtext);
    // As a text alone, so that the formatting of the lines stays.
    if (m_mtext != nullptr && textString().isEmpty())
        OdDbText::setTextString(lm::drawing::plainTextOf(m_mtext->contents()));
}

OdDbAttributeDefinition::OdDbAttributeDefinition() = default;
OdDbAttributeDefinition::~OdDbAttributeDefinition() = default;

OdDbAttributeDefinition::OdDbAttributeDefinition(const OdDbAttributeDefinition& other)
    : OdDbText(other), m_tag(other.m_tag), m_prompt(other.m_prompt), m_mtext(copyOf(other.m_mtext.get())),
      m_fieldLength(other.m_fieldLength), m_attributeFlags(other.m_attributeFlags) {}

OdDbAttributeDefinition& OdDbAttributeDefinition::operator=(const OdDbAttributeDefinition& other) {
    OdDbText::operator=(other);
    m_tag = other.m_tag;
    m_prompt = other.m_prompt;
    m_mtext = copyOf(other.m_mtext.get());
    m_fieldLength = other.m_fieldLength;
    m_attributeFlags = other.m_attributeFlags;
    return *this;
}

void OdDbAttributeDefinition::setTextString(const OdString& text) {
    const bool same = text == textString();
    OdDbText::setTextString(text);
    if (m_mtext != nullptr && !same) m_mtext->setContents(lm::drawing::contentsOf(text));
}

OdResult OdDbAttributeDefinition::transformBy(const OdGeMatrix3d& matrix) {
    const OdResult result = OdDbText::transformBy(matrix);
    if (result == eOk && m_mtext != nullptr) m_mtext->transformBy(matrix);
    return result;
}

void OdDbAttributeDefinition::setTag(const OdString& tag) {
    beginChange();
    m_tag = tag;
}

void OdDbAttributeDefinition::setPrompt(const OdString& prompt) {
    beginChange();
    m_prompt = prompt;
}

void OdDbAttributeDefinition::setInvisible(bool invisible) {
    beginChange();
    m_attributeFlags = static_cast<unsigned char>(invisible ? m_attributeFlags | 1 : m_attributeFlags & ~1);
}

void OdDbAttributeDefinition::setConstant(bool constant) {
    beginChange();
    m_attributeFlags = static_cast<unsigned char>(constant ? m_attributeFlags | 2 : m_attributeFlags & ~2);
}

void OdDbAttributeDefinition::setFieldLength(int length) {
    beginChange();
    m_fieldLength = static_cast<short>(length);
}

OdSmartPtr<OdDbMText> OdDbAttributeDefinition::getMTextAttributeDefinition() const {
    return OdSmartPtr<OdDbMText>(m_mtext.get());
}

void OdDbAttributeDefinition::setMTextAttributeDefinition(OdSmartPtr<OdDbMText> mtext) {
    beginChange();
    m_mtext = hold(mtext);
    // As a text alone, so that the formatting of the lines stays.
    if (m_mtext != nullptr && textString().isEmpty())
        OdDbText::setTextString(lm::drawing::plainTextOf(m_mtext->contents()));
}

void OdDbMText::setContents(const OdString& text) {
    beginChange();
    m_contents = text;
}

void OdDbMText::setLocation(const OdGePoint3d& point) {
    beginChange();
    m_location = point;
}

void OdDbMText::setTextHeight(double height) {
    beginChange();
    m_height = height;
}

void OdDbMText::setDirection(const OdGeVector3d& direction) {
    beginChange();
    m_direction = direction;
    m_rotation = 0;
}

void OdDbMText::setNormal(const OdGeVector3d& normal) {
    beginChange();
    m_normal = normal;
}

void OdDbMText::setAttachment(int attachment) {
    beginChange();
    m_attachment = static_cast<short>(attachment);
}

void OdDbMText::setTextStyle(OdDbObjectId id) {
    beginChange();
    m_style = id;
}

void OdDbMText::setWidth(double width) {
    beginChange();
    m_width = width;
}

OdResult OdDbMText::transformBy(const OdGeMatrix3d& matrix) {
    lm::drawing::PlaneTransform plane(matrix, m_normal);
    if (!plane.isUniform()) return eNotApplicable;
    beginChange();
    m_location = matrix * m_location;
    if (m_rotation != 0 && m_direction == OdGeVector3d::kXAxis) {
        m_rotation = plane.angle(m_rotation); // the direction stays the one that doesn't count
    } else {
        m_direction = matrix * m_direction;
        const double length = m_direction.length();
        if (length > 0) m_direction = m_direction * (1 / length);
    }
    for (double* const size : {&m_height, &m_width, &m_shownWidth, &m_shownHeight, &m_frameHeight})
        *size *= plane.factor();
    m_normal = plane.normal();
    return eOk;
}
