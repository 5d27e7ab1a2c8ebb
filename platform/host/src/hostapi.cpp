// SPDX-License-Identifier: MIT
#include "host/hostapi.h"

#include "functiontable.h"
#include "host/database.h"
#include "host/lisp.h"
#include "host/session.h"
#include "wideformat.h"

#include <utility>

CHostAPI::CHostAPI() = default;
CHostAPI::~CHostAPI() = default;

hst_resbufW* CHostAPI::getArgs() {
    return m_calls.empty() ? nullptr : lm::host::copyChain(m_calls.back()->arguments);
}

void CHostAPI::relRb(hst_resbufW* list) {
    lm::host::releaseChain(list);
}

void CHostAPI::retNil() {
    if (!m_calls.empty()) retList(lm::host::newRecord(RTNIL));
}

void CHostAPI::retT() {
    if (!m_calls.empty()) retList(lm::host::newRecord(RTT));
}

void CHostAPI::retList(hst_resbufW* list) {
    if (m_calls.empty()) {
        lm::host::releaseChain(list);
        return;
    }
    hst_resbufW* before = std::exchange(m_calls.back()->result, list);
    if (before != list) lm::host::releaseChain(before);
}

int CHostAPI::invoke(const hst_resbufW* first, hst_resbufW*& result) {
    result = nullptr;
    if (first == nullptr || first->restype != RTSTR) return RTERROR;
    const auto function = lm::host::findFunction(CHostString(first->value.text));
    if (!function) return RTERROR;

    Call call;
    call.arguments = lm::host::copyChain(first->rbnext);
    // Takes the call down on every way out, with a result that nobody took.
    struct Frame {
        CHostAPI& api;
        Call& call;
        bool entered = false;
        ~Frame() {
            if (entered) api.m_calls.pop_back();
            lm::host::releaseChain(call.arguments);
            lm::host::releaseChain(call.result);
        }
    } frame{*this, call};
    m_calls.push_back(&call);
    frame.entered = true;
    (*function)(*this);
    result = std::exchange(call.result, nullptr);
    return RTNORM;
}

int CHostAPI::getSym(const unsigned short* name, hst_resbufW** result) {
    *result = nullptr;
    return name == nullptr ? RTERROR : lisp().read(lm::WideView(name, lm::system::wideLength(name)), *result);
}

int CHostAPI::putSym(const unsigned short* name, const hst_resbufW* list) {
    return name == nullptr ? RTERROR : lisp().store(lm::WideView(name, lm::system::wideLength(name)), list);
}

int CHostAPI::evalLisp(const unsigned short* text) {
    if (text == nullptr) return RTERROR;
    const lm::WideString program(text); // what is called may change the caller's text
    const lm::host::LispOutcome outcome = lisp().evaluate(program);
    if (outcome.ok) return RTNORM;
    lm::host::writeConsole(outcome.error + lm::system::widen("\n"));
    return RTERROR;
}

lm::host::LispSession& CHostAPI::lisp() {
    if (!m_lisp) m_lisp = std::make_unique<lm::host::LispSession>(*this);
    return *m_lisp;
}

bool CHostAPI::isEvaluating() const {
    return m_lisp && m_lisp->depth() != 0;
}

int CHostAPI::GetObjectId(const unsigned long long name[2], OdDbObjectId& id) const {
    const CHostDatabase* database = CHostDatabase::byNumber(name[1]);
    if (database == nullptr) return RTERROR;
    const OdDbObjectId found = database->getOdDbObjectId(OdDbHandle(name[0]), false, 0);
    if (found.isNull()) return RTERROR;
    id = found;
    return RTNORM;
}

int CHostAPI::GetADSName(OdDbObjectId id, unsigned long long name[2]) const {
    const CHostDatabase* database = id.isValid() ? CHostDatabase::cast(id.database()) : nullptr;
    if (database == nullptr) return RTERROR;
    name[0] = id.getHandle().value();
    name[1] = database->number();
    return RTNORM;
}

int CHostAPI::printf(const unsigned short* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int units = vprintf(format, arguments);
    va_end(arguments);
    return units;
}

int CHostAPI::vprintf(const unsigned short* format, va_list arguments) {
    const lm::WideString text = lm::host::formatWide(format, arguments);
    lm::host::writeConsole(text);
    return static_cast<int>(text.size());
}
