// SPDX-License-Identifier: MIT
// What the tests of commands share: a drawing to work on, code that runs as a command, and the calls that
// reactors got, as lines.
#pragma once

#include "hostsupport.h"

#include "drawing/blockreference.h"
#include "drawing/curves.h"
#include "host/eventlog.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace lm::test {

using lm::host::Answer;
using lm::host::AnswerList;
using lm::host::CommandCancelled;
using lm::host::CommandFailed;
using Lines = std::vector<std::string>;

inline std::string utf8(const OdString& text) {
    return lm::drawing::utf8(text);
}

/// An open, empty drawing.
class Drawing {
public:
    Drawing() : m_document(m_documents.manager.newDocument()) {}
    CHostDocument& document() const { return *m_document; }
    CHostDatabase& database() const { return *m_document->database(); }
    CHostDocumentManager& manager() const { return m_documents.manager; }

    OdDbObjectId add(OdSmartPtr<OdDbEntity> entity) const {
        const OdSmartPtr<OdDbBlockTableRecord> space(
            database().getModelSpaceId().openObject(OdDb::kForWrite));
        return space->appendOdDbEntity(entity);
    }
    OdDbObjectId line(double x1, double y1, double x2, double y2) const {
        const OdSmartPtr<OdDbLine> line(new OdDbLine, lm::drawing::kAttach);
        line->setStartPoint({x1, y1, 0});
        line->setEndPoint({x2, y2, 0});
        return add(line);
    }
    OdDbObjectId circle(double x, double y, double radius) const {
        const OdSmartPtr<OdDbCircle> circle(new OdDbCircle, lm::drawing::kAttach);
        circle->setCenter({x, y, 0});
        circle->setRadius(radius);
        return add(circle);
    }
    OdDbObjectId layer(std::string_view name) const {
        const OdSmartPtr<OdDbSymbolTable> table(database().getLayerTableId().openObject(OdDb::kForWrite));
        const OdSmartPtr<OdDbLayerTableRecord> record(new OdDbLayerTableRecord, lm::drawing::kAttach);
        record->setName(OdString(hostText(name)));
        return table->add(record);
    }
    OdSmartPtr<OdDbLayerTableRecord> layerCalled(std::string_view name) const {
        const OdSmartPtr<OdDbSymbolTable> table(database().getLayerTableId().openObject());
        return OdSmartPtr<OdDbLayerTableRecord>(table->getAt(OdString(hostText(name)), OdDb::kForRead));
    }
    /// Live entities of model space.
    std::vector<OdDbObjectId> entities() const {
        std::vector<OdDbObjectId> ids;
        const OdSmartPtr<OdDbBlockTableRecord> space(database().getModelSpaceId().openObject());
        for (const auto walk = space->newIterator(); !walk->done(); walk->step())
            ids.push_back(walk->objectId());
        return ids;
    }
    std::string handle(OdDbObjectId id) const { return utf8(id.getHandle().ascii()); }

private:
    Documents m_documents;
    CHostDocument* m_document;
};

/// The calls of reactors since the object was made, or since the last take.
class Events {
public:
    Events() : m_log([this](std::string_view line) { m_lines.emplace_back(line); }) {}
    Lines take() { return std::exchange(m_lines, {}); }

private:
    Lines m_lines;
    lm::host::EventLog m_log;
};

inline OdEdCommandStack& stack() {
    return *odedRegCmds();
}

/// Runs code as a command of a document.
inline int run(CHostDocument& document, const char* name, OdEdCommand::Body body,
               OdEdCommand::Kind kind = OdEdCommand::kOrdinary) {
    return lm::host::runAsCommand(&document, OdString(name), std::move(body), kind);
}

/// Writes down the calls of the stack, and does more on request.
class Watcher : public OdEdCommandStackReactor {
public:
    explicit Watcher(Lines& lines, std::string name = "") : m_lines(lines), m_name(std::move(name)) {
        stack().addReactor(this);
    }
    ~Watcher() override { stack().removeReactor(this); }
    void commandWillStart(OdEdCommand* c, OdEdCommandContext* x) override { note("start", c, x); }
    void commandEnded(OdEdCommand* c, OdEdCommandContext* x) override { note("ended", c, x); }
    void commandCancelled(OdEdCommand* c, OdEdCommandContext* x) override { note("cancelled", c, x); }
    void commandFailed(OdEdCommand* c, OdEdCommandContext* x) override { note("failed", c, x); }
    std::function<void(const std::string& what, OdEdCommandContext* context)> also;

private:
    void note(const std::string& what, OdEdCommand* command, OdEdCommandContext* context) {
        m_lines.push_back(m_name + what + " " + utf8(command->globalName()));
        if (also) also(what, context);
    }
    Lines& m_lines;
    std::string m_name;
};

} // namespace lm::test
