#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "autotrim/Options.h"

/// CLI11, made to take what stands on a command line as it is.
namespace autotrim {

/// Undoes what readArguments does to a name that begins like a list of CLI11's. Every text that
/// comes out of CLI11 passes through here.
std::string literal(const std::string& argument);

/// Adds an option whose text `parse` turns into a value; the std::invalid_argument that it throws
/// is wrong use.
template <typename Target, typename Parse>
CLI::Option* addOption(CLI::App& app, const std::string& name, Target& target, Parse parse,
                       const std::string& help) {
    return app.add_option_function<std::string>(
        name,
        [name, &target, parse](const std::string& text) {
            try {
                target = parse(literal(text));
            } catch (const std::invalid_argument& error) {
                throw CLI::ValidationError(name, error.what());
            }
        },
        help);
}

/// Has `app` read `arguments`. Returns what is to be said when they are wrong use or ask for help
/// or the version; nothing when all is well.
std::optional<Answer> readArguments(CLI::App& app, const std::vector<std::string>& arguments);

/// Returns the answer to wrong use of `app`.
Answer wrongUse(const CLI::App& app, const std::string& reason);

}  // namespace autotrim
