#include "tests/reference_host/FootageFiles.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "reference_host/ReferenceHost.h"

namespace reference_host_tests {

std::filesystem::path FootageFiles::make(const std::string& name,
                                         const std::string& arguments) const {
    // Made under a plain name: ffmpeg reads a meaning into names that tests are about.
    const std::filesystem::path plain =
        path("being_made" + std::filesystem::path(name).extension().string());
    const std::string command =
        "ffmpeg -nostdin -v error -y " + arguments + " '" + plain.string() + "' >&2";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
    std::filesystem::rename(plain, path(name));
    return path(name);
}

std::filesystem::path FootageFiles::makeVideo(const std::string& name, int frames,
                                              const std::string& arguments) const {
    return make(name, movingPictures(frames) + " " + arguments);
}

std::filesystem::path FootageFiles::write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

void FootageFiles::patch(const std::filesystem::path& file, std::int64_t offset,
                         const std::string& bytes) {
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(offset);
    stream << bytes;
}

void FootageFiles::truncate(const std::filesystem::path& file, double part) {
    const auto size = static_cast<double>(std::filesystem::file_size(file));
    std::filesystem::resize_file(file, static_cast<std::uintmax_t>(size * part));
}

std::string contentOf(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

std::string movingPictures(int frames, const std::string& size) {
    // In milliseconds, of which a frame lasts 40.
    return "-f lavfi -i testsrc2=size=" + size +
           ":rate=25:duration=" + std::to_string(40 * frames) + "ms";
}

Holder<KOR::IDmBaseObj> import(const std::filesystem::path& file,
                               const std::filesystem::path& cacheRoot) {
    const reference_host::ImportedMaterial imported =
        reference_host::importMaterial(file, cacheRoot);
    if (imported.object == nullptr) throw std::runtime_error(imported.error);
    return hold(imported.object);
}

std::string refusalOf(const std::filesystem::path& file) {
    const reference_host::ImportedMaterial imported = reference_host::importMaterial(file, {});
    if (imported.object != nullptr) imported.object->release();
    return imported.error;
}

KOR::IDmBaseMedia& mediaOf(const Holder<KOR::IDmBaseObj>& material) {
    return *static_cast<KOR::IDmBaseMedia*>(material->queryInterface("IDmBaseMedia"));
}

KOR::IDmMediaSource& sourceOf(const Holder<KOR::IDmBaseObj>& material) {
    return *static_cast<KOR::IDmSourceMedia*>(material->queryInterface("IDmSourceMedia"))
                ->getSource();
}

std::vector<std::int64_t> evenPositions(int frames) {
    std::vector<std::int64_t> positions;
    for (std::int64_t i = 0; i < frames; ++i)
        positions.push_back(i * KOR::ticksPerSecond / 25);
    return positions;
}

}  // namespace reference_host_tests
