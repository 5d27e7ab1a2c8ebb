// SPDX-License-Identifier: MIT
// Objects that came from no file: written and read back in every version and form, they are the same.
#include "writer_support.h"

namespace drawing_test {
namespace {

/// A new entity of model space, open for write.
template<class T>
OdSmartPtr<T> addEntity(OdDbDatabase& db) {
    const auto entity = make<T>();
    append(db, entity);
    return entity;
}

OdSmartPtr<OdDbAttribute> addAttribute(OdDbBlockReference& reference, const char* tag,
                                       const std::string& text) {
    const auto attribute = make<OdDbAttribute>();
    attribute->setTag(od(tag));
    attribute->setTextString(od(text));
    reference.appendAttribute(attribute);
    return attribute;
}

void expectSameInAllFiles(OdDbDatabase& db) {
    inAllFiles(db, [&db](OdDbDatabase& read) {
        EXPECT_EQ(reportOf(read), "");
        expectSameObjects(db, read);
        EXPECT_EQ(db.getINSBASE().x, read.getINSBASE().x);
        EXPECT_EQ(db.getCLAYER().getHandle().value(), read.getCLAYER().getHandle().value());
    });
}

TEST(WriterNew, WritesAnEmptyDrawing) {
    const auto db = newDatabase();
    expectSameInAllFiles(*db.get());
    EXPECT_EQ(utf8(savedAndRead(*db.get())->originalFileVersion()), "AC1032");
    EXPECT_EQ(utf8(savedAndRead(*db.get(), {FileVersion::kR2000})->originalFileVersion()), "AC1015");
}

TEST(WriterNew, EndsLinesWithCarriageReturnAndLineFeed) {
    const std::string bytes = saved(*newDatabase().get());
    EXPECT_EQ(bytes.substr(0, 21), "  0\r\nSECTION\r\n  2\r\nHE");
    EXPECT_EQ(bytes.substr(bytes.size() - 10), "  0\r\nEOF\r\n");
    for (std::size_t at = bytes.find('\n'); at != std::string::npos; at = bytes.find('\n', at + 1))
        ASSERT_EQ(bytes[at - 1], '\r');
}

TEST(WriterNew, WritesTheCommonFieldsOfEntities) {
    const auto db = newDatabase();
    addLayer(*db.get(), "PAG1");
    const auto line = addEntity<OdDbLine>(*db.get());
    line->setLayer(od("PAG1"));
    line->setColor(OdCmColor::fromRgb(1, 2, 250));
    line->setLinetype(db->getLinetypeContinuousId());
    line->setLinetypeScale(0.1);
    line->setLineWeight(35);
    line->setTransparency(0x02000000u | 77u);
    line->setVisible(false);
    const auto other = addEntity<OdDbLine>(*db.get());
    other->setColor(OdCmColor::fromIndex(0));
    other->setLineWeight(-2);
    addEntity<OdDbLine>(*db.get())->setColor(OdCmColor::fromIndex(5));
    expectSameInAllFiles(*db.get());
}

TEST(WriterNew, WritesCurves) {
    const auto db = newDatabase();
    addEntity<OdDbPoint>(*db.get())->setPosition({0.1, -2.5e-7, 1e300});
    const auto line = addEntity<OdDbLine>(*db.get());
    line->setStartPoint({1.0 / 3, 2, 3});
    line->setEndPoint({-4, 5e20, -0.0});
    const auto circle = addEntity<OdDbCircle>(*db.get());
    circle->setCenter({1, 2, 3});
    circle->setRadius(4.25);
    circle->setNormal({0, 1, 0});
    const auto arc = addEntity<OdDbArc>(*db.get());
    arc->setCenter({7, 8, 9});
    arc->setRadius(1.5);
    arc->setStartAngle(0.75);
    arc->setEndAngle(3.0);
    const auto ellipse = addEntity<OdDbEllipse>(*db.get());
    ellipse->setCenter({1, 1, 0});
    ellipse->setMajorAxis({0, 3, 0});
    ellipse->setRadiusRatio(0.125);
    expectSameInAllFiles(*db.get());
}

TEST(WriterNew, WritesPolylines) {
    const auto db = newDatabase();
    addEntity<OdDbPolyline>(*db.get());
    const auto polyline = addEntity<OdDbPolyline>(*db.get());
    polyline->addVertexAt(0, {1, 2});
    polyline->addVertexAt(1, {3, 4}, 0.5);
    polyline->addVertexAt(2, {0, 0}, -1);
    polyline->setClosed(true);
    expectSameInAllFiles(*db.get());
}

TEST(WriterNew, WritesTexts) {
    const auto db = newDatabase();
    addEntity<OdDbText>(*db.get());
    const auto text = addEntity<OdDbText>(*db.get());
    text->setTextString(od("Ω = 4 \\U+00E9 ^L \f % ^ end "));
    text->setPosition({1, 2, 3});
    text->setAlignmentPoint({4, 0, 0});
    text->setHeight(2.5);
    text->setRotation(1.5);
    text->setOblique(0.25);
    text->setWidthFactor(0.8);
    text->setThickness(3);
    text->setNormal({0, 0, -1});
    text->setTextStyle(db->getTextStyleStandardId());
    text->setHorizontalMode(OdDbText::kMiddle);
    text->setVerticalMode(OdDbText::kTop);
    text->setMirrorInX(true);
    text->setMirrorInY(true);
    const auto lines = addEntity<OdDbMText>(*db.get());
    lines->setContents(od("{\\fArial|b0;eins}\\Pzwei"));
    lines->setLocation({9, 8, 7});
    lines->setTextHeight(1.25);
    lines->setWidth(40);
    expectSameInAllFiles(*db.get());
}

TEST(WriterNew, WritesReferencesWithAttributes) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db.get(), "MOTOR");
    addLayer(*db.get(), "PAG1");
    const auto reference = addEntity<OdDbBlockReference>(*db.get());
    reference->setBlockTableRecord(block);
    reference->setPosition({10, 20, 0});
    reference->setScaleFactors({2, -2, 1});
    reference->setRotation(0.5);
    reference->setNormal({0, 0, -1});
    reference->setLayer(od("PAG1"));
    addAttribute(*reference.get(), "TAG", "-K1")->setInvisible(true);
    const auto second = addAttribute(*reference.get(), "LINHAS", "");
    second->setFieldLength(12);
    second->setVerticalMode(OdDbText::kVertMid);
    second->setAlignmentPoint({1, 2, 0});
    const auto lines = make<OdDbMText>();
    lines->setContents(od("one\\Ptwo"));
    lines->setTextHeight(3);
    lines->setLocation({5, 6, 0});
    second->setMTextAttribute(lines);
    addEntity<OdDbBlockReference>(*db.get())->setBlockTableRecord(block);
    expectSameInAllFiles(*db.get());

