// SPDX-License-Identifier: MIT
// What the tests of pages and project data share: settings carriers, variables of the document, and points
// that raise when a walk meets them.
#pragma once

#include "stored_data.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace lm::tests {

enum class Kind { kOdError, kStandard, kOther };

inline void fail(Kind kind) {
    if (kind == Kind::kOdError) throw OdError(OdString("broken"));
    if (kind == Kind::kStandard) throw std::runtime_error("broken");
    throw 7;
}

/// A point that raises when it is asked for its class.
class RaisingPoint : public OdDbPoint {
public:
    OdRxClass* isA() const override {
        if (isArmed) fail(kind);
        return OdDbPoint::isA();
    }
    bool isArmed = false;
    Kind kind = Kind::kOdError;
};

/// A drawing that may have settings carriers.
class ProjectDrawing : public StoredData {
protected:
    ProjectDrawing() { m_freeze = layer("RZ_FREEZE"); }

    /// An entity in model space on a layer, open for nobody.
    template<class T = OdDbPoint>
    OdDbObjectId entityOn(const char* layer, OdDbObjectId block = {}) {
        const OdSmartPtr<T> entity = make(new T);
        const OdDbObjectId id = append(block.isNull() ? m_db.getModelSpaceId() : block, entity);
        entity->setLayer(od(layer));
        return id;
    }
    OdDbObjectId settingsPoint() { return entityOn("RZ_FREEZE"); }
    OdDbObjectId settingsPoint(const char* id, const Texts& texts) {
        const OdDbObjectId made = settingsPoint();
        give(made, id, texts);
        return made;
    }
    void variable(const char* name, const char* value) { m_cad.SetVarStr(name, value, m_document); }

    /// The names in front of the failures' descriptions.
    static Texts names(const lm::test::LogCapture& log) {
        Texts all;
        for (const std::string& line : log.lines()) {
            const std::size_t from = line.find("} ") + 2, to = line.find(" : broken");
            EXPECT_NE(to, std::string::npos) << line;
            all.push_back(line.substr(from, to - from));
        }
        return all;
    }

    struct Call {
        const char* what;
        std::function<void()> run;
        Texts lines; // the names in front of " : ", in order
    };
    /// Runs each call under a failure of each kind: what a guard knows is reported and raised again.
    void expectReports(const std::vector<Call>& calls, const std::function<void(Kind)>& arm,
                       const std::function<void()>& disarm) {
        for (const Kind kind : {Kind::kOdError, Kind::kStandard, Kind::kOther}) {
            for (const Call& call : calls) {
                const lm::test::LogCapture log;
                arm(kind);
                if (kind == Kind::kOdError)
                    EXPECT_THROW(call.run(), OdError) << call.what;
                else if (kind == Kind::kStandard)
                    EXPECT_THROW(call.run(), std::runtime_error) << call.what;
                else
                    EXPECT_THROW(call.run(), int) << call.what;
                disarm();
                EXPECT_EQ(names(log), kind == Kind::kOther ? Texts() : call.lines) << call.what;
            }
        }
    }
    /// A point on the carriers' layer that raises when armed.
    OdSmartPtr<RaisingPoint> raisingPoint() {
        return OdSmartPtr<RaisingPoint>(
            static_cast<RaisingPoint*>(entityOn<RaisingPoint>("RZ_FREEZE").openObject().get()));
    }

    OdDbObjectId m_freeze;
};

} // namespace lm::tests
