#include "reference_host/vision/modelFiles.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace reference_host::vision {
namespace {

std::vector<std::filesystem::path> sharedDirectories() {
    std::vector<std::filesystem::path> directories;
    if (const char* named = std::getenv("XDG_DATA_DIRS")) {
        std::istringstream list(named);
        for (std::string directory; std::getline(list, directory, ':');) {
            if (!directory.empty()) directories.emplace_back(directory);
        }
    }
    for (const char* usual : {"/usr/local/share", "/usr/share", "/opt/homebrew/share"})
        directories.emplace_back(usual);
    return directories;
}

}  // namespace

std::filesystem::path installedCascade(const std::string& name) {
    std::vector<std::filesystem::path> places{OPENCV_DATA_DIRECTORY};
    for (const std::filesystem::path& directory : sharedDirectories()) {
        for (const char* product : {"opencv4", "opencv", "OpenCV"})
            places.push_back(directory / product);
    }
    for (const std::filesystem::path& place : places) {
        std::error_code error;
        if (std::filesystem::is_regular_file(place / name, error)) return place / name;
    }
    throw std::runtime_error("the face detector's file " + name +
                             " is not installed; the package opencv-data holds it");
}

}  // namespace reference_host::vision
