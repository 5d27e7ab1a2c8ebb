// SPDX-License-Identifier: MIT
// Failures of the drawing under CICad: which members write a line and raise again, which let pass, and that
// nothing stays open or allocated behind either.
#include "cad_drawing.h"

#include "drawing/alloc.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace {

using namespace lm::tests;
using testing::ElementsAre;

enum class Kind { kOdError, kStandard, kOther };

/// Errors that know their own address: only the object that was thrown first is at it.
template<class Base>
struct Known : Base {
    explicit Known(Base base) : Base(std::move(base)) {}
    Known(const Known& other) : Base(other), self(nullptr) {}
    const void* self = this;
};
using KnownOdError = Known<OdError>;
using KnownStandard = Known<std::runtime_error>;

/// The object that raises when it is asked for its class, and what it raises.
const OdRxObject* armed = nullptr;
Kind armedKind = Kind::kOdError;

template<class Base>
class Raising : public Base {
public:
    OdRxClass* isA() const override {
        if (this != armed) return Base::isA();
        if (armedKind == Kind::kOdError) throw KnownOdError(OdError(OdString("broken")));
        if (armedKind == Kind::kStandard) throw KnownStandard(std::runtime_error("broken"));
        throw 7;
    }
};

/// A block that a search fills; its records go with it.
struct BlockHolder {
    ~BlockHolder() {
        for (const char* tag : {"A", "TAG"}) delete block.GetAtributo(tag);
    }
    CEBloco block{"B"};
};

template<class Container>
void destroyAll(Container* blocks) {
    if (blocks == nullptr) return;
    for (auto& entry : *blocks) {
        CEBloco* block;
        if constexpr (std::is_same_v<Container, std::list<CEBloco*>>)
            block = entry;
        else
            block = entry.second;
        destroy(block, {"A", "TAG"});
    }
    delete blocks;
}

class Failures : public CadDrawing {
protected:
    Failures() {
        const auto keep = [this](auto object) {
            m_objects.push_back(object.get());
            return object;
        };
        m_block = keep(make(new Raising<OdDbBlockTableRecord>));
        block(m_block, "B", {{"A", "p", "d"}, {"A", "", "c", true}});
        m_definition = keep(make(new Raising<OdDbAttributeDefinition>));
        append(m_block->objectId(), m_definition);
        m_reference = keep(make(new Raising<OdDbBlockReference>));
        m_reference->setBlockTableRecord(m_block->objectId());
        append(m_db.getModelSpaceId(), m_reference);
        m_reference->appendAttribute(attribute({"A", ""}));
        m_attribute = keep(make<OdDbAttribute>(new Raising<OdDbAttribute>));
        m_attribute->setTag(od("TAG"));
        m_attribute->setTextString(od("M1"));
        m_reference->appendAttribute(m_attribute);
        m_point = keep(make(new Raising<OdDbPoint>));
        append(m_db.getModelSpaceId(), m_point);
        m_point->setXData(chainOf({"A\f1\fN", "TAG\fM1\fN"}));
        m_dictionary = keep(make(new Raising<OdDbDictionary>));
        namedObjects()->setAt(od("ESQ_VIRTUAL_RZ"), m_dictionary);
        m_record = keep(make(new Raising<OdDbXrecord>));
        virtualBlock(m_record, "k1", "V", {"A\f1\fN", "TAG\fM1\fN", "TAG\fM1\fN"});
        virtualBlock("k2", "V", {"TAG\fM1\fN"});
        m_connection.AdicionarAtributo(
            new CEAtributo(od("CONEXION"), OdString(), OdString(), m_attribute->objectId(), false));
    }
    ~Failures() override {
        armed = nullptr;
        m_connection.releaseAllAttributes();
        hostSession()->clearLines();
    }

    OdSmartPtr<OdDbObject> object() { return m_reference; }
    OdSmartPtr<OdDbDatabase> database() { return OdSmartPtr<OdDbDatabase>(&m_db); }
    RZID id() { return m_reference->objectId(); }

    /// How often each object is held.
    std::vector<long> holds() {
        std::vector<long> all = {m_db.numRefs()};
        for (OdDbObject* each : m_objects) all.push_back(each->numRefs());
        const OdDbObjectId fixed[] = {m_db.getBlockTableId(), m_db.getModelSpaceId(), m_db.getPaperSpaceId(),
                                      m_db.getNamedObjectsDictionaryId()};
        for (const OdDbObjectId& each : fixed) all.push_back(each.openObject()->numRefs());
        return all;
    }

