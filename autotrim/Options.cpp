#include "autotrim/Options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <CLI/CLI.hpp>

#include "autotrim/ExitCode.h"
#include "autotrim/Utf8.h"

namespace autotrim {
namespace {

constexpr const char* description =
    "Finds the scenes of videos, the best keyframe of each, and faces, and prints auto-trim "
    "records.";

constexpr const char* exitCodes =
    "Exit codes: 0 all done, 1 some file failed or a result could not be written, 2 wrong use,\n"
    "130 interrupted.";

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

// CLI11 takes "[a,b]" for a list of two names. No argument holds a zero byte: one in front of a
// bracket, put there before and taken away after parsing, keeps such a name whole.
constexpr char guard = '\0';

std::string guarded(const std::string& argument) {
    return argument.rfind('[', 0) == 0 ? guard + argument : argument;
}

std::string unguarded(const std::string& argument) {
    return argument.rfind(guard, 0) == 0 ? argument.substr(1) : argument;
}

/// Throws when `argument` is an option that takes no value, with a "=", or one whose "=" is its end
/// ("--json="): CLI11 would take the argument behind it for the value.
void requireValueWhereItBelongs(const CLI::App& app, const std::string& argument) {
    const std::size_t equalsSign = argument.find('=');
    if (argument.rfind("--", 0) != 0 || equalsSign == std::string::npos) return;
    const std::string name = argument.substr(0, equalsSign);
    const CLI::Option* const option = app.get_option_no_throw(name);
    if (option != nullptr && option->get_items_expected_max() == 0) {
        throw CLI::ValidationError(name, "it takes no value");
    }
    if (equalsSign == argument.size() - 1) {
        throw CLI::ValidationError(name, "no value follows the \"=\"");
    }
}

/// Throws when the "=" of an argument before "--" is wrong.
void requireValues(const CLI::App& app, const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        if (argument == "--") return;
        requireValueWhereItBelongs(app, argument);
    }
}

/// Adds an option whose text `parse` turns into a value; what it throws is wrong use.
template <typename Target, typename Parse>
CLI::Option* addOption(CLI::App& app, const std::string& name, Target& target, Parse parse,
                       const std::string& help) {
    return app.add_option_function<std::string>(
        name,
        [name, &target, parse](const std::string& text) {
            try {
                target = parse(unguarded(text));
            } catch (const std::invalid_argument& error) {
                throw CLI::ValidationError(name, error.what());
            }
        },
        help);
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
    addOption(app, "--cache", options.cacheRoot, nonEmptyName,
              "Keep results below DIR, a folder for each material (default: autotrim in your cache "
              "directory)")
        ->type_name("DIR");
    addOption(app, "--json", options.json, nonEmptyName,
              "Write all results as JSON to FILE; with - to the standard output, without tables")
        ->type_name("FILE|-");
    addOption(app, "--progress", options.progress, parseProgressStyle,
              "auto: a bar on a terminal; machine: JSON lines; none (default auto)")
        ->type_name("STYLE");
    addOption(app, "--log", options.log, nonEmptyName, "Add the log to the end of FILE")
        ->type_name("FILE");
}

/// Returns the option that takes one value and was given several; empty when there is none.
std::string repeatedOption(const CLI::App& app) {
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_items_expected_max() == 1 && option->count() > 1) {
            return option->get_name();
        }
    }
    return {};
}

std::string reasonOf(const CLI::App& app, const CLI::ParseError& error) {
    const std::string repeated = repeatedOption(app);
    const bool tooMany = dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr;
    return tooMany && !repeated.empty() ? repeated + ": given more than once" : error.what();
}

Answer answerTo(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) {
        return {exitWrongUse, "autotrim: " + printable(reasonOf(app, error)) +
                                  "\nRun \"autotrim --help\" for how it is used.\n"};
    }
    std::ostringstream out;
    app.exit(error, out, out);
    return {exitAllDone, out.str()};
}

}  // namespace

std::variant<Options, Answer> parseOptions(const std::vector<std::string>& arguments,
                                           const Environment& environment) {
    Options options;
    options.cacheRoot = defaultCacheRoot(environment);

    CLI::App app(description, "autotrim");
    app.set_version_flag("--version", "autotrim " AUTOTRIM_VERSION);
    app.footer(exitCodes);
    addOptions(app, options);
    // Names are taken as raw results: converted to a list, "{}" would be none at all.
    CLI::Option* const files = app.add_option("FILE")->required();
    files->description("Videos and photos")->type_name("")->expected(1, -1)->allow_extra_args();

    try {
        requireValues(app, arguments);
        // CLI11 takes the arguments from the back.
        std::vector<std::string> stack(arguments.size());
        std::transform(arguments.rbegin(), arguments.rend(), stack.begin(), guarded);
        app.parse(std::move(stack));
    } catch (const CLI::ParseError& error) {
        return answerTo(app, error);
    }
    for (const std::string& file : files->results())
        options.files.push_back(unguarded(file));
    return options;
}

}  // namespace autotrim