    const std::string bytes = notationOf(saved(*db.get()));
    EXPECT_TRUE(contains(bytes, "|100 AcDbBlockReference|66 1|2 MOTOR|"));
    EXPECT_TRUE(contains(bytes, "|100 AcDbBlockReference|2 MOTOR|"));
    EXPECT_TRUE(contains(bytes, "|101 Embedded Object|10 5.0|20 6.0|30 0.0|40 3.0|"));
    const std::size_t end = bytes.find("|0 SEQEND|");
    EXPECT_NE(end, std::string::npos);
    EXPECT_EQ(bytes.find("|0 SEQEND|", end + 1), std::string::npos);
}

TEST(WriterNew, WritesBlocksWithDefinitions) {
    const auto db = newDatabase();
    addLayer(*db.get(), "0A");
    const auto block = open<OdDbBlockTableRecord>(addBlock(*db.get(), "CONTATO"), OdDb::kForWrite);
    block->setOrigin({1, 2, 3});
    const auto line = make<OdDbLine>();
    block->appendOdDbEntity(line);
    const auto definition = make<OdDbAttributeDefinition>();
    block->appendOdDbEntity(definition);
    definition->setTag(od("TAG"));
    definition->setPrompt(od("Designação:"));
    definition->setTextString(od("?"));
    definition->setFieldLength(3);
    definition->setInvisible(true);
    definition->setConstant(true);
    const auto lines = make<OdDbMText>();
    lines->setContents(od("a\\Pb"));
    definition->setMTextAttributeDefinition(lines);
    const auto nested = make<OdDbBlockReference>();
    block->appendOdDbEntity(nested);
    nested->setBlockTableRecord(addBlock(*db.get(), "*U7"));
    addAttribute(*nested.get(), "X", "1");
    expectSameInAllFiles(*db.get());
    const std::string bytes = notationOf(saved(*db.get()));
    EXPECT_TRUE(contains(bytes, "|2 CONTATO|70 2|10 1.0|20 2.0|30 3.0|3 CONTATO|1 |0 LINE|"));
    EXPECT_TRUE(contains(bytes, "|2 *U7|70 1|"));
}