    void search(RZString tag, bool withPrompt) {
        Found found;
        m_cad.SearchAttribute(tag, Reference(m_reference), found.slot(), withPrompt);
    }
    void searchObject(OdSmartPtr<OdDbObject> object) {
        Found found;
        m_cad.SearchAttribute(rz("TAG"), object, found.slot(), false);
    }
    void searchId() {
        Found found;
        m_cad.SearchAttribute(rz("TAG"), id(), found.slot(), false);
    }
    void searchRole() {
        Found found;
        m_cad.SearchAttributeTag(Reference(m_reference), found.slot(), false);
    }
    void list(bool withPrompt) {
        FoundList found;
        m_cad.SearchAttributes(Reference(m_reference), found.slot(), withPrompt, true, rz(""));
    }
    void listId() {
        FoundList found;
        m_cad.SearchAttributes(id(), found.slot(), false, false, rz(""));
    }
    void definitions() {
        FoundList found;
        m_cad.SearchAttributes(m_block, found.slot());
    }
    void constants() {
        FoundList found;
        m_cad.SearchAttributesConst(m_reference, found.slot());
    }
    void intoBlock() {
        BlockHolder holder;
        m_cad.SearchAttributes(Reference(m_reference), &holder.block);
    }
    void virtualOne() {
        Found found;
        found.slot() = m_cad.SearchAttributeVirtual(m_point, rz("TAG"));
    }
    void virtualOneById() {
        Found found;
        found.slot() = m_cad.SearchAttributeVirtual(RZID(m_point->objectId()), rz("TAG"));
    }
    void virtualRole() {
        Found found;
        found.slot() = m_cad.SearchAttributeVirtualTag(m_point);
    }
    void virtualList() {
        FoundList found;
        m_cad.SearchAttributesVirtual(RZID(m_record->objectId()), found.slot());
    }
    void virtualIntoBlock() {
        BlockHolder holder;
        m_cad.SearchAttributesVirtual(RZID(m_record->objectId()), &holder.block);
    }
    void existsOn() {
        RZID found;
        RZStringList layers{rz("0")};
        m_cad.ExisteBloco(rz("B"), found, &layers);
    }
    void existsOnOne() {
        RZID found;
        m_cad.ExisteBloco(rz("B"), found, rz("0"));
    }
    void existsIn() {
        RZID found;
        m_cad.ExisteBloco(rz("B"), found, database());
    }

    struct Call {
        const char* what;
        std::function<void()> run;
        OdDbObject* broken; // null for none
        Texts lines;        // the names in front of " : ", in order
    };

    static Texts names(const lm::test::LogCapture& log) {
        Texts all;
        for (const std::string& line : log.lines()) {
            const std::size_t from = line.find("} ") + 2, to = line.find(" : ");
            EXPECT_NE(to, std::string::npos) << line;
            all.push_back(line.substr(from, to - from));
        }
        return all;
    }

    std::vector<Call> calls();
    std::vector<Call> allocations();

    Reference m_reference;
    OdSmartPtr<OdDbBlockTableRecord> m_block;
    OdSmartPtr<OdDbAttributeDefinition> m_definition;
    OdSmartPtr<OdDbAttribute> m_attribute;
    OdSmartPtr<OdDbPoint> m_point;
    OdSmartPtr<OdDbDictionary> m_dictionary;
    OdSmartPtr<OdDbXrecord> m_record;
    CEListaAtributos m_connection;
    std::vector<OdDbObject*> m_objects;
};

const char kOne[] = "CICad::SearchAttribute", kList[] = "CICad::SearchAttributes",
           kConst[] = "CICad::SearchAttributesConst", kPrompt[] = "CICad::GetPrompt",
           kPoint[] = "CICad::getAttPosicaoPto", kVirtual[] = "CICad::SearchAttributeVirtual",
           kExists[] = "CICad::ExisteBloco", kName[] = "CICad::GetNomeBloco";

