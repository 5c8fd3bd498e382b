#include "autotrim/Options.h"

#include <charconv>
#include <cmath>
#include <map>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "autotrim/Arguments.h"

namespace autotrim {
namespace {

constexpr const char* description =
    "Finds the scenes of videos, the best keyframe of each, and faces, and prints auto-trim "
    "records.";

constexpr const char* footer =
    "What is kept is shown by \"autotrim cache list\" and deleted by \"autotrim cache clear\"; a "
    "file\n"
    "called \"cache\" that comes first is given as ./cache.\n"
    "Exit codes: 0 all done, 1 some file failed or a result could not be written, 2 wrong use,\n"
    "130 interrupted.";

constexpr const char* cacheDescription = "Shows or deletes what autotrim has kept of earlier runs.";

constexpr const char* cacheFooter =
    "A file called \"cache\" is given as ./cache.\n"
    "Exit codes: 0 all done, 1 something could not be read or deleted, 2 wrong use.";

/// Reads the whole of `text` as a number, whatever the locale; the messages name no option.
template <typename Number>
Number parseNumber(const std::string& text, const char* what) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range) {
        throw std::invalid_argument("\"" + text + "\" is out of range");
    }
    if (error != std::errc() || stop != end) {
        throw std::invalid_argument("\"" + text + "\" is not " + what);
    }
    return number;
}

std::int32_t parseSeconds(const std::string& text) {
    const auto seconds = parseNumber<std::int32_t>(text, "a whole number of seconds");
    if (seconds < 0) throw std::invalid_argument("\"" + text + "\" is negative");
    return seconds;
}

double parseThreshold(const std::string& text) {
    const auto threshold = parseNumber<double>(text, "a number");
    if (!std::isfinite(threshold)) throw std::invalid_argument("\"" + text + "\" is not finite");
    if (threshold <= 0) throw std::invalid_argument("\"" + text + "\" is not above 0");
    return threshold;
}

std::size_t parseJobs(const std::string& text) {
    const auto jobs = parseNumber<std::int64_t>(text, "a whole number");
    if (jobs < 1 || jobs > static_cast<std::int64_t>(maxJobs)) {
        throw std::invalid_argument("\"" + text + "\" is not between 1 and " +
                                    std::to_string(maxJobs));
    }
    return static_cast<std::size_t>(jobs);
}

Kinds parseUsableKinds(const std::string& text) {
    Kinds kinds = parseKinds(text);
    const std::string reason = whyUnusable(kinds);
    if (!reason.empty()) throw std::invalid_argument(reason);
    return kinds;
}

ProgressStyle parseProgressStyle(const std::string& text) {
    static const std::map<std::string, ProgressStyle> styles = {{"auto", ProgressStyle::automatic},
                                                                {"machine", ProgressStyle::machine},
                                                                {"none", ProgressStyle::none}};
    const auto found = styles.find(text);
    if (found == styles.end()) {
        throw std::invalid_argument("\"" + text + "\" is none of auto, machine and none");
    }
    return found->second;
}

std::string nonEmptyName(const std::string& text) {
    if (text.empty()) throw std::invalid_argument("the name is empty");
    return text;
}

CacheCommand::Action parseAction(const std::string& text) {
    if (text == "list") return CacheCommand::Action::list;
    if (text == "clear") return CacheCommand::Action::clear;
    throw std::invalid_argument(
        "\"" + text + "\" is neither list nor clear (a file called \"cache\" is ./cache)");
}

std::filesystem::path defaultCacheRoot(const Environment& environment) {
    const std::filesystem::path cacheHome(environment.cacheHome);
    if (cacheHome.is_absolute()) return cacheHome / "autotrim";
    const std::filesystem::path home(environment.home);
    if (!home.is_absolute()) return {};
    return home / ".cache" / "autotrim";
}

