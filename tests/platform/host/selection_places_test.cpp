// SPDX-License-Identifier: MIT
// What a box chooses by the places that the database keeps is what a plain walk chooses, in its order, after
// any change of the drawing.
#include "commandsupport.h"

#include "selectiongeometry.h"

#include "drawing/nearparts.h"
#include "drawing/partwalk.h"

#include <functional>
#include <limits>
#include <random>

namespace {

using namespace lm::test;
using lm::drawing::kAttach;
using lm::host::Box;

using Ids = std::vector<OdDbObjectId>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template<class T>
OdSmartPtr<T> make() {
    return OdSmartPtr<T>(new T, kAttach);
}

/// What a walk over model space chooses.
Ids walked(const OdDbDatabase& database, const std::function<bool(const OdDbEntity&)>& test) {
    Ids ids;
    for (lm::drawing::PartWalk walk(database.getModelSpaceId()); !walk.done(); walk.next())
        if (test(*walk.entity())) ids.push_back(walk.id());
    return ids;
}

/// Changes a drawing at random, as commands and programs may.
class RandomWork {
public:
    RandomWork(OdDbDatabase& db, unsigned seed) : m_db(db), m_random(seed) {
        m_blocks.push_back(m_db.getModelSpaceId()); // not shown by anything, but for the work below
        for (const char* const name : {"A", "B", "C", "D"}) addBlock(name);
        for (int i = 0; i < 20; ++i) addEntity();
        m_db.setUndoRecording(false);
        m_db.setUndoRecording(true); // nothing of this can be taken back
    }

    void change() {
        static void (RandomWork::*const kAll[])() = {&RandomWork::addEntity,
                                                     &RandomWork::addEntity,
                                                     &RandomWork::addReference,
                                                     &RandomWork::addReference,
                                                     &RandomWork::changeEntity,
                                                     &RandomWork::changeEntity,
                                                     &RandomWork::changeEntity,
                                                     &RandomWork::transform,
                                                     &RandomWork::turnMark,
                                                     &RandomWork::turnMark,
                                                     &RandomWork::showOther,
                                                     &RandomWork::addAttribute,
                                                     &RandomWork::changeAttribute,
                                                     &RandomWork::changeLines,
                                                     &RandomWork::turnBlockMark,
                                                     &RandomWork::moveOrigin,
                                                     &RandomWork::renameBlock,
                                                     &RandomWork::clone,
                                                     &RandomWork::undo,
                                                     &RandomWork::undo,
                                                     &RandomWork::redo,
                                                     &RandomWork::abort,
                                                     &RandomWork::newBlock,
                                                     &RandomWork::toggleLayer};
        if (m_random() % 4 != 0) m_db.startUndoRecord();
        (this->*kAll[m_random() % std::size(kAll)])();
    }

