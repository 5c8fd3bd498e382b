#include "validator/check/checker.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include "validator/check/expect.h"
#include "validator/check/lastHeld.h"
#include "validator/check/limitProcess.h"

namespace validator {
namespace {

void list(const std::vector<RunnableCheck>& checks) {
    for (const RunnableCheck& check : checks)
        std::cout << check.id << '\t' << check.claim << '\n';
}

Verdict passedWithWarnings() {
    Verdict verdict;
    verdict.warnings = warnings();
    if (!verdict.warnings.empty()) verdict.outcome = Outcome::warn;
    return verdict;
}

/// The beginning of what a candidate made, with its whole length where that is not all: a verdict
/// of megabytes could not be kept, and nobody reads it. Cuts no character of UTF-8 in two.
std::string beginningOf(std::string text) {
    constexpr std::size_t most = 10000;
    if (text.size() <= most) return text;
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    const std::string length = std::to_string(text.size());
    text.resize(end);
    return text + "... (of " + length + " bytes)";
}

Verdict failed(Failure failure) {
    Verdict verdict = passedWithWarnings();
    verdict.outcome = Outcome::fail;
    verdict.what = beginningOf(std::move(failure.what));
    verdict.expected = beginningOf(std::move(failure.expected));
    verdict.found = beginningOf(std::move(failure.found));
    return verdict;
}

/// Where the verdict of this process is written; empty where it is not.
std::filesystem::path verdictPath;

bool write(const Verdict& verdict) {
    std::ofstream file(verdictPath, std::ios::binary);
    file << toJson(verdict);
    return static_cast<bool>(file.flush());
}

int run(const RunnableCheck& check, const Occasion& occasion) {
    // What a library prints before it crashes is to be found, though nothing but a file gets it.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    limitProcess(occasion.scratch);
    verdictPath = occasion.scratch / verdictFile;
    keepLastHeld(occasion.scratch / lastHeldFile);
    return write(tried(check, occasion)) ? 0 : 2;
}

}  // namespace

void keepFailure(const std::function<void()>& body) {
    try {
        body();
    } catch (const Failure& failure) {
        if (!verdictPath.empty()) write(failed(failure));
        throw;
    }
}

Verdict tried(const RunnableCheck& check, const Occasion& occasion) {
    try {
        check.run(occasion);
        return passedWithWarnings();
    } catch (const Failure& failure) {
        return failed(failure);
    } catch (const Skip& skipped) {
        Verdict verdict = passedWithWarnings();
        verdict.outcome = Outcome::skip;
        verdict.reason = skipped.reason;
        return verdict;
    } catch (const std::exception& error) {
        return failed({"the check", "no exception", shown(error.what())});
    } catch (...) {
        return failed({"the check", "no exception", "one of another kind"});
    }
}

int checkerMain(int argumentCount, char** arguments, const std::vector<RunnableCheck>& checks) {
    CLI::App app("Tries single checks; material-analysis-validator runs this program.");
    bool lists = false;
    std::string id;
    std::string scratch;
    Occasion occasion;
    app.add_flag("--list", lists, "Print the id and the claim of each check");
    app.add_option("--run", id, "The check to try");
    app.add_option("--library", occasion.library, "The candidate");
    app.add_option("--scratch", scratch, "An empty directory; the verdict is written there");
    app.add_option("--seed", occasion.seed, "What decides everything chosen at random");
    app.add_option("--video", occasion.video, "A video that the candidate can read");
    app.add_option("--photo", occasion.photo, "A photo that the candidate can read");
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    if (lists) {
        list(checks);
        return 0;
    }
    const auto check = std::find_if(checks.begin(), checks.end(),
                                    [&](const RunnableCheck& each) { return each.id == id; });
    if (check == checks.end() || scratch.empty()) {
        std::cerr << "no such check, or no directory for its verdict\n";
        return 2;
    }
    occasion.scratch = scratch;
    return run(*check, occasion);
}

}  // namespace validator
