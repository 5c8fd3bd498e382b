#include "validator/Options.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <type_traits>

#include <CLI/CLI.hpp>

#include "validator/ExitCode.h"
#include "validator/check/shown.h"

namespace validator {
namespace {

constexpr unsigned mostJobs = 64;

/// Takes numbers from `least` to `most` and nothing else: no sign that a type without one would
/// lose, no number that is cut to fit, no "nan". Writes them so that they are not read as octal.
template <typename Number>
CLI::Validator numberFrom(Number least, Number most) {
    const std::string range = shown(least) + " to " + shown(most);
    const char* const kind = std::is_integral_v<Number> ? "a whole number from " : "a number from ";
    const auto check = [=](std::string& input) {
        Number number{};
        const char* const end = input.data() + input.size();
        const auto [last, error] = std::from_chars(input.data(), end, number);
        const bool isNumber = error == std::errc() && last == end;
        if (!isNumber || !(least <= number && number <= most))
            return "has to be " + (kind + range) + ", not " + shown(input);
        input = shown(number);
        return std::string();
    };
    return {check, range};
}

/// What both commands have in common.
void addOptions(CLI::App& command, Options& options, double& seconds) {
    command.add_option("LIBRARY", options.library, "The library to be judged")
        ->check(CLI::ExistingFile);
    command.add_flag("--list", options.lists, "Print the id and the claim of each check");
    command
        .add_option("--only", options.only,
                    "Try this check, or this group of checks (what stands before the dot of an "
                    "id), only; may be repeated")
        ->allow_extra_args(false);
    command.add_flag("--json", options.json, "Print a JSON object instead of text");
    command.add_flag("--verbose", options.verbose, "Name the checks that pass, too");
    command.add_option("--seed", options.seed, "Decides what checks choose at random")
        ->transform(numberFrom(std::uint64_t{0}, std::numeric_limits<std::uint64_t>::max()))
        ->capture_default_str();
    command.add_option("--timeout", seconds, "Seconds that each check may take")
        ->transform(numberFrom(0.01, 3600.0))
        ->capture_default_str();
    command.add_option("--jobs", options.jobs, "Checks that are tried at once")
        ->transform(numberFrom(1U, mostJobs))
        ->capture_default_str();
}

Answer answerTo(const CLI::App& app, const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream problems;
    if (app.exit(error, out, problems) == 0) return {exitCode::ok, out.str()};
    return {exitCode::wrongUse, problems.str()};
}

}  // namespace

std::variant<Options, Answer> parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    options.jobs = std::clamp(std::thread::hardware_concurrency(), 1U, mostJobs);
    double seconds = 10;
    CLI::App app("Judges both sides of the contract between MaterialAnalysis and its host.",
                 "material-analysis-validator");
    app.set_version_flag("--version", "material-analysis-validator " VALIDATOR_VERSION);
    app.allow_windows_style_options(false);  // a path may begin with "/" there, too
    app.require_subcommand(1);
    app.footer(
        "Exit status: 0 when no check fails, 1 when one fails or crashes, 2 for wrong use, 130 "
        "when interrupted.");
    CLI::App& component = *app.add_subcommand("component", "Judge a build of the component");
    CLI::App& host = *app.add_subcommand("host", "Judge a host's library");
    addOptions(component, options, seconds);
    addOptions(host, options, seconds);
    host.add_option("--video", options.video, "A video of three seconds or more that it can read")
        ->check(CLI::ExistingFile);
    host.add_option("--photo", options.photo, "A photo that the host can read")
        ->check(CLI::ExistingFile);
    try {
        // CLI11 takes a vector from its end.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        options.side = host.parsed() ? Side::host : Side::component;
        if (options.library.empty() && !options.lists) {
            throw CLI::RequiredError("LIBRARY");
        }
    } catch (const CLI::ParseError& error) {
        return answerTo(app, error);
    }
    options.timeLimit = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
    return options;
}

}  // namespace validator
