#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

#include "autotrim/Cache.h"
#include "autotrim/ExitCode.h"
#include "autotrim/Heap.h"
#include "autotrim/InterruptWatch.h"
#include "autotrim/JsonReport.h"
#include "autotrim/Options.h"
#include "autotrim/Output.h"
#include "autotrim/ProgressDisplay.h"
#include "autotrim/Say.h"
#include "autotrim/Session.h"
#include "autotrim/Table.h"
#include "reference_host/ReferenceHost.h"

namespace autotrim {
namespace {

std::string environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool isSameFile(const std::string& file, const std::filesystem::path& other) {
    std::error_code notThere;
    return std::filesystem::equivalent(file, other, notThere);
}

/// Works for files that do not exist yet, too.
bool isSamePlace(const std::string& file, const std::string& other) {
    std::error_code unknown;
    const auto place = std::filesystem::weakly_canonical(file, unknown);
    return isSameFile(file, other) || place == std::filesystem::weakly_canonical(other, unknown);
}

bool isOverwritten(const std::string& file, const Options& options) {
    const bool byJson =
        options.json && *options.json != jsonToStdout && isSameFile(file, *options.json);
    return byJson || (options.log && isSameFile(file, *options.log));
}

/// Returns a file that a result of the same run would overwrite; empty when there is none.
std::string fileInDanger(const Options& options) {
    for (const std::string& file : options.files) {
        if (isOverwritten(file, options)) return file;
    }
    const bool modelInDanger = options.faceModel && isOverwritten(*options.faceModel, options);
    return modelInDanger ? options.faceModel->string() : std::string();
}

/// False, and said, when the model is of no use.
bool takeFaceModel(const std::filesystem::path& model) {
    try {
        reference_host::useFaceModel(model);
        return true;
    } catch (const std::runtime_error& error) {
        say(error.what());
        return false;
    }
}

void printTables(const Report& report) {
    std::string text;
    for (const FileReport& file : report.files) {
        const std::string table = toTable(file);
        if (!text.empty() && !table.empty()) text += '\n';
        text += table;
    }
    writeToStandardOutput(text);
}

int exitCodeOf(const Report& report) {
    const bool allDone =
        std::all_of(report.files.begin(), report.files.end(),
                    [](const FileReport& file) { return file.outcome != Outcome::failed; });
    return allDone ? exitAllDone : exitSomeFailed;
}

/// `interruption` is what an interrupt of the user requests.
int analyseFiles(const Options& options, std::stop_source interruption) {
    InterruptWatch interruptWatch([&interruption] { interruption.request_stop(); });

    if (options.log) reference_host::openLog(*options.log);
    if (options.faceModel && !takeFaceModel(*options.faceModel)) return exitWrongUse;
    const bool jsonOnly = options.json == jsonToStdout;
    std::optional<ResultFile> jsonFile;
    if (options.json && !jsonOnly) jsonFile.emplace(*options.json);

    const auto display = makeProgressDisplay(options.progress);
    interruptWatch.beginWork();
    const Report report = analyse(options, interruption.get_token(), *display);
    interruptWatch.endWork();
    if (jsonFile) jsonFile->write(toJson(report));
    if (jsonOnly) {
        writeToStandardOutput(toJson(report));
    } else {
        printTables(report);
    }
    return interruption.stop_requested() ? exitInterrupted : exitCodeOf(report);
}

int run(const Options& options) {
    const std::string inDanger = fileInDanger(options);
    if (!inDanger.empty()) {
        say(inDanger, "the file would be overwritten by this run");
        return exitWrongUse;
    }
    if (options.json && options.log && isSamePlace(*options.json, options.log->string())) {
        say(options.log->string(), "the log would be overwritten by the results");
        return exitWrongUse;
    }
    return analyseFiles(options, std::stop_source());
}

int run(const CacheCommand& command) {
    return runCacheCommand(command);
}

int run(const Answer& answer) {
    std::fputs(answer.text.c_str(), answer.exitCode == exitAllDone ? stdout : stderr);
    return answer.exitCode;
}

int start(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(
        arguments, {environmentVariable("XDG_CACHE_HOME"), environmentVariable("HOME")});
    return std::visit([](const auto& asked) { return run(asked); }, parsed);
}

}  // namespace
}  // namespace autotrim

int main(int argc, char* argv[]) {
    autotrim::reserveStandardStreams();
    autotrim::useOneHeap();
    int exitCode = autotrim::exitSomeFailed;
    try {
        exitCode = autotrim::start({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        autotrim::say(error.what());
    }
    reference_host::endAllRuns();
    return exitCode;
}
