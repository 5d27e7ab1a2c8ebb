// SPDX-License-Identifier: MIT
// What the tests of argument lists and calls share: a document to call in, and a call that ends with what it
// left.
#pragma once

#include "platform/host/hostsupport.h"

#include "text/rzstring.h"

#include "drawing/alloc.h"

#include <functional>

namespace lm::test {

/// Wide text of ASCII.
inline RZString rz(std::string_view ascii) {
    return RZString(WideView(system::widen(ascii)));
}
inline std::string told(const RZString& text) {
    return system::toUtf8(text.view());
}

/// An active document without a drawing; documents are closed at the end, and the override is gone.
struct ActiveDocument {
    Documents documents;
    CHostDocument* document = documents.manager.newDocumentWithoutDatabase();
    CHostAPI& api = *document->getAPI();
};

/// Runs `body` as a function that was called with the records behind its name, and tells what it left as
/// result: "null" for none.
inline std::string resultOf(CHostAPI& api, hst_resbufW* arguments, const std::function<void()>& body) {
    const host::FunctionRegistration registration("rzTestBody", [&](CHostAPI&) { body(); });
    hst_resbufW* const first = textRecord("rzTestBody", arguments);
    hst_resbufW* result = nullptr;
    api.invoke(first, result);
    const std::string text = result == nullptr ? "null" : told(result);
    api.relRb(result);
    api.relRb(first);
    return text;
}

/// The lines that the session's log got since this object was made; the time stamp is fixed for as long.
class LogCapture {
public:
    LogCapture() {
        host::setHistoryTimestamp("now");
        m_before =
            hostSession()->setLogSink([this](WideView line) { m_lines.push_back(system::toUtf8(line)); });
    }
    ~LogCapture() {
        host::setHistoryTimestamp(CHostString());
        host::setSessionPresent(true);
        hostSession()->setLogSink(m_before);
    }
    const std::vector<std::string>& lines() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
    host::TextSink m_before;
};

} // namespace lm::test