/// Each member on the way over an object that raises.
std::vector<Failures::Call> Failures::calls() {
    OdDbObject *const attribute = m_attribute.get(), *const definition = m_definition.get(),
                      *const block = m_block.get(), *const reference = m_reference.get(),
                      *const point = m_point.get(), *const dictionary = m_dictionary.get(),
                      *const record = m_record.get();
    return {
        {"SearchAttribute", [&] { search(rz("TAG"), false); }, attribute, {kOne}},
        {"SearchAttribute, block", [&] { search(rz("A"), true); }, block, {kOne}},
        {"SearchAttribute, prompt", [&] { search(rz("a"), true); }, definition, {kPrompt, kOne}},
        {"SearchAttribute of an object", [&] { searchObject(object()); }, attribute, {kOne, kOne}},
        {"SearchAttribute of a point", [&] { searchObject(m_point); }, point, {kOne}},
        {"SearchAttribute of an id", [&] { searchId(); }, attribute, {kOne, kOne, kOne}},
        {"SearchAttributeTag", [&] { searchRole(); }, attribute, {kOne}},
        {"GetValorAtributo",
         [&] { m_cad.GetValorAtributo(rz("TAG"), m_reference, false); },
         attribute,
         {kOne}},
        {"SearchAttributes", [&] { list(false); }, attribute, {kList}},
        {"SearchAttributes, prompt", [&] { list(true); }, definition, {kPrompt, kList}},
        {"SearchAttributes of an id", [&] { listId(); }, attribute, {kList, kList}},
        {"SearchAttributes of a block", [&] { definitions(); }, definition, {kList}},
        {"SearchAttributes into a block", [&] { intoBlock(); }, attribute, {kList}},
        {"SearchAttributesConst", [&] { constants(); }, definition, {kConst}},
        {"SearchAttributesConst, block", [&] { constants(); }, block, {kConst}},
        {"GetPrompt", [&] { m_cad.GetPrompt(m_block, rz("X"), 0); }, definition, {kPrompt}},
        {"GetValue", [&] { m_cad.GetValue(m_block, rz("X")); }, definition, {}},
        {"getAttPosicaoPto",
         [&] { m_cad.getAttPosicaoPto(m_reference, &m_connection, {}); },
         attribute,
         {kPoint}},
        {"BuscarBlocosVirtuais", [&] { m_cad.BuscarBlocosVirtuais(rz("*"), rz("A")); }, record, {}},
        {"BuscarBlocosVirtuais, dictionary",
         [&] { m_cad.BuscarBlocosVirtuais(rz("*"), rz("A")); },
         dictionary,
         {}},
        {"isNoEsqVirtual", [&] { m_cad.isNoEsqVirtual(rz("A")); }, dictionary, {}},
        {"BuscarBloco", [&] { m_cad.BuscarBloco(rz("B"), rz("0")); }, reference, {}},
        {"BuscarBloco, block", [&] { m_cad.BuscarBloco(rz("B"), rz("0")); }, block, {}},
        {"BuscarBlocos", [&] { m_cad.BuscarBlocos(rz("B")); }, reference, {}},
        {"BuscarBlocos, attribute", [&] { m_cad.BuscarBlocos(rz("B")); }, attribute, {kList}},
        {"BuscarBlocos by tag", [&] { m_cad.BuscarBlocos(rz("B"), rz("TAG")); }, block, {}},
        {"BuscarBlocos by tag, attribute", [&] { m_cad.BuscarBlocos(rz("B"), rz("A")); }, attribute, {kList}},
        {"BuscarBlocos2", [&] { m_cad.BuscarBlocos2(rz("B")); }, reference, {}},
        {"BuscarBlocos2, block", [&] { m_cad.BuscarBlocos2(rz("B")); }, block, {kName}},
        {"BuscarBlocos2, attribute", [&] { m_cad.BuscarBlocos2(rz("B")); }, attribute, {kList}},
        {"BuscarBlocos3", [&] { m_cad.BuscarBlocos3(rz("A"), rz("1")); }, reference, {}},
        {"BuscarBlocos3, block", [&] { m_cad.BuscarBlocos3(rz("A"), rz("1")); }, block, {kName}},
        {"BuscarBlocos3, attribute", [&] { m_cad.BuscarBlocos3(rz("A"), rz("1")); }, attribute, {kList}},
        {"GetNomeBloco", [&] { m_cad.GetNomeBloco(m_reference); }, block, {kName}},
        {"ExisteBloco on layers", [&] { existsOn(); }, reference, {kExists}},
        {"ExisteBloco on layers, block", [&] { existsOn(); }, block, {kExists}},
        {"ExisteBloco on a layer", [&] { existsOnOne(); }, reference, {kExists, kExists}},
    };
}