TEST(WriterNew, WritesRecordsOfTables) {
    const auto db = newDatabase();
    const auto layer = open<OdDbLayerTableRecord>(addLayer(*db.get(), "Ebene Ä^"), OdDb::kForWrite);
    layer->setIsFrozen(true);
    layer->setIsLocked(true);
    layer->setIsOff(true);
    layer->setColor(OdCmColor::fromIndex(3));
    layer->setLinetypeObjectId(db->getLinetypeContinuousId());
    const auto second = open<OdDbLayerTableRecord>(addLayer(*db.get(), "RGB"), OdDb::kForWrite);
    second->setColor(OdCmColor::fromRgb(255, 128, 0));
    second->setIsOff(true);
    const auto addTo = [&db](OdDbObjectId table, OdSmartPtr<OdDbSymbolTableRecord> record, const char* name) {
        record->setName(od(name));
        open<OdDbSymbolTable>(table, OdDb::kForWrite)->add(record);
    };
    addTo(db->getLinetypeTableId(), OdSmartPtr<OdDbSymbolTableRecord>(make<OdDbLinetypeTableRecord>().get()),
          "DASH");
    addTo(db->getTextStyleTableId(),
          OdSmartPtr<OdDbSymbolTableRecord>(make<OdDbTextStyleTableRecord>().get()), "ROMANS");
    addTo(db->getRegAppTableId(), OdSmartPtr<OdDbSymbolTableRecord>(make<OdDbRegAppTableRecord>().get()),
          "RZ_APP");
    const auto view = make<OdDbViewTableRecord>();
    view->setCenterPoint({1, 2});
    view->setHeight(30);
    view->setWidth(40);
    addTo(db->getViewTableId(), OdSmartPtr<OdDbSymbolTableRecord>(view.get()), "V1");
    const auto viewport = make<OdDbViewportTableRecord>();
    viewport->setCenterPoint({5, 6});
    viewport->setHeight(3);
    viewport->setWidth(0.7);
    addTo(db->getViewportTableId(), OdSmartPtr<OdDbSymbolTableRecord>(viewport.get()), "VP");
    expectSameInAllFiles(*db.get());
}

TEST(WriterNew, WritesCurrentLayerAndBasePoint) {
    const auto db = newDatabase();
    const OdDbObjectId layer = addLayer(*db.get(), "ção");
    const auto value = OdResBuf::newRb(330);
    value->setObjectId(layer);
    ASSERT_TRUE(db->setSysVar(od("CLAYER"), value));
    db->setINSBASE({1.5, -2, 0.25});
    expectSameInAllFiles(*db.get());
    inAllFiles(*db.get(), [](OdDbDatabase& read) { EXPECT_EQ(read.getINSBASE().z, 0.25); });
}

TEST(WriterNew, WritesDictionariesAndRecords) {
    const auto db = newDatabase();
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    const auto inner = make<OdDbDictionary>();
    root->setAt(od("ESQ_VIRTUAL_RZ"), inner);
    inner->setXData(chainOf("1001 RZ|1000 páginas"));
    const auto record = make<OdDbXrecord>();
    inner->setAt(od("a^b\f"), record);
    auto chain = chainOf("1 texto|2 BLOCO|3 x");
    chain->last()->append(OdResBuf::newRb(70, 5));
    chain->last()->append(OdResBuf::newRb(280, 7));
    chain->last()->append(OdResBuf::newRb(90, -70000));
    chain->last()->append(OdResBuf::newRb(40, 1.0 / 3));
    const auto point = OdResBuf::newRb(10);
    point->setPoint3d({1, 2, 3});
    chain->last()->append(point);
    chain->last()->append(OdResBuf::newRb(20, 9.0));
    const auto bytes = OdResBuf::newRb(310);
    bytes->setBinary(std::string("\x01\x00\xFF", 3));
    chain->last()->append(bytes);
    const auto large = OdResBuf::newRb(160);
    large->setInt64(1LL << 40);
    chain->last()->append(large);
    chain->last()->append(OdResBuf::newRb(290, 1));
    record->setFromRbChain(chain);
    const auto flagged = make<OdDbXrecord>();
    flagged->setFromRbChain(OdResBuf::newRb(280, 7));
    inner->setAt(od("first is 280"), flagged);
    inner->setAt(od("empty"), make<OdDbXrecord>());
    expectSameInAllFiles(*db.get());
    inAllFiles(*db.get(), [](OdDbDatabase& read) {
        const auto root = open<OdDbDictionary>(read.getNamedObjectsDictionaryId());
        EXPECT_TRUE(root->has(od("ESQ_VIRTUAL_RZ")));
    });
}

