// SPDX-License-Identifier: MIT
// The file format is described in the System V ABI, chapter 4 (ELF).
#include "libraryfile.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <vector>

namespace lm::host {

std::string libraryDefect(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return "not a regular file";
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file) return "can't be read";

    ElfW(Ehdr) header;
    if (!file.read(reinterpret_cast<char*>(&header), sizeof header) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return "not a shared library";
    const unsigned char ownClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    if (header.e_ident[EI_CLASS] != ownClass || header.e_phentsize != sizeof(ElfW(Phdr)))
        return "a library of another kind of machine";

    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    file.seekg(static_cast<std::streamoff>(header.e_phoff));
    if (!file.read(reinterpret_cast<char*>(segments.data()),
                   static_cast<std::streamsize>(segments.size() * sizeof(ElfW(Phdr)))))
        return "the file is cut off";
    for (const ElfW(Phdr) & segment : segments)
        if (segment.p_type == PT_LOAD &&
            (segment.p_offset > size || segment.p_filesz > size - segment.p_offset))
            return "the file is cut off: " + std::to_string(size) + " bytes found, at least " +
                   std::to_string(segment.p_offset + segment.p_filesz) + " expected";
    return {};
}

} // namespace lm::host
