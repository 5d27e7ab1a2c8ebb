// SPDX-License-Identifier: MIT
// Local circuits: a component's number is read here, everything else is asked of the module that owns the
// circuits.
#include "arguments.h"
#include "calls.h"
#include "cad/icad.h"
#include "cad/icad_detail.h"
#include "log.h"
#include "vocabulary/names.h"

#include "host/document.h"

#include <array>
#include <cstdlib>
#include <utility>

namespace {

/// A component whose schematic object tells no number.
constexpr int kFirstCircuit = 1;

struct ChainRelease {
    void operator()(hst_resbufW* list) const { lm::host::releaseChain(list); }
};
/// What a function left; null when there was nobody to answer.
using Result = std::unique_ptr<hst_resbufW, ChainRelease>;

/// A call with arguments of several types. Its records stand side by side in it and not on the heap; the
/// called function gets copies, so the texts go with the call.
class Call {
public:
    explicit Call(const char* function) { text(function); }
    ~Call() {
        for (const hst_resbufW& record : m_records)
            if (record.restype == RTSTR) std::free(record.value.text);
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    Call& text(const RZString& text) {
        add() = static_cast<hst_resbufW>(text);
        return *this;
    }
    Call& number(int number) {
        hst_resbufW& record = add();
        record.restype = RTSHORT;
        record.value.int16 = static_cast<short>(number);
        return *this;
    }
    Call& point(const OdGePoint2d& point) {
        hst_resbufW& record = add();
        record.restype = RTPOINT;
        record.value.point[0] = point.x;
        record.value.point[1] = point.y;
        return *this;
    }
    /// Makes the call in the active document.
    Result run() {
        CHostDocument* const document = ACTIVE_DOCUMENT();
        if (document == nullptr) return nullptr;
        for (std::size_t i = 1; i < m_count; ++i) m_records[i - 1].rbnext = &m_records[i];
        hst_resbufW* result = nullptr;
        document->getAPI()->invoke(m_records.data(), result);
        return Result(result);
    }

private:
    static constexpr std::size_t kMostRecords = 4;
    hst_resbufW& add() { return m_records.at(m_count++); }

    std::array<hst_resbufW, kMostRecords> m_records{};
    std::size_t m_count = 0;
};

bool isYes(const Result& result) {
    return result != nullptr && result->restype != RTNIL;
}

using Texts = std::list<RZString>;
using Circuits = std::map<int, Texts*>;

struct CircuitsDeleter {
    void operator()(Circuits* circuits) const {
        for (const auto& [number, texts] : *circuits) delete texts;
        delete circuits;
    }
};
/// The map that is being filled; null while there is no circuit.
using CircuitsOwner = std::unique_ptr<Circuits, CircuitsDeleter>;

void enter(CircuitsOwner& circuits, int number, std::unique_ptr<Texts> texts) {
    if (texts == nullptr) return;
    if (circuits == nullptr) circuits.reset(new Circuits);
    const auto [place, isNew] = circuits->try_emplace(number, nullptr);
    if (isNew) place->second = texts.release();
}

/// Reads the circuit whose number stands in `record` and gives the record behind its end.
const hst_resbufW* readCircuit(const hst_resbufW* record, CircuitsOwner& circuits) {
    const int number = record->value.int16;
    std::unique_ptr<Texts> texts;
    for (record = record->rbnext; record != nullptr && record->restype != RTLE; record = record->rbnext) {
        if (record->restype != RTSTR) continue;
        if (texts == nullptr) texts = std::make_unique<Texts>();
        texts->emplace_back(static_cast<const unsigned short*>(record->value.text));
    }
    enter(circuits, number, std::move(texts));
    return record == nullptr ? nullptr : record->rbnext;
}

} // namespace

bool CICad::buscaCircuitoLocal(OdSmartPtr<OdDbObject> obj, int& numero) {
    return lm::log::guarded("CICad::buscaCircuitoLocal", [&] {
        if (obj.isNull()) return false;
        const OdSmartPtr<OdDbObject> schematic =
            getObjIdEsquema(RZID(obj->objectId())).openObject(OdDb::kForRead);
        if (schematic.isNull()) return false;
        const OdSmartPtr<OdResBuf> record = lm::cad::recordAt(schematic->xData(lm::names::TVO_RZ_CIRCLOC), 1);
        numero = record.isNull() ? kFirstCircuit : record->getInt32();
        return true;
    });
}

bool CICad::buscaCircuitoLocal(int numero, RZString& a, RZString& b, RZString& c) {
    const Result result = Call("rzGetCircuitoLocalInfo").number(numero).run();
    if (result == nullptr || result->restype != RTLB) return false;
    std::array<RZString, 3> texts;
    const hst_resbufW* record = result.get();
    for (RZString& text : texts) {
        record = record->rbnext;
        // A marker holds no text that could be read, so it is no third text of a list of two.
        if (record == nullptr || record->restype != RTSTR) return false;
        text = RZString(static_cast<const unsigned short*>(record->value.text));
    }
    a = std::move(texts[0]);
    b = std::move(texts[1]);
    c = std::move(texts[2]);
    return true;
}

bool CICad::buscaCircuitoLocal(OdSmartPtr<OdDbObject> obj, RZString& a, RZString& b, RZString& c) {
    int number = -1;
    return buscaCircuitoLocal(obj, a, b, c, number);
}

bool CICad::buscaCircuitoLocal(OdSmartPtr<OdDbObject> obj, RZString& a, RZString& b, RZString& c,
                               int& numero) {
    return lm::log::guarded("CICad::buscaCircuitoLocal", [&] {
        return buscaCircuitoLocal(obj, numero) && buscaCircuitoLocal(numero, a, b, c);
    });
}

bool CICad::buscaCircuitoLocal(RZID id, RZString& a, RZString& b, RZString& c) {
    if (getDatabase() == nullptr) return false;
    return buscaCircuitoLocal(id.openObject(OdDb::kForRead), a, b, c);
}

std::vector<OdSmartPtr<OdDbObject>> CICad::buscaTodosBlocosComCircuitoLocal() {
    return lm::log::guarded("CICad::buscaTodosBlocosComCircuitoLocal", [&] {
        std::vector<OdSmartPtr<OdDbObject>> found;
        const OdSmartPtr<OdDbBlockTableRecord> space = lm::cad::openModelSpace();
        if (space.isNull()) return found;
        const OdSmartPtr<OdDbObjectIterator> walk = space->newIterator();
        for (; !walk->done(); walk->step()) {
            const OdSmartPtr<OdDbEntity> entity = walk->entity();
            if (!entity.isNull() && !entity->xData(lm::names::TVO_RZ_CIRCLOC).isNull())
                found.emplace_back(entity);
        }
        return found;
    });
}

std::map<int, std::list<RZString>*>* CICad::buscaTodosCircuitosLocais() {
    const Result result(rzInvoke2("rzGetAllCircuitosLocaisInfo"));
    if (result == nullptr || result->restype != RTLB) return nullptr;
    CircuitsOwner circuits;
    for (const hst_resbufW* record = result->rbnext; record != nullptr;) {
        const bool opens = record->restype == RTLB;
        record = record->rbnext;
        if (opens && record != nullptr && record->restype == RTSHORT) record = readCircuit(record, circuits);
    }
    return circuits.release();
}

bool CICad::atualizarCiruitoLocal(RZString texto1, OdGePoint2d ponto, RZString texto2) {
    return isYes(Call("rzAtualizarSimbCircuitoLocal").text(texto1).point(ponto).text(texto2).run());
}

bool CICad::findCircuitoLocalLocation(RZString texto, OdGePoint2d ponto, int& numero) {
    const Result result = Call("rzGetCircuitoLocalLocation").text(texto).point(ponto).run();
    if (result == nullptr) return false;
    // Whatever its type: records are zeroed before they are filled, so nil reads as 0.
    numero = result->value.int16;
    return true;
}

bool CICad::clearCircLocal() {
    return isYes(Call("rzClearCircLocal").run());
}

bool CICad::processaRegiaoApagada(RZString texto) {
    return isYes(Call("rzProcessarRegiaoApagada").text(texto).run());
}