    /// A box somewhere where things are, of any size.
    std::pair<OdGePoint3d, OdGePoint3d> box() {
        if (m_random() % 4 == 0) {
            const Ids ids = walked(m_db, [](const OdDbEntity&) { return true; });
            OdGeExtents3d extents;
            if (!ids.empty() &&
                OdSmartPtr<OdDbEntity>(ids[m_random() % ids.size()].openObject())->getGeomExtents(extents) ==
                    eOk) { // one that just touches
                const OdGePoint3d low = extents.minPoint(), high = extents.maxPoint();
                return {high, {high.x + 1, high.y + (m_random() % 2 != 0 ? 1 : low.y - high.y), 0}};
            }
        }
        const OdGePoint3d at = point();
        const double size = m_random() % 3 == 0 ? length() : 0.6;
        return {at, {at.x + size, m_random() % 8 == 0 ? number() : at.y - size, 0}};
    }

private:
    double plain() { return static_cast<double>(m_random() % 2001) / 10 - 100; }
    double number() {
        switch (m_random() % 60) {
        case 0:
            return kNan;
        case 1:
            return 1e300 * (m_random() % 2 != 0 ? 1 : -1);
        case 2:
            return kInfinity * (m_random() % 2 != 0 ? 1 : -1);
        case 3:
            return 1e9 + plain();
        case 4:
            return 0;
        case 5:
            return plain() * 1e-9;
        default:
            return plain();
        }
    }
    double length() { return m_random() % 20 == 0 ? number() : plain() / 10; }
    OdGePoint3d point() { return {number(), number(), m_random() % 5 == 0 ? number() : 0}; }
    /// Where a block stands or is held: a number that is none makes measuring its references very slow.
    OdGePoint3d place() { return {plain(), m_random() % 20 == 0 ? 1e9 : plain(), 0}; }
    OdGeVector3d normal() {
        switch (m_random() % 12) {
        case 0:
            return {0, 0, -1};
        case 1:
            return {plain(), plain(), plain()};
        case 2:
            return {number(), 0, 0};
        default:
            return OdGeVector3d::kZAxis;
        }
    }
    double angle() { return m_random() % 8 == 0 ? number() * 1e4 : plain() / 30; }
    double bulge() {
        constexpr double kSome[] = {0, 0, 1, -1, 0.2, -0.4, 1e-12, -1e-17, 1e-300, 7, 1e200, kNan};
        return kSome[m_random() % std::size(kSome)];
    }
    OdGeScale3d scale() {
        constexpr double kSome[] = {1, 1, -1, 0.5, -2, 0, 1e-6, 30};
        const auto one = [&] { return kSome[m_random() % std::size(kSome)]; };
        return m_random() % 2 != 0 ? OdGeScale3d(1, 1, 1) : OdGeScale3d(one(), one(), one());
    }
    OdString text() { return lm::drawing::odText(std::string(m_random() % 12, 'x')); }

    OdSmartPtr<OdDbEntity> shape() {
        switch (m_random() % 9) {
        case 0:
            return filled(make<OdDbLine>());
        case 1:
            return filled(make<OdDbCircle>());
        case 2:
            return filled(make<OdDbArc>());
        case 3:
            return filled(make<OdDbPolyline>());
        case 4:
            return filled(make<OdDbText>());
        case 5:
            return filled(make<OdDbMText>());
        case 6:
            return filled(make<OdDbEllipse>());
        case 7:
            return filled(make<OdDbAttributeDefinition>());
        default:
            return filled(make<OdDbPoint>());
        }
    }
    OdSmartPtr<OdDbEntity> filled(OdSmartPtr<OdDbEntity> entity) {
        for (int i = 0; i < 3; ++i) alter(*entity);
        return entity;
    }
    /// One change of an entity by its class.
    void alter(OdDbEntity& entity) {
        if (auto* line = OdDbLine::cast(&entity))
            return m_random() % 2 != 0 ? line->setStartPoint(point()) : line->setEndPoint(point());
        if (auto* circle = OdDbCircle::cast(&entity)) return alterCircle(*circle);
        if (auto* arc = OdDbArc::cast(&entity)) return alterArc(*arc);
        if (auto* polyline = OdDbPolyline::cast(&entity)) return alterPolyline(*polyline);
        if (auto* lines = OdDbMText::cast(&entity))
            return m_random() % 2 != 0 ? lines->setLocation(point()) : lines->setContents(text());
        if (auto* ellipse = OdDbEllipse::cast(&entity)) return ellipse->setCenter(point());
        if (auto* dot = OdDbPoint::cast(&entity)) return dot->setPosition(point());
        if (auto* reference = OdDbBlockReference::cast(&entity)) return alterReference(*reference);
        if (auto* some = OdDbText::cast(&entity)) return alterText(*some);
    }
    void alterCircle(OdDbCircle& circle) {
        circle.setCenter(point());
        circle.setRadius(length());
        circle.setNormal(normal());
    }
    void alterArc(OdDbArc& arc) {
        arc.setCenter(point());
        arc.setRadius(length());
        arc.setStartAngle(angle());
        arc.setEndAngle(angle());
        arc.setNormal(normal());
    }
    void alterPolyline(OdDbPolyline& line) {
        const OdGePoint3d at = point();
        line.addVertexAt(m_random() % (line.numVerts() + 1), {at.x, at.y}, bulge());
        line.setClosed(m_random() % 2 != 0);
        line.setNormal(normal());
    }
    void alterText(OdDbText& some) {
        some.setPosition(point());
        some.setHeight(length());
        some.setTextString(text());
        if (auto* definition = OdDbAttributeDefinition::cast(&some)) definition->setConstant(m_random() % 2);
    }
    void alterReference(OdDbBlockReference& reference) {
        reference.setPosition(place());
        // Blocks inside each other have a box for each way that they are turned: inner ones are hardly.
        const bool isInner = reference.isDBRO() && reference.ownerId() != m_db.getModelSpaceId();
        reference.setScaleFactors(isInner ? OdGeScale3d(m_random() % 4 == 0 ? -1 : 1, 1, 1) : scale());
        if (isInner) return;
        reference.setRotation(m_random() % 2 != 0 ? 0 : plain() / 30);
        reference.setNormal(m_random() % 6 == 0 ? OdGeVector3d(1, plain(), -1) : OdGeVector3d::kZAxis);
    }