void addOptions(CLI::App& app, Options& options) {
    addOption(app, "--kinds", options.kinds, parseUsableKinds,
              "Analyses in order: 1 faces, 2 blur, 3 keyframes, 4 scenes, 5 entropy, 6 both 4 and "
              "3, 7 both 1 and 5 (default 6,7)")
        ->type_name("LIST");
    addOption(app, "--min-scene", options.minSceneSeconds, parseSeconds,
              "Drop scenes shorter than this many whole seconds (default 2)")
        ->type_name("S");
    addOption(app, "--min-length", options.minLengthSeconds, parseSeconds,
              "Do not analyse videos of this many seconds or less (default 2)")
        ->type_name("S");
    addOption(app, "--threshold", options.threshold, parseThreshold,
              "How far a change of scene stands out, above 0; lower finds more (default 3.0)")
        ->type_name("X");
    app.add_flag("--photos", options.photos, "Look for faces in photos, too");
    addOption(app, "--face-model", options.faceModel, nonEmptyName,
              "Find faces by this model (ONNX) for OpenCV's FaceDetectorYN")
        ->type_name("FILE");
    CLI::Option* const cache =
        addOption(app, "--cache", options.cacheRoot, nonEmptyName,
                  "Keep results below DIR, a folder for each material, and take them from there "
                  "(default: autotrim in your cache directory)")
            ->type_name("DIR");
    app.add_flag_callback(
           "--no-cache", [&options] { options.cacheRoot.clear(); },
           "Keep nothing, and take nothing that was kept")
        ->excludes(cache);
    addOption(app, "--jobs", options.jobs, parseJobs,
              "Analyse up to N files side by side, 1 to 64; each takes memory of its own (default: "
              "the number of processor threads, at most 8)")
        ->type_name("N");
    addOption(app, "--json", options.json, nonEmptyName,
              "Write all results as JSON to FILE; with - to the standard output, without tables")
        ->type_name("FILE|-");
    addOption(app, "--progress", options.progress, parseProgressStyle,
              "auto: a bar on a terminal; machine: JSON lines; none (default auto)")
        ->type_name("STYLE");
    addOption(app, "--log", options.log, nonEmptyName, "Add the log to the end of FILE")
        ->type_name("FILE");
}

std::variant<Options, CacheCommand, Answer> parseRun(const std::vector<std::string>& arguments,
                                                     const std::filesystem::path& cacheRoot) {
    Options options;
    options.cacheRoot = cacheRoot;

    CLI::App app(description, "autotrim");
    app.set_version_flag("--version", "autotrim " AUTOTRIM_VERSION);
    app.footer(footer);
    addOptions(app, options);
    // Names are taken as raw results: converted to a list, "{}" would be none at all.
    CLI::Option* const files = app.add_option("FILE")->required();
    files->description("Videos and photos")->type_name("")->expected(1, -1)->allow_extra_args();

    if (auto answer = readArguments(app, arguments)) return *answer;
    for (const std::string& file : files->results())
        options.files.push_back(literal(file));
    return options;
}

std::variant<Options, CacheCommand, Answer> parseCacheCommand(
    const std::vector<std::string>& arguments, const std::filesystem::path& cacheRoot) {
    CacheCommand command;
    command.cacheRoot = cacheRoot;

    CLI::App app(cacheDescription, "autotrim cache");
    app.footer(cacheFooter);
    addOption(app, "ACTION", command.action, parseAction,
              "list: show of which files something is kept; clear: delete it")
        ->type_name("")
        ->required();
    addOption(app, "--cache", command.cacheRoot, nonEmptyName,
              "What is kept below DIR (default: autotrim in your cache directory)")
        ->type_name("DIR");

    if (auto answer = readArguments(app, arguments)) return *answer;
    if (command.cacheRoot.empty()) {
        return wrongUse(app, "your home directory is not known: name a directory with --cache");
    }
    return command;
}

}  // namespace

std::variant<Options, CacheCommand, Answer> parseOptions(const std::vector<std::string>& arguments,
                                                         const Environment& environment) {
    const std::filesystem::path cacheRoot = defaultCacheRoot(environment);
    if (arguments.empty() || arguments.front() != "cache") return parseRun(arguments, cacheRoot);
    return parseCacheCommand({arguments.begin() + 1, arguments.end()}, cacheRoot);
}

}  // namespace autotrim
