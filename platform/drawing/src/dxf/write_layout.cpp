// SPDX-License-Identifier: MIT
#include "dxf/write_layout.h"

namespace lm::drawing {

namespace {

using I = LayoutItem;

constexpr I mark(std::string_view name) {
    return {I::kMark, 100, name};
}
constexpr I field(short code) {
    return {I::kAlways, code};
}
constexpr I option(short code) {
    return {I::kOptional, code};
}
constexpr I integer(short code, double number, FileVersion from = FileVersion::kR2000) {
    return {I::kInteger, code, {}, number, from};
}
constexpr I real(short code, double number) {
    return {I::kReal, code, {}, number};
}
constexpr I text(short code, std::string_view text) {
    return {I::kText, code, text};
}
constexpr I list(short code) {
    return {I::kList, code};
}

constexpr I kHandle{I::kHandle, 5};
constexpr I kOwner{I::kOwner, 330};
constexpr I kFollow{I::kFollow, 66};
constexpr I kEmbedded{I::kEmbedded, 101};
constexpr auto kAttributeVersion = FileVersion::kR2010;

// What all entities begin with.
#define LM_ENTITY                                                                                            \
    kHandle, kOwner, mark("AcDbEntity"), I{I::kPaper, 67}, field(8), option(6), option(62), option(370),     \
        option(48), option(60), option(420), option(440)
// What all records of tables begin with.
#define LM_RECORD kHandle, kOwner, mark("AcDbSymbolTableRecord")
#define LM_POINT(kind, code) kind(code), kind(code + 10), kind(code + 20)

constexpr I kLine[] = {LM_ENTITY, mark("AcDbLine"), option(39), LM_POINT(field, 10), LM_POINT(field, 11)};
constexpr I kPoint[] = {LM_ENTITY, mark("AcDbPoint"), LM_POINT(field, 10), option(39)};
constexpr I kCircle[] = {LM_ENTITY,           mark("AcDbCircle"), option(39),
                         LM_POINT(field, 10), field(40),          LM_POINT(option, 210)};
constexpr I kArc[] = {LM_ENTITY,           mark("AcDbCircle"), option(39),
                      LM_POINT(field, 10), field(40),          LM_POINT(option, 210),
                      mark("AcDbArc"),     field(50),          field(51)};
constexpr I kEllipse[] = {LM_ENTITY,
                          mark("AcDbEllipse"),
                          LM_POINT(field, 10),
                          LM_POINT(field, 11),
                          LM_POINT(field, 210),
                          field(40),
                          field(41),
                          field(42)};
constexpr I kPolyline[] = {LM_ENTITY,
                           mark("AcDbPolyline"),
                           field(90),
                           field(70),
                           option(43),
                           option(38),
                           option(39),
                           list(10),
                           list(20),
                           list(42),
                           LM_POINT(option, 210)};
// What texts, attributes and their definitions begin with.
#define LM_TEXT                                                                                              \
    LM_ENTITY, mark("AcDbText"), option(39), LM_POINT(field, 10), field(40), field(1), option(50),           \
        option(41), option(51), option(7), option(71), option(72), LM_POINT(option, 11),                     \
        LM_POINT(option, 210)
constexpr I kText[] = {LM_TEXT, mark("AcDbText"), option(73)};
constexpr I kAttribute[] = {LM_TEXT,
                            mark("AcDbAttribute"),
                            integer(280, 0, kAttributeVersion),
                            field(2),
                            field(70),
                            option(73),
                            option(74),
                            integer(280, 1, kAttributeVersion),
                            kEmbedded};
constexpr I kDefinition[] = {LM_TEXT,
                             mark("AcDbAttributeDefinition"),
                             integer(280, 0, kAttributeVersion),
                             field(3),
                             field(2),
                             field(70),
                             option(73),
                             option(74),
                             integer(280, 1, kAttributeVersion),
                             kEmbedded};
// What multi-line texts end with, those inside attributes too.
#define LM_MTEXT_END                                                                                         \
    list(3), list(1), option(7), LM_POINT(option, 210), LM_POINT(option, 11), option(50), integer(73, 1),    \
        real(44, 1)
constexpr I kMText[] = {LM_ENTITY,  mark("AcDbMText"), LM_POINT(field, 10), field(40),   field(41),
                        option(46), field(71),         integer(72, 5),      LM_MTEXT_END};
constexpr I kEmbeddedMText[] = {LM_POINT(field, 10), field(40),      field(41),   real(46, 0),
                                field(71),           integer(72, 5), LM_MTEXT_END};
constexpr I kInsert[] = {LM_ENTITY,
                         mark("AcDbBlockReference"),
                         kFollow,
                         field(2),
                         LM_POINT(field, 10),
                         option(41),
                         option(42),
                         option(43),
                         option(50),
                         option(70),
                         option(71),
                         option(44),
                         option(45),
                         LM_POINT(option, 210)};
constexpr I kSeqend[] = {kHandle, kOwner, mark("AcDbEntity"), I{I::kPaper, 67}, field(8)};

constexpr I kLayer[] = {
    LM_RECORD,        mark("AcDbLayerTableRecord"), field(2), field(70), field(62), option(420), field(6),
    integer(370, -3), I{I::kPlotStyle, 390}};
constexpr I kLtype[] = {LM_RECORD,      mark("AcDbLinetypeTableRecord"),
                        field(2),       field(70),
                        field(3),       integer(72, 65),
                        integer(73, 0), real(40, 0)};
constexpr I kStyle[] = {LM_RECORD,     mark("AcDbTextStyleTableRecord"),
                        field(2),      field(70),
                        real(40, 0),   real(41, 1),
                        real(50, 0),   integer(71, 0),
                        real(42, 2.5), text(3, "txt"),
                        text(4, "")};
constexpr I kAppid[] = {LM_RECORD, mark("AcDbRegAppTableRecord"), field(2), field(70)};
constexpr I kBlockRecord[] = {
    LM_RECORD,      mark("AcDbBlockTableRecord"),         field(2),
    integer(70, 0), integer(280, 1, FileVersion::kR2007), integer(281, 0, FileVersion::kR2007)};
constexpr I kVport[] = {LM_RECORD,         mark("AcDbViewportTableRecord"),
                        field(2),          field(70),
                        real(10, 0),       real(20, 0),
                        real(11, 1),       real(21, 1),
                        field(12),         field(22),
                        real(13, 0),       real(23, 0),
                        real(14, 0.5),     real(24, 0.5),
                        real(15, 0.5),     real(25, 0.5),
                        real(16, 0),       real(26, 0),
                        real(36, 1),       real(17, 0),
                        real(27, 0),       real(37, 0),
                        field(40),         field(41),
                        real(42, 50),      real(43, 0),
                        real(44, 0),       real(50, 0),
                        real(51, 0),       integer(71, 0),
                        integer(72, 1000), integer(73, 1),
                        integer(74, 3),    integer(75, 0),
                        integer(76, 0),    integer(77, 0),
                        integer(78, 0)};
constexpr I kView[] = {LM_RECORD,      mark("AcDbViewTableRecord"),
                       field(2),       field(70),
                       field(40),      field(10),
                       field(20),      field(41),
                       real(11, 0),    real(21, 0),
                       real(31, 1),    real(12, 0),
                       real(22, 0),    real(32, 0),
                       real(42, 50),   real(43, 0),
                       real(44, 0),    real(50, 0),
                       integer(71, 0), integer(281, 0),
                       integer(72, 0)};
constexpr I kTable[] = {I{I::kTableName, 2}, kHandle, kOwner, mark("AcDbSymbolTable"), I{I::kCount, 70}};
constexpr I kDictionary[] = {kHandle, kOwner, mark("AcDbDictionary"), integer(281, 1), list(3)};
constexpr I kXrecord[] = {kHandle, kOwner, mark("AcDbXrecord"), integer(280, 1), list(1)};
// The block's own name, flags and origin are its record's: see EntryMaker.
constexpr I kBlock[] = {
    kHandle, kOwner,   mark("AcDbEntity"), I{I::kPaper, 67}, text(8, "0"), mark("AcDbBlockBegin"),
    list(2), list(70), LM_POINT(list, 10), list(3),          text(1, "")};
constexpr I kEndblk[] = {kHandle,          kOwner,       mark("AcDbEntity"),
                         I{I::kPaper, 67}, text(8, "0"), mark("AcDbBlockEnd")};

constexpr I kOtherEntity[] = {LM_ENTITY};
constexpr I kOtherRecord[] = {LM_RECORD, field(2), field(70)};

} // namespace

std::span<const LayoutItem> layoutOfOthers(bool entity) {
    return entity ? std::span<const LayoutItem>(kOtherEntity) : kOtherRecord;
}

std::span<const LayoutItem> layoutOf(std::uint16_t kind) {
    switch (kind) {
    case kKindAttrib:
        return kAttribute;
    case kKindAttdef:
        return kDefinition;
    case kKindInsert:
        return kInsert;
    case kKindSeqend:
        return kSeqend;
    case kKindLine:
        return kLine;
    case kKindPoint:
        return kPoint;
    case kKindCircle:
        return kCircle;
    case kKindArc:
        return kArc;
    case kKindEllipse:
        return kEllipse;
    case kKindLwPolyline:
        return kPolyline;
    case kKindText:
        return kText;
    case kKindMText:
        return kMText;
    case kKindLayer:
        return kLayer;
    case kKindLtype:
        return kLtype;
    case kKindStyle:
        return kStyle;
    case kKindAppid:
        return kAppid;
    case kKindBlockRecord:
        return kBlockRecord;
    case kKindVport:
        return kVport;
    case kKindView:
        return kView;
    case kKindTable:
        return kTable;
    case kKindDictionary:
        return kDictionary;
    case kKindXrecord:
        return kXrecord;
    case kKindBlock:
        return kBlock;
    case kKindEndblk:
        return kEndblk;
    default:
        return {};
    }
}

std::span<const LayoutItem> embeddedLayout() {
    return kEmbeddedMText;
}

} // namespace lm::drawing
