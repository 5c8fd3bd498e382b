#include "reference_host/vision/CascadeFaces.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include <opencv2/objdetect.hpp>

namespace reference_host::vision {
namespace {

namespace fs = std::filesystem;

/// From one size that is looked for to the next: larger steps save time and lose faces.
constexpr double sizeStep = 1.1;

/// How much the sides of neighbouring windows may differ, in parts of their length: OpenCV's own
/// measure.
constexpr double likeness = 0.2;

std::vector<fs::path> sharedDirectories() {
    std::vector<fs::path> directories;
    if (const char* named = std::getenv("XDG_DATA_DIRS")) {
        std::istringstream list(named);
        for (std::string directory; std::getline(list, directory, ':');) {
            if (!directory.empty()) directories.emplace_back(directory);
        }
    }
    directories.insert(directories.end(), {"/usr/local/share", "/usr/share"});
    return directories;
}

fs::path installedCascade(const std::string& name) {
    std::vector<fs::path> places{OPENCV_DATA_DIRECTORY};
    for (const fs::path& directory : sharedDirectories()) {
        for (const char* product : {"opencv4", "opencv", "OpenCV"})
            places.push_back(directory / product);
    }
    for (const fs::path& place : places) {
        std::error_code unreadable;
        if (fs::is_regular_file(place / name, unreadable)) return place / name;
    }
    throw std::runtime_error("the face detector's file " + name +
                             " is not installed; the package opencv-data holds it");
}

LbpCascade load(const std::string& name) {
    const fs::path file = installedCascade(name);
    try {
        return LbpCascade(file);
    } catch (const std::exception&) {
        // Whatever is wrong with its content, the remedy is the same.
    }
    throw std::runtime_error(file.string() +
                             " is no cascade; the package opencv-data holds the right one");
}

}  // namespace

CascadeFaces::CascadeFaces(const std::string& name) : cascade_(load(name)) {}

std::vector<Box> CascadeFaces::find(const cv::Mat& picture, int smallestPx, int neighbours) const {
    std::vector<cv::Rect> places = cascade_.windows(picture, sizeStep, smallestPx);
    cv::groupRectangles(places, neighbours, likeness);
    const cv::Rect inside(cv::Point(), picture.size());
    std::vector<Box> boxes;
    for (const cv::Rect& place : places) {
        const cv::Rect_<double> box(place & inside);
        boxes.push_back({box.x, box.y, box.width, box.height});
    }
    return boxes;
}

}  // namespace reference_host::vision
