#include "validator/Checker.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "validator/ScratchDirectory.h"
#include "validator/Subprocess.h"
#include "validator/check/checker.h"
#include "validator/check/shown.h"

namespace validator {
namespace {

/// The first bytes of a file; empty where there is none. A candidate may print anything, and any
/// amount of it.
std::string beginningOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(4 << 20, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

/// What a process that crashed has said last, as far as it fits into a line or two.
std::string lastWords(const std::filesystem::path& output) {
    constexpr std::size_t most = 400;
    std::string text = beginningOf(output);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (text.empty()) return "";
    const std::size_t length = std::min(text.size(), most);
    return ", after printing " + shown(text.substr(text.size() - length));
}

Verdict crashed(const Ending& ending, const std::filesystem::path& output) {
    Verdict verdict;
    verdict.outcome = Outcome::crash;
    verdict.found =
        (ending.isGood ? "ended early, as by exit(): it " : "") + ending.how + lastWords(output);
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
    const auto verdict = verdictFrom(beginningOf(files / verdictFile));
    const bool isTrusted = ending.isGood || (verdict && verdict->outcome == Outcome::fail);
    return verdict && isTrusted ? *verdict : crashed(ending, output);
}

}  // namespace validator
