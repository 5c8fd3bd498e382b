#include "validator/ScratchDirectory.h"

#include <random>
#include <stdexcept>
#include <system_error>

namespace validator {
namespace {

std::filesystem::path someName() {
    constexpr char letters[] = "0123456789abcdefghijklmnopqrstuv";
    std::random_device random;
    std::string name = "material-analysis-validator-";
    for (int i = 0; i < 16; ++i)
        name += letters[random() % 32];
    return std::filesystem::temp_directory_path() / name;
}

}  // namespace

ScratchDirectory::ScratchDirectory() : path_(someName()) {
    if (!std::filesystem::create_directory(path_)) {
        throw std::runtime_error("cannot make the directory " + path_.string());
    }
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace validator
