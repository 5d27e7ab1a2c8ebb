// SPDX-License-Identifier: MIT
// JsonWriter: writes one JSON document into a tool's output as it comes, so that a listing of any length
// takes no memory. Format: RFC 8259, UTF-8.
//
//     JsonWriter json(context.out);
//     json.beginObject();
//     json.key("layers");  json.beginArray();  json.value("0");  json.endArray();
//     json.endObject();
#pragma once

#include "host/tools.h"

#include "drawing/odstring.h"

namespace lm::host {

/// A writer of one document. Keys and nesting are the caller's matter.
class LM_HOST_API JsonWriter {
public:
    explicit JsonWriter(ToolOutput& out) : m_out(out) {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    /// A key of ASCII text without quotes; a value or a container must follow.
    void key(std::string_view name);
    /// Text in UTF-8.
    void value(std::string_view utf8);
    void value(const char* utf8) { value(std::string_view(utf8)); }
    /// Wide text; an unpaired surrogate is written as an escape, so nothing is lost.
    void value(WideView text);
    void value(const OdString& text) { value(text.view()); }
    /// The shortest decimal text that reads as the same number; a number that JSON can't hold is written as
    /// null.
    void value(double number);
    void value(long long number);
    void value(int number) { value(static_cast<long long>(number)); }
    void value(std::size_t number) { value(static_cast<long long>(number)); }
    void value(bool truth) { raw(truth ? "true" : "false"); }
    void null() { raw("null"); }
    /// The end of the document: a line feed.
    void finish() { m_out.put('\n'); }

private:
    void open(char bracket) {
        separate();
        m_out.put(bracket);
        m_first = true;
    }
    void close(char bracket) {
        m_out.put(bracket);
        m_first = false;
    }
    void separate() {
        if (!m_first) m_out.put(',');
        m_first = false;
    }
    void raw(std::string_view text) {
        separate();
        m_out.write(text);
    }
    ToolOutput& m_out;
    bool m_first = true;
};

} // namespace lm::host