    OdDbObjectId any(const Ids& ids) { return ids[m_random() % ids.size()]; }
    OdDbObjectId anyBlock() { return any(m_blocks); }
    OdDbObjectId anyShown() { return m_blocks[1 + m_random() % (m_blocks.size() - 1)]; }
    OdDbObjectId space() { return m_random() % 3 == 0 ? anyBlock() : m_db.getModelSpaceId(); }
    OdSmartPtr<OdDbEntity> anyEntity() {
        return m_entities.empty() ? OdSmartPtr<OdDbEntity>()
                                  : OdSmartPtr<OdDbEntity>(any(m_entities).openObject(OdDb::kForWrite, true));
    }
    OdSmartPtr<OdDbBlockReference> anyReference() {
        const OdSmartPtr<OdDbEntity> entity = anyEntity();
        return OdSmartPtr<OdDbBlockReference>(OdDbBlockReference::cast(entity.get()));
    }
    void append(const OdSmartPtr<OdDbEntity>& entity, OdDbObjectId to) {
        const OdSmartPtr<OdDbBlockTableRecord> block(to.openObject(OdDb::kForWrite));
        if (!block.isNull()) m_entities.push_back(block->appendOdDbEntity(entity));
    }

    void addBlock(const std::string& name) {
        const auto block = make<OdDbBlockTableRecord>();
        block->setName(lm::drawing::odText(name));
        m_blocks.push_back(
            OdSmartPtr<OdDbSymbolTable>(m_db.getBlockTableId().openObject(OdDb::kForWrite))->add(block));
        append(filled(make<OdDbLine>()), m_blocks.back());
    }
    void newBlock() {
        if (m_blocks.size() < 8) addBlock("N" + std::to_string(m_blocks.size()));
    }
    void addEntity() { append(shape(), space()); }
    void addReference() {
        const auto reference = make<OdDbBlockReference>();
        const OdDbObjectId shown = anyShown();
        if (shown.isValid()) reference->setBlockTableRecord(shown);
        if (m_random() % 3 == 0) reference->appendAttribute(attribute());
        append(reference, m_random() % 6 == 0 ? anyBlock() : m_db.getModelSpaceId());
        if (m_entities.back() == reference->objectId()) alterReference(*reference);
    }
    OdSmartPtr<OdDbAttribute> attribute() {
        auto one = make<OdDbAttribute>();
        alterText(*one);
        if (m_random() % 4 == 0) {
            const auto lines = make<OdDbMText>();
            lines->setLocation(point());
            lines->setContents(text());
            one->setMTextAttribute(lines);
        }
        return one;
    }
    void changeEntity() {
        if (const auto entity = anyEntity(); !entity.isNull()) alter(*entity);
    }
    void transform() {
        if (const auto entity = anyEntity(); !entity.isNull())
            entity->transformBy(OdGeMatrix3d::translation({plain(), plain(), 0}));
    }
    void turnMark() {
        if (const auto entity = anyEntity(); !entity.isNull()) entity->erase(!entity->isErased());
    }
    void showOther() {
        const auto reference = anyReference();
        if (const OdDbObjectId block = anyShown(); !reference.isNull() && block.isValid())
            reference->setBlockTableRecord(block);
    }
    void addAttribute() {
        if (const auto reference = anyReference(); !reference.isNull())
            reference->appendAttribute(attribute());
    }
    OdSmartPtr<OdDbAttribute> anyAttribute() {
        const auto reference = anyReference();
        if (reference.isNull()) return {};
        const auto walk = reference->attributeIterator();
        OdSmartPtr<OdDbAttribute> found;
        for (walk->start(true, false); !walk->done(); walk->step(true, false))
            if (found.isNull() || m_random() % 2 != 0)
                found = OdSmartPtr<OdDbAttribute>(walk->objectId().openObject(OdDb::kForWrite, true));
        return found;
    }
    void changeAttribute() {
        const auto found = anyAttribute();
        if (found.isNull()) return;
        if (m_random() % 2 != 0)
            alterText(*found);
        else
            found->erase(!found->isErased());
    }
    /// The lines of an attribute are an object of their own, whose changes nobody is told of.
    void changeLines() {
        const auto found = anyAttribute();
        if (!found.isNull() && !found->getMTextAttribute().isNull())
            found->getMTextAttribute()->setLocation(point());
    }
    OdSmartPtr<OdDbBlockTableRecord> anyRecord() {
        return OdSmartPtr<OdDbBlockTableRecord>(anyShown().openObject(OdDb::kForWrite, true));
    }
    void turnBlockMark() {
        const auto block = anyRecord();
        if (!block.isNull()) block->erase(!block->isErased());
    }
    void moveOrigin() {
        const auto block = anyRecord();
        if (!block.isNull()) block->setOrigin(place());
    }
    void renameBlock() {
        const auto block = anyRecord();
        if (!block.isNull()) block->setName(lm::drawing::odText("R" + std::to_string(++m_names)));
    }
    void clone() {
        if (m_entities.empty()) return;
        const OdDbObjectId id = any(m_entities);
        if (!id.isValid() || id.isErased()) return;
        const auto mapping = make<OdDbIdMapping>();
        OdArray<OdDbObjectId> ids;
        ids.append(id);
        m_db.deepCloneObjects(ids, m_db.getModelSpaceId(), *mapping);
        OdDbIdPair pair{id};
        if (mapping->compute(pair)) m_entities.push_back(pair.value());
    }
    void toggleLayer() {
        const OdSmartPtr<OdDbLayerTableRecord> layer(m_db.getLayerZeroId().openObject(OdDb::kForWrite));
        layer->setIsFrozen(!layer->isFrozen());
    }
    void undo() { m_db.undo(); }
    void redo() { m_db.redo(); }
    void abort() {
        m_db.startTransaction();
        for (int i = 0; i < 3; ++i) {
            addReference();
            changeEntity();
            turnMark();
            changeAttribute();
        }
        if (m_random() % 2 != 0)
            m_db.abortTransaction();
        else
            m_db.endTransaction();
    }

