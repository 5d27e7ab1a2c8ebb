// SPDX-License-Identifier: MIT
// Tools: work on an open drawing that a module offers as a subcommand of the host program, which knows
// nothing of it but the name, the help line and how to run it.
//
//     lm::host::ToolRegistration registration({"count", "number of layers", [](lm::host::ToolContext&
//     context) {
//         context.out.write("3\n");
//         return 0;
//     }});
#pragma once

#include "host/document.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lm::host {

/// Buffered output of bytes to a file descriptor or into a string. Nothing is written to the descriptor
/// before the buffer is full, flushed or let go. After a failed write the rest is dropped.
class LM_HOST_API ToolOutput {
public:
    static constexpr std::size_t kBufferSize = std::size_t{1} << 20;

    /// Writes to a descriptor, which is not closed.
    explicit ToolOutput(int descriptor);
    /// Writes to a string, complete after a flush.
    explicit ToolOutput(std::string& into);
    ToolOutput(const ToolOutput&) = delete;
    ToolOutput& operator=(const ToolOutput&) = delete;
    ~ToolOutput();

    void write(std::string_view bytes) {
        if (bytes.size() > kBufferSize - m_buffer.size()) makeRoom();
        if (bytes.size() > kBufferSize) return writeThrough(bytes);
        m_buffer.append(bytes);
    }
    void put(char byte) { write(std::string_view(&byte, 1)); }
    /// Hands on what is buffered. False when something could not be written, now or before.
    bool flush();
    /// The error number of the first failed write, or 0.
    int error() const { return m_error; }

private:
    void makeRoom();
    void writeThrough(std::string_view bytes);

    std::string m_buffer;
    std::string* m_into = nullptr;
    int m_descriptor = -1;
    int m_error = 0;
};

/// What a tool works on.
struct ToolContext {
    /// The open drawing; never null.
    CHostDocument* document;
    /// Arguments behind the file name, UTF-8.
    std::vector<std::string> arguments;
    /// The tool's result, UTF-8. The host program flushes it and reports a failure.
    ToolOutput& out;
    /// Takes one line of an error, UTF-8 without line end.
    std::function<void(std::string_view line)> error;
};

/// Runs a tool; gives the exit code of the process: 0 done, 1 done and defects found, 2 wrong usage, 3 input
/// that can't be read, 4 output that can't be written, 5 failed. Exceptions pass to the host program.
using ToolFunction = std::function<int(ToolContext& context)>;

/// A tool as it is offered.
struct Tool {
    std::string name; ///< as the user types it
    std::string help; ///< one line, or several
    ToolFunction run;
};

/// Offers a tool for as long as it lives. Names are exact. Of several tools under one name the latest is
/// offered.
class LM_HOST_API ToolRegistration {
public:
    ToolRegistration() = default;
    /// An empty name or an empty function registers nothing.
    explicit ToolRegistration(Tool tool);
    ToolRegistration(ToolRegistration&& other) noexcept;
    ToolRegistration& operator=(ToolRegistration&& other) noexcept;
    ~ToolRegistration() { reset(); }
    void reset() noexcept;

private:
    unsigned long m_id = 0;
};

/// The tool of a name, or null. The pointer keeps the tool's function alive, but not its module.
LM_HOST_API std::shared_ptr<const Tool> findTool(std::string_view name);
/// The offered tools by name.
LM_HOST_API std::vector<std::shared_ptr<const Tool>> tools();

} // namespace lm::host
