// SPDX-License-Identifier: MIT
#include "host/tools.h"

#include "namedstack.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace lm::host {

namespace {

using ToolTable = NamedStack<std::string, Tool, std::less<>>;

// Never destroyed: a module may leave the table while the process ends.
ToolTable& table() {
    static ToolTable& offered = *new ToolTable;
    return offered;
}

} // namespace

ToolOutput::ToolOutput(int descriptor) : m_descriptor(descriptor) {
    m_buffer.reserve(kBufferSize);
}

ToolOutput::ToolOutput(std::string& into) : m_into(&into) {}

ToolOutput::~ToolOutput() {
    flush();
}

void ToolOutput::makeRoom() {
    flush();
}

void ToolOutput::writeThrough(std::string_view bytes) {
    if (m_into != nullptr) {
        m_into->append(bytes);
        return;
    }
    while (!bytes.empty() && m_error == 0) {
        const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (written == 0)
            m_error = EIO;
        else if (errno != EINTR)
            m_error = errno;
    }
}

bool ToolOutput::flush() {
    writeThrough(m_buffer);
    m_buffer.clear();
    return m_error == 0;
}

ToolRegistration::ToolRegistration(Tool tool) {
    if (tool.name.empty() || !tool.run) return;
    const std::string name = tool.name;
    m_id = table().add(name, std::move(tool));
}

ToolRegistration::ToolRegistration(ToolRegistration&& other) noexcept : m_id(std::exchange(other.m_id, 0)) {}

ToolRegistration& ToolRegistration::operator=(ToolRegistration&& other) noexcept {
    if (this != &other) {
        reset();
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

void ToolRegistration::reset() noexcept {
    if (m_id != 0) table().remove(std::exchange(m_id, 0));
}

std::shared_ptr<const Tool> findTool(std::string_view name) {
    return table().find(name);
}

std::vector<std::shared_ptr<const Tool>> tools() {
    return table().visible();
}

} // namespace lm::host