/// Each member with its first allocation failing, for what nothing in a drawing can break.
std::vector<Failures::Call> Failures::allocations() {
    const auto none = static_cast<OdDbObject*>(nullptr);
    return {
        {"SearchAttribute", [&] { search(rz("TAG"), true); }, none, {kOne}},
        {"SearchAttribute of an object", [&] { searchObject(object()); }, none, {kOne, kOne}},
        {"SearchAttribute of a point", [&] { searchObject(m_point); }, none, {kVirtual, kOne}},
        {"SearchAttribute of an id", [&] { searchId(); }, none, {kOne, kOne, kOne}},
        {"SearchAttributeTag", [&] { searchRole(); }, none, {kOne}},
        {"GetValorAtributo", [&] { m_cad.GetValorAtributo(rz("TAG"), m_reference, true); }, none, {kOne}},
        {"SearchAttributes", [&] { list(true); }, none, {kList}},
        {"SearchAttributes of an id", [&] { listId(); }, none, {kList, kList}},
        {"SearchAttributes of a block", [&] { definitions(); }, none, {kList}},
        {"SearchAttributes into a block", [&] { intoBlock(); }, none, {kList}},
        {"SearchAttributesConst", [&] { constants(); }, none, {kConst}},
        {"GetPrompt", [&] { m_cad.GetPrompt(m_block, rz("A"), 0); }, none, {kPrompt}},
        {"GetValue", [&] { m_cad.GetValue(m_block, rz("A")); }, none, {}},
        {"SearchAttributeVirtual", [&] { virtualOne(); }, none, {kVirtual}},
        {"SearchAttributeVirtual of an id", [&] { virtualOneById(); }, none, {kVirtual, kVirtual}},
        {"SearchAttributeVirtualTag", [&] { virtualRole(); }, none, {kVirtual}},
        {"SearchAttributesVirtual", [&] { virtualList(); }, none, {}},
        {"SearchAttributesVirtual into a block", [&] { virtualIntoBlock(); }, none, {}},
        {"BuscarBlocosVirtuais",
         [&] { destroyAll(m_cad.BuscarBlocosVirtuais(rz("V*"), rz("TAG"))); },
         none,
         {}},
        {"isNoEsqVirtual", [&] { m_cad.isNoEsqVirtual(rz("M2")); }, none, {}},
        {"BuscarBloco", [&] { m_cad.BuscarBloco(rz("B"), rz("0")); }, none, {}},
        {"BuscarBlocos", [&] { destroyAll(m_cad.BuscarBlocos(rz("B"))); }, none, {}},
        {"BuscarBlocos by tag", [&] { destroyAll(m_cad.BuscarBlocos(rz("B"), rz("TAG"))); }, none, {}},
        {"BuscarBlocos2", [&] { destroyAll(m_cad.BuscarBlocos2(rz("B;B"))); }, none, {}},
        {"BuscarBlocos3", [&] { destroyAll(m_cad.BuscarBlocos3(rz("TAG"), rz("M1"))); }, none, {}},
        {"BuscarBlocos3, none", [&] { destroyAll(m_cad.BuscarBlocos3(rz("TAG"), rz("M2"))); }, none, {}},
        {"ExisteBloco in a database", [&] { existsIn(); }, none, {kExists}},
        {"ExisteBloco on layers", [&] { existsOn(); }, none, {kExists}},
        {"ExisteBloco on a layer", [&] { existsOnOne(); }, none, {kExists, kExists}},
    };
}

TEST_F(Failures, OfGuardedMembersAreReportedOnceForEachGuardAndRaisedAgain) {
    for (const Kind kind : {Kind::kOdError, Kind::kStandard}) {
        for (const Call& call : calls()) {
            const lm::test::LogCapture log;
            const std::vector<long> before = holds();
            armed = call.broken;
            armedKind = kind;
            bool same = false;
            try {
                call.run();
            } catch (const KnownOdError& error) {
                same = kind == Kind::kOdError && error.self == &error;
            } catch (const KnownStandard& error) {
                same = kind == Kind::kStandard && error.self == &error;
            }
            armed = nullptr;
            EXPECT_TRUE(same) << call.what << ": the very object passes";
            EXPECT_EQ(names(log), call.lines) << call.what;
            for (const std::string& line : log.lines()) EXPECT_TRUE(line.ends_with(" : broken")) << line;
            EXPECT_EQ(holds(), before) << call.what << " lets go of what it opened";
        }
    }
}

