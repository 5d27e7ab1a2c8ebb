// SPDX-License-Identifier: MIT
// The object root, run-time classes, counting pointers, errors and the memory that crosses modules.
#include "drawing_support.h"

#include "drawing/alloc.h"
#include "drawing/dictionary.h"

using namespace drawing_test;

namespace {

/// Records which operation of the root's table of virtual operations was reached.
class Slots : public OdRxObject {
public:
    OdRxObject* queryX(const OdRxClass*) const override { return hit(1); }
    OdRxObject* x(const OdRxClass*) const override { return hit(2); }
    OdRxClass* isA() const override {
        hit(3);
        return OdRxObject::desc();
    }
    void addRef() override { hit(4); }
    void release() override { hit(5); }
    long numRefs() const override {
        hit(6);
        return 0;
    }
    OdRxObject* clone() const override { return hit(7); }
    OdResult copyFrom(const OdRxObject*) override {
        hit(8);
        return eOk;
    }
    int comparedTo(const OdRxObject*) const override {
        hit(9);
        return 0;
    }
    bool isEqualTo(const OdRxObject*) const override {
        hit(10);
        return true;
    }
    OdRxObject* hit(int slot) const {
        last = slot;
        return nullptr;
    }
    mutable int last = 0;
};

} // namespace

TEST(RxObjectTest, KeepsTheOrderOfItsVirtualOperations) {
    // Modules built apart call by position. The table begins with the two forms of the destructor.
    Slots object;
    using Operation = void (*)(const void*, const void*);
    Operation* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
    for (int slot = 1; slot <= 10; ++slot) {
        table[slot + 1](&object, nullptr);
        EXPECT_EQ(object.last, slot);
    }
}

TEST(RxObjectTest, KnowsItsClasses) {
    const auto attribute = make<OdDbAttribute>();
    EXPECT_EQ(attribute->isA(), OdDbAttribute::desc());
    EXPECT_TRUE(attribute->isKindOf(OdDbText::desc()));
    EXPECT_TRUE(attribute->isKindOf(OdDbEntity::desc()));
    EXPECT_TRUE(attribute->isKindOf(OdRxObject::desc()));
    EXPECT_FALSE(attribute->isKindOf(OdDbLine::desc()));
    EXPECT_TRUE(make<OdDbAttributeDefinition>()->isKindOf(OdDbText::desc()));
    EXPECT_EQ(utf8(OdDbLine::desc()->name()), "OdDbLine");
    EXPECT_EQ(OdRxClass::find("OdDbLine"), OdDbLine::desc());
    EXPECT_EQ(OdRxClass::find("OdDbNothing"), nullptr);
    EXPECT_EQ(OdDbText::desc()->parent(), OdDbEntity::desc());
}

TEST(RxObjectTest, CastsSoftlyToNull) {
    const auto line = make<OdDbLine>();
    EXPECT_EQ(OdDbLine::cast(line.get()), line.get());
    EXPECT_EQ(OdDbCircle::cast(line.get()), nullptr);
    EXPECT_EQ(OdDbCircle::cast(nullptr), nullptr);
}

TEST(RxObjectTest, MakesObjectsByClassWhileItIsLoaded) {
    OdSmartPtr<OdDbPoint> point(OdDbPoint::cast(OdDbPoint::desc()->create()), lm::drawing::kAttach);
    ASSERT_FALSE(point.isNull());
    EXPECT_EQ(point->numRefs(), 1);
    OdDbPoint::desc()->setLoaded(false);
    EXPECT_EQ(OdDbPoint::desc()->create(), nullptr);
    OdDbPoint::desc()->setLoaded(true);
    EXPECT_EQ(OdDbEntity::desc()->create(), nullptr) << "no object is an entity and nothing more";
}

TEST(RxObjectTest, FindsProtocolExtensionsOnClassesAbove) {
    const auto line = make<OdDbLine>();
    const auto extension = OdResBuf::newRb(0);
    const OdRxClass* const protocol = OdResBuf::desc();
    EXPECT_EQ(line->x(protocol), nullptr);
    OdDbEntity::desc()->setX(protocol, extension.get());
    EXPECT_EQ(line->x(protocol), extension.get());
    EXPECT_EQ(line->queryX(protocol), extension.get());
    EXPECT_EQ(line->queryX(OdDbLine::desc()), line.get());
    OdDbEntity::desc()->setX(protocol, nullptr);
    EXPECT_EQ(line->queryX(protocol), nullptr);
}

TEST(RxObjectTest, HasPlainDefaults) {
    Slots one, two;
    EXPECT_EQ(one.OdRxObject::numRefs(), 1);
    EXPECT_EQ(one.OdRxObject::clone(), nullptr);
    EXPECT_EQ(one.OdRxObject::copyFrom(&two), eNotApplicable);
    EXPECT_EQ(one.OdRxObject::comparedTo(&one), 0);
    EXPECT_NE(one.OdRxObject::comparedTo(&two), 0);
    EXPECT_TRUE(one.OdRxObject::isEqualTo(&one));
    EXPECT_FALSE(one.OdRxObject::isEqualTo(&two));
}

