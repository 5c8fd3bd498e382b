#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace validator {

/// One claim about a candidate, and how it is tried.
///
/// `Subject` is what the claim is about: it is made from an Occasion for this check alone, in a
/// process of its own, and its making may throw what a check may throw. A check that returns has
/// been passed; otherwise it throws a Failure or a Skip (expect.h).
template <typename Subject>
struct Check {
    std::string_view id;     ///< group and name: "identity.fresh-object-has-one-reference"
    std::string_view claim;  ///< one sentence that is true of a candidate that passes
    void (*run)(Subject&);
};

/// What a check is given from outside.
struct Occasion {
    std::string library;            ///< the candidate's file
    std::filesystem::path scratch;  ///< a directory that is empty at first and deleted afterwards
    std::uint64_t seed = 1;         ///< decides everything that is chosen at random
    std::string video;              ///< a video that the candidate can read; empty: none was given
    std::string photo;              ///< the same for a photo
};

/// A check of any subject.
struct RunnableCheck {
    std::string_view id;
    std::string_view claim;
    std::function<void(const Occasion&)> run;
};

/// Does `body`, and writes the verdict at once where that throws a Failure, which goes on: what was
/// found stays, even if the candidate does not survive the end of the subject.
void keepFailure(const std::function<void()>& body);

/// Appends `checks` to `all`, each of which makes its own subject.
template <typename Subject>
void append(std::vector<RunnableCheck>& all, const std::vector<Check<Subject>>& checks) {
    for (const Check<Subject>& check : checks) {
        all.push_back({check.id, check.claim, [run = check.run](const Occasion& occasion) {
                           Subject subject(occasion);
                           keepFailure([&] { run(subject); });
                       }});
    }
}

}  // namespace validator
