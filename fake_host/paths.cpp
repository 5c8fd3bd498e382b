#include "fake_host/paths.h"

#include <fstream>
#include <random>
#include <sstream>
#include <system_error>

namespace fake_host {

std::string utf8Of(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

std::filesystem::path pathOf(const std::string& utf8) {
    try {
        return std::u8string(utf8.begin(), utf8.end());
    } catch (const std::system_error&) {
        return {};
    }
}

std::filesystem::path makeTemporaryDirectory() {
    std::random_device random;
    while (true) {
        const std::string name = "fake-host-" + std::to_string(random()) + std::to_string(random());
        const auto directory = std::filesystem::temp_directory_path() / name;
        // Already there: another process's.
        if (std::filesystem::create_directory(directory)) return directory;
    }
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

}  // namespace fake_host
