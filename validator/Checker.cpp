#include "validator/Checker.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "validator/ScratchDirectory.h"
#include "validator/Subprocess.h"
#include "validator/check/checker.h"
#include "validator/check/lastHeld.h"
#include "validator/check/shown.h"

namespace validator {
namespace {

/// At most `most` bytes of the end of a file; empty where there is none. A candidate may leave
/// anything, and any amount of it, also what would not end or never open.
std::string endOf(const std::filesystem::path& file, std::uintmax_t most) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return "";
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (error) return "";
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(size - std::min(size, most)));
    std::string text(std::min(size, most), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

/// More than a verdict can have: one that is longer is cut, and so none.
constexpr std::uintmax_t longestVerdict = 4 << 20;

/// What a process that crashed has said last, as far as it fits into a line or two.
std::string lastWords(const std::filesystem::path& output) {
    constexpr std::size_t most = 400;
    std::string text = endOf(output, 2 * most);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (text.empty()) return "";
    const std::size_t length = std::min(text.size(), most);
    return ", after printing " + shown(text.substr(text.size() - length));
}

/// What was as expected before a process crashed.
std::string lastHeld(const std::filesystem::path& file) {
    const std::string text = endOf(file, lastHeldLength);
    const std::string what = text.substr(0, text.find('\0'));
    return what.empty() ? "" : "; last found as expected: " + what;
}

Verdict crashed(const Ending& ending, const std::filesystem::path& files,
                const std::filesystem::path& output) {
    Verdict verdict;
    verdict.outcome = Outcome::crash;
    verdict.found = (ending.isGood ? "ended early, as by exit(): it " : "") + ending.how +
                    lastWords(output) + lastHeld(files / lastHeldFile);
    return verdict;
}

}  // namespace

std::filesystem::path programOf(Side side) {
    const std::filesystem::path own = ownProgram();
    std::filesystem::path name = side == Side::component ? "material-analysis-component-checks"
                                                         : "material-analysis-host-checks";
    name.replace_extension(own.extension());
    for (const char* const directory : {".", VALIDATOR_INSTALLED_CHECKS}) {
        const std::filesystem::path program = own.parent_path() / directory / name;
        if (std::filesystem::exists(program)) return program;
    }
    throw std::runtime_error(name.string() + " is not in " + own.parent_path().string());
}

Checker::Checker(std::filesystem::path program) : program_(std::move(program)) {}

std::vector<ListedCheck> Checker::list() const {
    const ScratchDirectory scratch;
    const std::filesystem::path output = scratch.path() / "output";
    const Ending ending =
        runProgram({program_.string(), "--list"}, output, std::chrono::milliseconds(60000));
    if (!ending.isGood) throw std::runtime_error(program_.string() + " " + ending.how);
    std::vector<ListedCheck> checks;
    std::ifstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            throw std::runtime_error(program_.string() + " lists " + line);
        checks.push_back({line.substr(0, tab), line.substr(tab + 1)});
    }
    return checks;
}

Verdict Checker::verdictOn(const std::string& id, const Options& options) const {
    try {
        return verdictOfProcess(id, options);
    } catch (const std::runtime_error& error) {
        // Others may fare better: that there was no room for one more process may pass.
        Verdict verdict;
        verdict.outcome = Outcome::crash;
        verdict.found = std::string("could not be tried: ") + error.what();
        return verdict;
    }
}

Verdict Checker::verdictOfProcess(const std::string& id, const Options& options) const {
    const ScratchDirectory scratch;
    const std::filesystem::path output = scratch.path() / "output";
    const std::filesystem::path files = scratch.path() / "files";
    std::filesystem::create_directory(files);
    std::vector<std::string> command = {
        program_.string(), "--run",         id,
        "--library",       options.library, "--scratch",
        files.string(),    "--seed",        std::to_string(options.seed)};
    if (!options.video.empty()) command.insert(command.end(), {"--video", options.video});
    if (!options.photo.empty()) command.insert(command.end(), {"--photo", options.photo});
    const Ending ending = runProgram(command, output, options.timeLimit);
    const auto verdict = verdictFrom(endOf(files / verdictFile, longestVerdict));
    const bool isTrusted = ending.isGood || (verdict && verdict->outcome == Outcome::fail);
    return verdict && isTrusted ? *verdict : crashed(ending, files, output);
}

}  // namespace validator
