// SPDX-License-Identifier: MIT
// Variables of a document: values that commands and LISP routines hand to each other under a name.
#include "arguments.h"
#include "cad/icad.h"
#include "log.h"

#include "host/document.h"

namespace {

/// The value of a symbol as a chain of the caller's, which goes back to the host at the end.
class SymbolValue {
public:
    SymbolValue(const RZString& name, const CHostDocument& doc) : m_api(*doc.getAPI()) {
        m_found = m_api.getSym(name, &m_chain) == RTNORM;
    }
    SymbolValue(const SymbolValue&) = delete;
    SymbolValue& operator=(const SymbolValue&) = delete;
    ~SymbolValue() { m_api.relRb(m_chain); }

    /// The first record; null for a symbol that isn't there.
    const hst_resbufW* first() const { return m_found ? m_chain : nullptr; }

private:
    CHostAPI& m_api;
    hst_resbufW* m_chain = nullptr;
    bool m_found = false;
};

/// What `read` makes of the first record of a symbol's value, or the fallback where there is none.
template<class Value, class Read>
Value readSymbol(const RZString& name, const Value& fallback, const CHostDocument* doc, Read&& read) {
    if (doc == nullptr) return fallback;
    const SymbolValue value(name, *doc);
    return value.first() == nullptr ? fallback : read(*value.first());
}

/// A chain that is released here: the host keeps a copy of what it is given.
class OwnChain {
public:
    explicit OwnChain(CHostAPI& api) : m_api(api) {}
    OwnChain(const OwnChain&) = delete;
    OwnChain& operator=(const OwnChain&) = delete;
    ~OwnChain() { m_api.relRb(builder.getList()); }

    CCListBuilder builder;

private:
    CHostAPI& m_api;
};

/// Sets a symbol to what `fill` puts into a builder.
template<class Fill>
void writeSymbol(const RZString& name, const CHostDocument* doc, Fill&& fill) {
    CHostAPI& api = *doc->getAPI();
    OwnChain chain(api);
    fill(chain.builder);
    api.putSym(name, chain.builder.getList());
}

template<class Texts>
void writeTexts(const RZString& name, const Texts& texts, const CHostDocument* doc) {
    writeSymbol(name, doc, [&](CCListBuilder& builder) {
        builder.addListBegin();
        for (const RZString& text : texts) builder.add(text, RTSTR);
        builder.addListEnd();
    });
}

} // namespace

bool CICad::GetVarBool(RZString nome, bool padrao, CHostDocument* doc) {
    return lm::log::guarded("CICad::GetVarBool", [&] {
        return readSymbol(nome, padrao, doc, [&](const hst_resbufW& value) {
            // Nil is the default and not false: a flag that nobody set and one that was cleared read alike.
            return value.restype == RTNIL ? padrao : true;
        });
    });
}

int CICad::GetVarInt(RZString nome, int padrao, CHostDocument* doc) {
    return lm::log::guarded("CICad::GetVarInt", [&] {
        return readSymbol(nome, padrao, doc, [&](const hst_resbufW& value) {
            return value.restype == RTSHORT ? int(value.value.int16) : padrao;
        });
    });
}

double CICad::GetVarReal(RZString nome, double padrao, CHostDocument* doc) {
    return lm::log::guarded("CICad::GetVarReal", [&] {
        return readSymbol(nome, padrao, doc, [&](const hst_resbufW& value) {
            if (value.restype == RTREAL) return value.value.real;
            return value.restype == RTSHORT ? double(value.value.int16) : padrao;
        });
    });
}

RZString CICad::GetVarStr(RZString nome, RZString padrao, CHostDocument* doc) {
    return lm::log::guarded("CICad::GetVarStr", [&] {
        return readSymbol(nome, padrao, doc, [](const hst_resbufW& value) {
            return value.restype == RTSTR ? RZString(value.value.text) : RZString();
        });
    });
}

RZStringList CICad::GetVarLstStr(RZString nome, CHostDocument* doc) {
    return lm::log::guarded("CICad::GetVarLstStr", [&] {
        return readSymbol(nome, RZStringList(), doc, [](const hst_resbufW& value) {
            RZStringList texts;
            for (const hst_resbufW* at = &value; at != nullptr; at = at->rbnext)
                if (at->restype == RTSTR) texts.addTail(RZString(at->value.text));
            return texts;
        });
        // The chain is released like that of the other readers: every text was copied, so nobody reads it
        // afterwards.
    });
}

void CICad::SetVarBool(RZString nome, bool valor, CHostDocument* doc) {
    lm::log::guarded("CICad::SetVarBool", [&] {
        writeSymbol(nome, doc,
                    [&](CCListBuilder& builder) { builder.add(lm::host::newRecord(valor ? RTT : RTNIL)); });
    });
}

void CICad::SetVarInt(RZString nome, int valor, CHostDocument* doc) {
    lm::log::guarded("CICad::SetVarInt",
                     [&] { writeSymbol(nome, doc, [&](CCListBuilder& builder) { builder.add(valor); }); });
}

void CICad::SetVarReal(RZString nome, double valor, CHostDocument* doc) {
    lm::log::guarded("CICad::SetVarReal",
                     [&] { writeSymbol(nome, doc, [&](CCListBuilder& builder) { builder.add(valor); }); });
}

void CICad::SetVarStr(RZString nome, RZString valor, CHostDocument* doc) {
    lm::log::guarded("CICad::SetVarStr", [&] {
        writeSymbol(nome, doc, [&](CCListBuilder& builder) { builder.add(valor, RTSTR); });
    });
}

void CICad::SetVarLstStr(RZString nome, RZStringList lista, CHostDocument* doc) {
    lm::log::guarded("CICad::SetVarLstStr", [&] { writeTexts(nome, lista, doc); });
}

void CICad::SetVarLstStr(RZString nome, std::vector<RZString> lista, CHostDocument* doc) {
    lm::log::guarded("CICad::SetVarLstStr", [&] { writeTexts(nome, lista, doc); });
}
