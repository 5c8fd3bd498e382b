#include "autotrim/Arguments.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "autotrim/ExitCode.h"
#include "autotrim/Utf8.h"

namespace autotrim {
namespace {

// CLI11 takes "[a,b]" for a list of two names. No argument holds a zero byte: one in front of a
// bracket, put there before and taken away after parsing, keeps such a name whole.
constexpr char guard = '\0';

std::string guarded(const std::string& argument) {
    return argument.rfind('[', 0) == 0 ? guard + argument : argument;
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
    if (error.get_exit_code() != 0) return wrongUse(app, reasonOf(app, error));
    std::ostringstream out;
    app.exit(error, out, out);
    return {exitAllDone, out.str()};
}

}  // namespace

std::string literal(const std::string& argument) {
    return argument.rfind(guard, 0) == 0 ? argument.substr(1) : argument;
}

std::optional<Answer> readArguments(CLI::App& app, const std::vector<std::string>& arguments) {
    try {
        requireValues(app, arguments);
        // CLI11 takes the arguments from the back.
        std::vector<std::string> stack(arguments.size());
        std::transform(arguments.rbegin(), arguments.rend(), stack.begin(), guarded);
        app.parse(std::move(stack));
    } catch (const CLI::ParseError& error) {
        return answerTo(app, error);
    }
    return std::nullopt;
}

Answer wrongUse(const CLI::App& app, const std::string& reason) {
    return {exitWrongUse, "autotrim: " + printable(reason) + "\nRun \"" + app.get_name() +
                              " --help\" for how it is used.\n"};
}

}  // namespace autotrim
