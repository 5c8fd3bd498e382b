#include <algorithm>
#include <ctime>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "host/status.h"
#include "reference_host/media/PositionReader.h"
#include "reference_host/media/inspect.h"
#include "reference_host/vision/FaceDetector.h"

namespace {

using reference_host::vision::FaceDetector;
using reference_host::vision::Picture;

/// What was found in pictures, and what it cost.
struct Tally {
    int pictures = 0;
    int withFace = 0;
    std::size_t faces = 0;
    /// For each picture.
    std::vector<double> cpuMs;

    void add(const Tally& other) {
        pictures += other.pictures;
        withFace += other.withFace;
        faces += other.faces;
        cpuMs.insert(cpuMs.end(), other.cpuMs.begin(), other.cpuMs.end());
    }
};

/// CPU time of the whole process, OpenCV's threads included.
double cpuMsSoFar() {
    return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

Tally tallyOf(const std::filesystem::path& file, double picturesPerSecond, FaceDetector& detector) {
    namespace media = reference_host::media;
    const media::FootageFacts facts = media::inspect(file);
    media::PositionReader reader(file, facts, {});
    Tally tally;
    Picture picture;
    for (int index = 0;; ++index) {
        const auto position = static_cast<std::int64_t>(
            index * static_cast<double>(KOR::ticksPerSecond) / picturesPerSecond);
        if (position >= facts.durationTicks) return tally;
        if (!reader.read(position, picture)) continue;
        const double begin = cpuMsSoFar();
        const std::size_t faces = detector.detect(picture).size();
        tally.add({1, faces > 0 ? 1 : 0, faces, {cpuMsSoFar() - begin}});
    }
}

double medianOf(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void print(const std::string& name, const Tally& tally) {
    const double pictures = tally.pictures;
    fmt::print("{:<44}{:>9}{:>11.3f}{:>7}{:>9.1f}{:>9.1f}\n", name, tally.pictures,
               tally.withFace / pictures, tally.faces,
               std::accumulate(tally.cpuMs.begin(), tally.cpuMs.end(), 0.0) / pictures,
               medianOf(tally.cpuMs));
}

Tally measure(const std::vector<std::string>& files, double picturesPerSecond,
              FaceDetector& detector) {
    Tally total;
    for (const std::string& file : files) {
        const Tally tally = tallyOf(file, picturesPerSecond, detector);
        print(std::filesystem::path(file).filename().string(), tally);
        total.add(tally);
    }
    return total;
}

int run(int argc, char** argv) {
    CLI::App app{"Counts in how many pictures of videos and photos the face detector finds faces"};
    std::vector<std::string> files;
    std::string expectation;
    std::string model;
    double picturesPerSecond = 1;
    double leastShare = 0.92;
    app.add_option("--expect", expectation, "What each picture shows: at least one face, or none")
        ->required()
        ->check(CLI::IsMember({"face", "none"}));
    app.add_option("--rate", picturesPerSecond, "Pictures for each second of a video")
        ->check(CLI::PositiveNumber);
    app.add_option("--least", leastShare, "The share of pictures in which a face has to be found")
        ->check(CLI::Range(0.0, 1.0));
    app.add_option("--face-model", model, "A model for OpenCV's FaceDetectorYN (ONNX)");
    app.add_option("files", files)->required();
    CLI11_PARSE(app, argc, argv);

    const std::unique_ptr<FaceDetector> detector =
        model.empty() ? reference_host::vision::makeFaceDetector()
                      : reference_host::vision::makeFaceDetector(model);
    fmt::print("{:<44}{:>9}{:>11}{:>7}{:>9}{:>9}\n", "", "pictures", "with face", "faces", "CPU ms",
               "median");
    const Tally total = measure(files, picturesPerSecond, *detector);
    print("total", total);
    if (total.pictures == 0) return 1;
    if (expectation == "none") return total.faces == 0 ? 0 : 1;
    return total.withFace >= leastShare * total.pictures ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "face_accuracy: " << error.what() << '\n';
        return 2;
    }
}