TEST(WriterNew, WritesExtendedData) {
    const auto db = newDatabase();
    const auto point = addEntity<OdDbPoint>(*db.get());
    auto chain = chainOf("1001 RZ|1000 Ω \f|1002 {|1003 0|1005 1F|1002 }");
    chain->last()->append(OdResBuf::newRb(1040, 0.1));
    chain->last()->append(OdResBuf::newRb(1070, -5));
    chain->last()->append(OdResBuf::newRb(1071, 1 << 30));
    const auto place = OdResBuf::newRb(1011);
    place->setPoint3d({1, 2, 0.3});
    chain->last()->append(place);
    const auto bytes = OdResBuf::newRb(1004);
    bytes->setBinary(std::string("\x00\x7F\x80", 3));
    chain->last()->append(bytes);
    chain->last()->append(chainOf("1001 OTHER|1000 x"));
    point->setXData(chain);
    point->setXDataRaw(chainOf("1001 LONE"));
    expectSameInAllFiles(*db.get());
}

TEST(WriterNew, LeavesOutWhatIsErased) {
    const auto db = newDatabase();
    const auto block = open<OdDbBlockTableRecord>(addBlock(*db.get(), "GONE"), OdDb::kForWrite);
    block->appendOdDbEntity(make<OdDbLine>());
    const auto reference = addEntity<OdDbBlockReference>(*db.get());
    addAttribute(*reference.get(), "TAG", "x");
    const auto line = addEntity<OdDbLine>(*db.get());
    const auto root = open<OdDbDictionary>(db->getNamedObjectsDictionaryId(), OdDb::kForWrite);
    root->setAt(od("R"), make<OdDbXrecord>());
    const OdDbObjectId record = root->getAt(od("R"));
    block->erase();
    reference->erase();
    line->erase();
    open<OdDbObject>(record, OdDb::kForWrite)->erase();
    const std::string bytes = notationOf(saved(*db.get()));
    for (const char* absent :
         {"GONE", "|0 LINE|", "|0 INSERT|", "|0 ATTRIB|", "|0 SEQEND|", "|0 XRECORD|", "|3 R|"})
        EXPECT_FALSE(contains(bytes, absent)) << absent;
}

TEST(WriterNew, WritesTheSameTwice) {
    const auto db = newDatabase();
    const OdDbObjectId block = addBlock(*db.get(), "B");
    const auto reference = addEntity<OdDbBlockReference>(*db.get());
    reference->setBlockTableRecord(block);
    addAttribute(*reference.get(), "TAG", "x");
    const std::string first = saved(*db.get());
    EXPECT_EQ(first, saved(*db.get()));
    EXPECT_EQ(first, saved(*readBytes(first).get()));
    const std::string binary = saved(*db.get(), {FileVersion::kR2000, true});
    EXPECT_EQ(binary, saved(*readBytes(binary).get(), {FileVersion::kR2000, true}));
}

TEST(WriterNew, PutsHandlesBehindAllOthers) {
    const auto db = newDatabase();
    const auto reference = addEntity<OdDbBlockReference>(*db.get());
    reference->setBlockTableRecord(addBlock(*db.get(), "B"));
    addAttribute(*reference.get(), "TAG", "x");
    const auto read = savedAndRead(*db.get());
    std::uint64_t highest = 0;
    read->data().nodes.forEach(
        [&highest](lm::drawing::Node& node) { highest = std::max(highest, node.handle); });
    EXPECT_GT(read->data().nextHandle, highest);
    EXPECT_EQ(reportOf(*read.get()), "");
}

} // namespace
} // namespace drawing_test
