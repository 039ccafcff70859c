// Runs a fuzz target once for each file given and each file below the folders given. The last file name on standard
// error is that of the failure.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> FilesOf(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) return {path};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

bool Replay(const std::filesystem::path& file) {
    std::fprintf(stderr, "%s\n", file.c_str());
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return false;
    // Of the exact size, so that ASan detects a read past the end.
    const std::vector<std::uint8_t> input{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    std::size_t replayed = 0;
    for (int i = 1; i < count; ++i) {
        if (!std::filesystem::exists(arguments[i])) continue;  // a target without findings has no such folder
        for (const std::filesystem::path& file : FilesOf(arguments[i])) {
            if (!Replay(file)) return 1;
            ++replayed;
        }
    }
    std::fprintf(stderr, "%zu inputs\n", replayed);
    return replayed == 0;
}
