// SPDX-License-Identifier: MIT
// Open files as values of LISP.
#pragma once

#include "value.h"

#include <cstdio>
#include <memory>

namespace lm::host::lisp {

/// How texts become bytes of a file. Reading takes both: a line that is well-formed UTF-8 is read as that,
/// any other in code page 1252.
enum class FileText { kUtf8, kNarrow };

/// An open file; it closes with its last value.
class FileValue final : public Foreign {
public:
    static constexpr ForeignKind kKind = ForeignKind::kFile;
    FileValue(Heap& heap, std::FILE* file, WideString name, bool writes, FileText text)
        : Foreign(kKind, heap), m_file(file), m_name(std::move(name)), m_writes(writes), m_text(text) {}

    std::FILE* file() const noexcept { return m_file.get(); }
    bool writes() const noexcept { return m_writes; }
    bool isOpen() const noexcept { return m_file != nullptr; }
    /// False when something that was written didn't reach the file.
    bool close() noexcept { return m_file == nullptr || std::fclose(m_file.release()) == 0; }
    /// Writes a text; false when the file takes no more.
    bool write(WideView text);
    /// A unit that was read along with the one before it; 0 for none.
    WideChar pending = 0;

    WideString printed() const override;
    const char* typeName() const override { return "FILE"; }
    std::size_t bytes() const override { return sizeof(*this) + m_name.size() * sizeof(WideChar); }

private:
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> m_file;
    WideString m_name;
    bool m_writes;
    FileText m_text;
};

} // namespace lm::host::lisp
