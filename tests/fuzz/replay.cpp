// Runs a fuzz target over inputs that are kept: files, and all files in folders.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> inputsAt(const std::filesystem::path& place) {
    if (!std::filesystem::is_directory(place)) return {place};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(place)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// False when the file cannot be read.
bool replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return false;
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    // A copy of its own size, so that a sanitizer sees a step beyond its end.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

}  // namespace

int main(int argc, char* argv[]) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const std::filesystem::path& file : inputsAt(argv[i])) {
            if (!replay(file)) {
                std::fprintf(stderr, "cannot read %s\n", file.string().c_str());
                return 1;
            }
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}
