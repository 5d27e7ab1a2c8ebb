// SPDX-License-Identifier: MIT
// Runs a fuzzer's function over files and folders, each file with a look at the clock: no input may take more
// than a second, and one more for each megabyte.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool runFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto start = std::chrono::steady_clock::now();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    const double allowed = 1.0 + static_cast<double>(bytes.size()) / (1 << 20);
    if (taken.count() <= allowed) return true;
    std::fprintf(stderr, "%s: %.2f s for %zu bytes\n", path.c_str(), taken.count(), bytes.size());
    return false;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t files = 0, slow = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path(argv[i]);
        if (!std::filesystem::is_directory(path)) {
            ++files;
            slow += runFile(path) ? 0 : 1;
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            ++files;
            slow += runFile(entry.path()) ? 0 : 1;
        }
    }
    std::printf("%zu files, %zu slow\n", files, slow);
    return files == 0 || slow != 0 ? 1 : 0;
}