TEST_F(Failures, OfOtherKindsPassWithoutALine) {
    for (const Call& call : calls()) {
        const lm::test::LogCapture log;
        const std::vector<long> before = holds();
        armed = call.broken;
        armedKind = Kind::kOther;
        EXPECT_THROW(call.run(), int) << call.what;
        armed = nullptr;
        EXPECT_THAT(log.lines(), ElementsAre()) << call.what;
        EXPECT_EQ(holds(), before) << call.what;
    }
}

TEST_F(Failures, OfMemoryAreReportedTheSame) {
    for (const Call& call : allocations()) {
        const lm::test::LogCapture log;
        lm::drawing::failAllocationAfter(0);
        EXPECT_THROW(call.run(), std::bad_alloc) << call.what;
        lm::drawing::failAllocationAfter(-1);
        EXPECT_EQ(names(log), call.lines) << call.what;
    }
}

/// Lets each allocation of a member fail in turn, until it gets through.
TEST_F(Failures, OfMemoryAnywhereLeaveNothingOpenAndNothingAllocated) {
    for (const Call& call : allocations()) {
        call.run();
        hostSession()->clearLines();
        const std::vector<long> before = holds();
        const std::size_t blocks = lm::drawing::liveBlocks();
        long successes = 0;
        for (bool failed = true; failed && successes < 1000; ++successes) {
            failed = false;
            lm::drawing::failAllocationAfter(successes);
            try {
                call.run();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            lm::drawing::failAllocationAfter(-1);
            hostSession()->clearLines();
            EXPECT_EQ(holds(), before) << call.what << " after " << successes;
            ASSERT_EQ(lm::drawing::liveBlocks(), blocks) << call.what << " after " << successes;
        }
        EXPECT_GT(successes, 1) << call.what << " has an allocation to fail";
        EXPECT_LT(successes, 1000) << call.what << " gets through";
    }
}

TEST_F(Failures, AreReportedWithTheActiveDocument) {
    const lm::test::LogCapture log;
    armed = m_block.get();
    armedKind = Kind::kOdError;
    EXPECT_THROW(m_cad.GetNomeBloco(m_reference), OdError);
    armed = nullptr;
    const std::string number = std::to_string(m_document->number());
    EXPECT_THAT(log.lines(), ElementsAre("[" + number + "] {now} CICad::GetNomeBloco : broken"));
}

TEST_F(Failures, OfACastNameBothClasses) {
    const lm::test::LogCapture log;
    const Reference reference = place(m_block->objectId(), {{"A", "1"}});
    reference->setBlockTableRecord(OdDbObjectId());
    EXPECT_THROW(reference->setBlockTableRecord(layer("L")), OdError_NotThatKindOfClass);
    virtualBlocks();
    namedObjects()->setAt(od("ESQ_VIRTUAL_RZ"), make(new OdDbXrecord));
    EXPECT_THROW(m_cad.isNoEsqVirtual(rz("A")), OdError_NotThatKindOfClass);
    EXPECT_THROW(m_cad.BuscarBlocosVirtuais(rz("A"), rz("A")), OdError_NotThatKindOfClass);
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(Failures, OfAMissingBlockAreReportedByTheSearchForAPrompt) {
    const lm::test::LogCapture log;
    EXPECT_THROW(m_cad.GetPrompt(OdSmartPtr<OdDbBlockTableRecord>(), rz("A"), 0), OdError);
    EXPECT_EQ(names(log), Texts{kPrompt});
}

/// What a search lists before it fails goes with the failure.
TEST_F(Failures, LeaveNoListBehind) {
    FoundList first, second, third;
    m_cad.SearchAttributes(m_block, first.slot());
    m_cad.SearchAttributesConst(m_reference, second.slot());
    std::vector<std::unique_ptr<CEAtributo>> records;
    for (long long i = 0; i < first->GetSize(); ++i) records.emplace_back(first->GetAt(i));
    armed = m_definition.get();
    armedKind = Kind::kOdError;
    EXPECT_THROW(m_cad.SearchAttributes(m_block, first.slot()), OdError);
    EXPECT_THROW(m_cad.SearchAttributesConst(m_reference, second.slot()), OdError);
    armed = m_attribute.get();
    EXPECT_THROW(m_cad.SearchAttributes(Reference(m_reference), third.slot(), false, false, rz("")), OdError);
    armed = nullptr;
    EXPECT_EQ(first.get(), nullptr);
    EXPECT_EQ(second.get(), nullptr);
    EXPECT_EQ(third.get(), nullptr);
}

} // namespace
