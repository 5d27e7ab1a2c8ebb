// SPDX-License-Identifier: MIT
// Reading and writing files, and loading programs.
#include "document.h"
#include "files.h"
#include "hoststate.h"
#include "questions.h"
#include "reader.h"

#include "system/codepage.h"
#include "system/file.h"
#include "system/path.h"

namespace lm::host::lisp {

namespace {

namespace fs = std::filesystem;

/// A file is asked for by its status first: a pipe or a device may keep the program waiting for ever.
bool isRegular(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

} // namespace

bool FileValue::write(WideView text) {
    const std::string bytes = m_text == FileText::kUtf8 ? system::toUtf8(text) : system::narrow(text);
    return std::fwrite(bytes.data(), 1, bytes.size(), m_file.get()) == bytes.size();
}

WideString FileValue::printed() const {
    return system::widen(isOpen() ? "#<file \"" : "#<closed file \"") + m_name + system::widen("\">");
}

FileValue& fileAt(Machine& machine, Arguments arguments, std::size_t index) {
    FileValue* file = foreignOf<FileValue>(arguments[index]);
    if (file == nullptr) machine.failType("streamp", arguments[index]);
    if (!file->isOpen()) machine.fail("file is closed", arguments[index]);
    return *file;
}

fs::path nativeName(Machine& machine, const WideString& name) {
    if (!machine.host().filesAllowed) Machine::fail("files can't be used in this session");
    return fs::path(system::nativePath(name));
}

WideString nameOf(const fs::path& path) {
    return system::pathText(path.native());
}

fs::path findFile(Machine& machine, const WideString& name) {
    std::error_code ignored;
    const fs::path path = nativeName(machine, name);
    if (path.empty()) return {};
    if (fs::exists(path, ignored)) return fs::absolute(path, ignored);
    if (path.has_parent_path()) return {};
    const OdDbDatabase* database = databaseOf(machine);
    if (database == nullptr) return {};
    const fs::path drawing(system::nativePath(database->getFilename().view()));
    const fs::path beside = drawing.parent_path() / path;
    return drawing.has_parent_path() && fs::exists(beside, ignored) ? fs::absolute(beside, ignored)
                                                                    : fs::path();
}

namespace {

Value open(Machine& machine, Arguments a) {
    const WideString& name = machine.textAt(a, 0);
    const WideString& mode = machine.textAt(a, 1);
    const WideChar letter = mode.size() == 1 ? system::toLower(mode[0]) : WideChar(0);
    if (letter != 'r' && letter != 'w' && letter != 'a') machine.failType("file mode", a[1]);
    const std::string encoding = a.size() > 2 ? system::toUtf8(machine.textAt(a, 2)) : "utf8";
    if (encoding != "utf8" && encoding != "utf8-bom" && encoding != "ansi")
        machine.failType("file encoding", a[2]);
    const fs::path path = nativeName(machine, name);
    std::error_code ignored;
    if (letter == 'r' ? !isRegular(path) : fs::exists(path, ignored) && !isRegular(path)) return Value();
    machine.heap().expect(sizeof(FileValue) +
                          name.size() * sizeof(WideChar)); // before there is a file to close
    std::FILE* file = std::fopen(path.c_str(), letter == 'r' ? "rb" : letter == 'w' ? "wb" : "ab");
    if (file == nullptr) return Value();
    Value value = machine.heap().foreign<FileValue>(file, name, letter != 'r',
                                                    encoding == "ansi" ? FileText::kNarrow : FileText::kUtf8);
    if (letter == 'w' && encoding == "utf8-bom") foreignOf<FileValue>(value)->write(WideString(1, 0xFEFF));
    return value;
}

Value close(Machine& machine, Arguments a) {
    if (!fileAt(machine, a, 0).close()) machine.fail("file can't be written", a[0]);
    return Value();
}

WideString decoded(const std::string& bytes) {
    return system::isUtf8(bytes) ? system::fromUtf8(bytes) : system::widenNarrow(bytes);
}

// Nil at the end of the file. The line's end isn't part of it, nor is a byte order mark at the file's start.
Value readLine(Machine& machine, Arguments a) {
    if (a.empty() || a[0].isNil()) return machine.text(takeAnswer(machine, "read-line"));
    FileValue& file = fileAt(machine, a, 0);
    if (file.writes()) machine.fail("file isn't open for reading", a[0]);
    const bool first = std::ftell(file.file()) == 0;
    std::string line;
    int byte = std::getc(file.file());
    if (byte == EOF) return Value();
    for (; byte != EOF && byte != '\n'; byte = std::getc(file.file())) {
        line += static_cast<char>(byte);
        if (line.size() % 4096 != 0) continue;
        machine.tick(line.size());
        machine.heap().expect(line.size() * 6);
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (first && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
    return machine.text(decoded(line));
}

// One unit by its code, nil at the end. A line's end is 10 however the file writes it.
Value readChar(Machine& machine, Arguments a) {
    if (a.empty() || a[0].isNil()) {
        const WideString answer = takeAnswer(machine, "read-char");
        return Value::integer(answer.empty() ? '\n' : answer[0]);
    }
    FileValue& file = fileAt(machine, a, 0);
    if (file.writes()) machine.fail("file isn't open for reading", a[0]);
    if (file.pending != 0) return Value::integer(std::exchange(file.pending, WideChar(0)));
    int byte = std::getc(file.file());
    if (byte == '\r') {
        byte = std::getc(file.file());
        if (byte != '\n') {
            if (byte != EOF) std::ungetc(byte, file.file());
            byte = '\r';
        }
    }
    if (byte == EOF) return Value();
    if (byte < 0x80) return Value::integer(byte);
    // The start of a sequence, as far as the bytes behind it belong to it.
    std::string bytes(1, static_cast<char>(byte));
    const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
    const long behind = std::ftell(file.file());
    while (bytes.size() < length) {
        const int next = std::getc(file.file());
        if (next == EOF || (next & 0xC0) != 0x80) break;
        bytes += static_cast<char>(next);
    }
    if (bytes.size() != length || !system::isUtf8(bytes)) {
        std::fseek(file.file(), behind, SEEK_SET);
        return Value::integer(system::widenByte(static_cast<unsigned char>(byte)));
    }
    const WideString units = system::fromUtf8(bytes);
    if (units.size() > 1) file.pending = units[1];
    return Value::integer(units[0]);
}

// A name without an ending means a program file. Where there is no such file, the second argument is the
// result.
Value load(Machine& machine, Arguments a) {
    machine.checkStack();
    const WideString& name = machine.textAt(a, 0);
    fs::path path = findFile(machine, name);
    if (!isRegular(path)) path = findFile(machine, name + system::widen(".lsp"));
    system::FileBytes bytes;
    if (!isRegular(path) || system::readWhole(path.native(), bytes).status != system::FileStatus::kRead) {
        if (a.size() > 1) return a[1];
        machine.fail("load failed", a[0]);
    }
    machine.heap().expect(bytes.size() * 2);
    const WideString text = decodeSource(std::string_view(bytes.data(), bytes.size()));
    return machine.evalText(text, nameOf(path.filename()));
}

Value findFileName(Machine& machine, Arguments a) {
    const fs::path path = findFile(machine, machine.textAt(a, 0));
    return path.empty() ? Value() : machine.text(nameOf(path));
}

const Builtin kFiles[] = {
    {"OPEN", 2, 3, &open},          {"CLOSE", 1, 1, &close}, {"READ-LINE", 0, 1, &readLine},
    {"READ-CHAR", 0, 1, &readChar}, {"LOAD", 1, 2, &load},   {"FINDFILE", 1, 1, &findFileName},
};

} // namespace

std::span<const Builtin> fileFunctions() {
    return kFiles;
}

} // namespace lm::host::lisp
