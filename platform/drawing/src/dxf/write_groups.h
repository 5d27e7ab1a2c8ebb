// SPDX-License-Identifier: MIT
// From groups to the bytes of a file: text or binary, in one encoding. What may stay as it is in the source
// goes by without being looked at.
#pragma once

#include "dxf/outgroups.h"
#include "dxf/write_text.h"

namespace lm::drawing {

/// How a file looks.
struct FileForm {
    bool binary = false;
    std::string_view lineEnd = "\r\n"; ///< what most programs write
    std::size_t codeWidth = 3;         ///< codes are set to the right of so many signs
    std::string page = "UTF-8";        ///< of the text, as TextDecoder::page has it
};

/// The shortest decimal form of a finite number that reads back as the same, with a point.
std::string realText(double value);

/// Raised for a value that is infinite or no number: a file can't hold it, and any other number would be
/// wrong.
struct NotFinite {
    int code = 0; ///< of the group
};

class GroupWriter {
public:
    /// `encoder` is the one of `form.page`. Groups of `own`, which may be null, keep their looks. With
    /// `watch`, a file that could be taken for UTF-8 gets a comment before its end that can't.
    /// The sink stays the caller's.
    GroupWriter(const ByteSink& sink, const FileForm& form, const TextEncoder& encoder, const Source* own,
                bool watch);
    GroupWriter(ByteSink&&, const FileForm&, const TextEncoder&, const Source*, bool) = delete;

    /// Whether bytes of a source can be written as they stand, as far as form and encoding go. Where only the
    /// encoding differs, bytes below 0x80 still can.
    bool hasForm(const Source& source) const {
        return source.binary == m_form.binary && !(source.binary && source.shortCodes);
    }
    bool hasPage(const Source& source) const { return m_form.page == source.decoder.page(); }

    /// Writes bytes as they stand.
    void copy(const char* begin, const char* end);
    void put(const OutGroup& group);
    void put(const OutGroups& groups) {
        for (const OutGroup& group : groups) put(group);
    }
    void put(const SourceGroup& group);
    void put(int code, std::string_view ascii) { putText(code, ascii); }
    void put(const OutEntry& entry) {
        put(0, entry.type);
        put(entry.groups);
    }
    /// Ends a line of text that was copied without its end, or with half of it. Does nothing where a line
    /// has ended.
    void endLine();
    /// The comment that keeps the file from being taken for UTF-8, if it is needed.
    void putPageMark();
    /// Hands over what is still held back.
    void flush();

private:
    void putCode(int code);
    void putText(int code, std::string_view bytes);
    void putReal(int code, double value);
    void putInteger(int code, long long value);
    void putBinary(int code, std::string_view bytes);
    void putEncoded(int code, const OdString& text);
    void convert(const SourceGroup& group);
    void convertText(const SourceGroup& group);
    template<class T>
    void raw(T value) {
        m_buffer.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void mayFlush() {
        if (m_buffer.size() >= kBuffer) flush();
    }

    static constexpr std::size_t kBuffer = std::size_t{1} << 20;
    const ByteSink& m_sink;
    FileForm m_form;
    const TextEncoder& m_encoder;
    const Source* m_own;
    std::string m_buffer;
    std::string m_scratch;
    char m_last = '\n'; ///< the last byte that was handed over
    Utf8Watch m_watch;
    bool m_watching;
};

} // namespace lm::drawing
