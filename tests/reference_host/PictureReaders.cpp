#include "tests/reference_host/PictureReaders.h"

#include <algorithm>
#include <utility>

#include "reference_host/media/inspect.h"

namespace reference_host_tests {

using reference_host::media::FootageFacts;
using reference_host::media::PictureReader;
using reference_host::scenes::PictureFeatures;

std::unique_ptr<PictureReader> readerOfAll(const std::filesystem::path& file,
                                           std::stop_token stop) {
    FootageFacts facts = reference_host::media::inspect(file);
    facts.keyTimestamps.resize(std::min<std::size_t>(1, facts.keyTimestamps.size()));
    return std::make_unique<PictureReader>(file, facts, PictureReader::Plan{}, std::move(stop),
                                           [](double) {});
}

std::unique_ptr<PictureReader> readerForScenes(const std::filesystem::path& file,
                                               const PictureReader::Plan& plan,
                                               std::stop_token stop) {
    return std::make_unique<PictureReader>(file, reference_host::media::inspect(file), plan,
                                           std::move(stop), [](double) {});
}

std::vector<PictureFeatures> picturesOf(PictureReader& reader) {
    std::vector<PictureFeatures> pictures;
    for (PictureFeatures picture; reader.next(picture);)
        pictures.push_back(picture);
    return pictures;
}

std::vector<std::int64_t> positionsOf(const std::filesystem::path& file) {
    const auto reader = readerOfAll(file);
    PictureFeatures picture;
    std::vector<std::int64_t> positions;
    while (reader->next(picture))
        positions.push_back(picture.positionTicks);
    return positions;
}

}  // namespace reference_host_tests