TEST(SmartPtrTest, CountsThroughTheObject) {
    const auto line = make<OdDbLine>();
    EXPECT_EQ(line->numRefs(), 1);
    {
        const OdSmartPtr<OdDbEntity> entity = line; // to a base without a word
        const OdSmartPtr<OdDbLine> again(entity);   // back only when asked
        OdSmartPtr<OdDbLine> moved = again;
        const OdSmartPtr<OdDbLine> taken = std::move(moved);
        EXPECT_TRUE(moved.isNull());
        EXPECT_EQ(line->numRefs(), 4);
    }
    EXPECT_EQ(line->numRefs(), 1);
    OdSmartPtr<OdDbLine> raw(line.get());
    EXPECT_EQ(line->numRefs(), 2);
    raw.release();
    EXPECT_TRUE(raw.isNull());
    EXPECT_EQ(line->numRefs(), 1);
}

TEST(SmartPtrTest, RefusesAnotherClassAndTakesNull) {
    const OdSmartPtr<OdDbEntity> line = make<OdDbLine>();
    EXPECT_THROW(OdSmartPtr<OdDbCircle>{line}, OdError_NotThatKindOfClass);
    EXPECT_THROW(OdSmartPtr<OdDbCircle>{line.get()}, OdError_NotThatKindOfClass);
    const std::string text = errorOf([&] { OdSmartPtr<OdDbCircle>{line}; });
    EXPECT_NE(text.find("OdDbLine"), std::string::npos) << text;
    EXPECT_NE(text.find("OdDbCircle"), std::string::npos) << text;
    EXPECT_EQ(line->numRefs(), 1) << "a refusal takes no count";
    const OdSmartPtr<OdDbEntity> null;
    EXPECT_TRUE(OdSmartPtr<OdDbCircle>(null).isNull());
}

TEST(SmartPtrTest, RaisesOnNullInsteadOfCrashing) {
    const OdSmartPtr<OdDbLine> null;
    EXPECT_EQ(codeOf([&] { null->startPoint(); }), eNullObjectPointer);
    EXPECT_EQ(codeOf([&] { (*null).startPoint(); }), eNullObjectPointer);
}

TEST(SmartPtrTest, SurvivesAssignmentToItself) {
    auto line = make<OdDbLine>();
    OdSmartPtr<OdDbLine>& same = line;
    line = same;
    EXPECT_EQ(line->numRefs(), 1);
    OdDbLine* const raw = line.detach();
    EXPECT_TRUE(line.isNull());
    raw->release();
}

TEST(OdErrorTest, TellsCodeAndText) {
    EXPECT_EQ(OdError(eNotOpenForWrite).code(), eNotOpenForWrite);
    EXPECT_FALSE(OdError(eNotOpenForWrite).description().isEmpty());
    EXPECT_EQ(OdError(od("OdDbPointis not loaded")).description(), od("OdDbPointis not loaded"));
    EXPECT_EQ(OdError(eBrokenFile, od("line 3")).description(), od("line 3"));
    EXPECT_FALSE((std::is_base_of_v<std::exception, OdError>)) << "callers tell the two kinds apart";
    const OdError_InvalidIndex index(-4);
    EXPECT_EQ(index.code(), eInvalidIndex);
    EXPECT_NE(utf8(index.description()).find("-4"), std::string::npos);
    EXPECT_EQ(OdError_NotThatKindOfClass(nullptr, nullptr).code(), eNotThatKindOfClass);
}

TEST(OdErrorTest, HasAnOwnTextForEachCode) {
    std::vector<std::string> texts;
    for (int code = eOk; code <= eFilerError; ++code)
        texts.push_back(utf8(OdError(OdResult(code)).description()));
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(std::adjacent_find(texts.begin(), texts.end()), texts.end());
}

TEST(AllocTest, CountsBlocksAndFreesNull) {
    const std::size_t before = lm::drawing::liveBlocks();
    void* const block = odrxAlloc(10);
    void* const empty = odrxAlloc(0);
    ASSERT_NE(block, nullptr);
    EXPECT_NE(empty, nullptr);
    EXPECT_EQ(lm::drawing::liveBlocks(), before + 2);
    odrxFree(block);
    odrxFree(empty);
    odrxFree(nullptr);
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
}

TEST(AllocTest, FailsOnceWhenATestWantsIt) {
    const std::size_t before = lm::drawing::liveBlocks();
    lm::drawing::failAllocationAfter(1);
    void* const first = odrxAlloc(1);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(odrxAlloc(1), nullptr);
    void* const third = odrxAlloc(1);
    EXPECT_NE(third, nullptr);
    odrxFree(first);
    odrxFree(third);
    EXPECT_EQ(lm::drawing::liveBlocks(), before);
    lm::drawing::failAllocationAfter(0);
    EXPECT_THROW(new OdDbLine(), std::bad_alloc);
    lm::drawing::failAllocationAfter(-1);
}
