#include "autotrim/CacheTable.h"

#include <array>

#include <fmt/format.h>

#include "autotrim/Utf8.h"

namespace autotrim {

std::string byteSize(std::uintmax_t bytes) {
    constexpr double step = 1024;
    // What a step shorter would be shown as the full step is shown in the next unit.
    constexpr double roundsUp = step - 0.05;
    if (bytes < 1024) return fmt::format("{} B", bytes);
    constexpr std::array units = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    double size = static_cast<double>(bytes) / step;
    std::size_t unit = 0;
    for (; size >= roundsUp && unit + 1 < units.size(); ++unit)
        size /= step;
    return fmt::format("{:.1f} {}", size, units[unit]);
}

std::string sumOfKept(std::size_t materials, std::uintmax_t bytes) {
    return fmt::format("{} {}: {}", materials, materials == 1 ? "file" : "files", byteSize(bytes));
}

std::string cacheTable(const std::vector<reference_host::CachedMaterial>& materials) {
    std::string text = fmt::format("  {:>10}  {:<6}  {}\n", "kept", "result", "file");
    std::uintmax_t sum = 0;
    for (const auto& material : materials) {
        text += fmt::format("  {:>10}  {:<6}  {}\n", byteSize(material.sizeBytes),
                            material.hasResult ? "yes" : "no",
                            material.file.empty() ? "(unknown)" : printable(material.file));
        sum += material.sizeBytes;
    }
    return text + "kept of " + sumOfKept(materials.size(), sum) + "\n";
}

}  // namespace autotrim