    OdDbDatabase& m_db;
    std::mt19937 m_random;
    Ids m_blocks, m_entities;
    int m_names = 0;
};

/// Compares both kinds of boxes with the walk.
void compare(const Drawing& drawing, const OdGePoint3d& first, const OdGePoint3d& second) {
    const Box box(first, second);
    const std::unique_ptr<CHostSelectionSet> set(drawing.document().newSelectionSet());
    set->crossing(first, second, drawing.document().view(), nullptr);
    ASSERT_EQ(walked(drawing.database(), [&](const OdDbEntity& entity) { return box.touches(entity); }),
              set->ids())
        << first.x << "," << first.y << " " << second.x << "," << second.y;
    set->clear();
    set->window(first, second, drawing.document().view(), nullptr);
    ASSERT_EQ(walked(drawing.database(), [&](const OdDbEntity& entity) { return box.holds(entity); }),
              set->ids())
        << first.x << "," << first.y << " " << second.x << "," << second.y;
}

class Places : public testing::TestWithParam<unsigned> {};

TEST_P(Places, GiveWhatAWalkGivesAfterAnyChange) {
    const Drawing drawing;
    RandomWork work(drawing.database(), GetParam());
    for (int step = 0; step < 200; ++step) {
        SCOPED_TRACE(step);
        for (unsigned i = 0; i <= GetParam() % 3; ++i) work.change();
        for (int i = 0; i < 3; ++i) {
            const auto [first, second] = work.box();
            ASSERT_NO_FATAL_FAILURE(compare(drawing, first, second));
        }
    }
    EXPECT_TRUE(lm::drawing::keepsPlacesOf(drawing.database().getModelSpaceId()));
    compare(drawing, {-kInfinity, -kInfinity, 0}, {kInfinity, kInfinity, 0});
    compare(drawing, {-1e308, -1e308, 0}, {1e308, 1e308, 0});
    compare(drawing, {kNan, kNan, 0}, {kNan, 1, 0});
}
INSTANTIATE_TEST_SUITE_P(Seeds, Places, testing::Range(1U, 13U));

/// Asks where things lie from inside the callbacks of changes.
class Curious : public OdDbDatabaseReactor {
public:
    explicit Curious(const Drawing& drawing) : m_drawing(drawing) { drawing.database().addReactor(this); }
    ~Curious() override { m_drawing.database().removeReactor(this); }
    void objectOpenedForModify(const OdDbDatabase*, const OdDbObject*) override { ask(); }
    void objectModified(const OdDbDatabase*, const OdDbObject*) override { ask(); }
    void objectAppended(const OdDbDatabase*, const OdDbObject*) override { ask(); }
    void objectErased(const OdDbDatabase*, const OdDbObject*, bool) override { ask(); }
    void modifyUndone(const OdDbDatabase*, const OdDbObject*) override { ask(); }
    void objectUnAppended(const OdDbDatabase*, const OdDbObject*) override { ask(); }
    void objectReAppended(const OdDbDatabase*, const OdDbObject*) override { ask(); }

private:
    void ask() { compare(m_drawing, {-50, -50, 0}, {0, 10, 0}); }
    const Drawing& m_drawing;
};

TEST(PlacesInCallbacks, GiveWhatAWalkGives) {
    const Drawing drawing;
    RandomWork work(drawing.database(), 99);
    const Curious curious(drawing);
    for (int step = 0; step < 150 && !testing::Test::HasFailure(); ++step) work.change();
}

TEST(PlacesOfMany, StayRightWhenAllMoves) {
    const Drawing drawing;
    constexpr int kMany = 3000;
    Ids ids;
    for (int i = 0; i < kMany; ++i) ids.push_back(drawing.line(i % 60, i / 60, i % 60 + 0.5, i / 60 + 0.5));
    compare(drawing, {10, 10, 0}, {12, 12, 0});
    for (int round = 0; round < 4; ++round) {
        for (int i = round; i < kMany; i += 2) {
            const OdSmartPtr<OdDbEntity> line(ids[static_cast<std::size_t>(i)].openObject(OdDb::kForWrite));
            line->transformBy(OdGeMatrix3d::translation({i % 7 * 11.0, -round * 9.0, 0}));
            if (i % 100 == 0) compare(drawing, {10, 10, 0}, {12, 12, 0});
        }
        for (int i = 0; i < 40; ++i) compare(drawing, {i * 3.0, -5, 0}, {i * 3.0 + 2, 2, 0});
    }
}

TEST(PlacesOfMany, ForgetWhatWasTakenBackAgainAndAgain) {
    const Drawing drawing;
    OdDbDatabase& db = drawing.database();
    for (int round = 0; round < 1500; ++round) {
        db.startUndoRecord();
        drawing.line(0, 0, 1, 1);
        drawing.circle(round, 0, 1);
        if (round % 50 == 0) compare(drawing, {0, 0, 0}, {2, 2, 0});
        ASSERT_TRUE(db.undo());
        if (round % 3 == 0) db.redo();
    }
    compare(drawing, {0, 0, 0}, {2, 2, 0});
}

} // namespace
