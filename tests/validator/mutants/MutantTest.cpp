#include <iterator>
#include <ostream>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "validator/Checker.h"

namespace validator {
namespace {

/// A library of ours with one fault, and the ids of the checks that have to find it, with a space
/// between two.
struct Mutant {
    std::string_view name;
    std::string_view library;
    std::string_view caughtBy;  ///< have to fail, or to crash
    std::string_view failedBy;  ///< have to fail by what they compare
    std::string_view warnedBy;  ///< have to warn
};

std::ostream& operator<<(std::ostream& out, const Mutant& mutant) {
    return out << mutant.name;
}

// Arrays of views: a compiler needs minutes for hundreds of vectors of strings.
constexpr Mutant componentMutants[] = {
#include "componentMutants.inc"
};

constexpr Mutant hostMutants[] = {
#include "hostMutants.inc"
};

std::string identifier(const ::testing::TestParamInfo<Mutant>& info) {
    std::string name(info.param.name);
    for (char& letter : name) {
        if (letter == '-') letter = '_';
    }
    return name;
}

std::vector<std::string> idsIn(std::string_view text) {
    std::istringstream ids{std::string(text)};
    return {std::istream_iterator<std::string>(ids), {}};
}

/// An exception that a check did not expect fails it, too, but compares nothing.
bool isFailure(const Verdict& verdict) {
    return verdict.outcome == Outcome::fail && verdict.expected != "no exception";
}

bool isWarning(const Verdict& verdict) {
    return verdict.outcome == Outcome::warn;
}

/// A fault in what several threads do at once shows most of the times, but not every time.
constexpr int mostLooks = 5;

/// Names each check that ought to find a fault in the library and does not.
std::vector<std::string> checksThatMiss(const Mutant& mutant, Side side) {
    const Checker checker(programOf(side));
    Options options;
    options.side = side;
    options.library = mutant.library;
    std::vector<std::string> blind;
    const auto look = [&](std::string_view ids, bool (*isWanted)(const Verdict&)) {
        for (const std::string& id : idsIn(ids)) {
            Verdict verdict = checker.verdictOn(id, options);
            for (int looks = 1; looks < mostLooks && !isWanted(verdict); ++looks)
                verdict = checker.verdictOn(id, options);
            if (!isWanted(verdict))
                blind.push_back(id + ": " + std::string(nameOf(verdict.outcome)));
        }
    };
    look(mutant.caughtBy, isFault);
    look(mutant.failedBy, isFailure);
    look(mutant.warnedBy, isWarning);
    return blind;
}

/// The checks that find a fault in no mutant.
std::vector<std::string> neverFinding(std::span<const Mutant> mutants, Side side) {
    std::set<std::string> finding;
    for (const Mutant& mutant : mutants) {
        for (const std::string_view ids : {mutant.caughtBy, mutant.failedBy, mutant.warnedBy}) {
            for (const std::string& id : idsIn(ids))
                finding.insert(id);
        }
    }
    std::vector<std::string> missing;
    for (const ListedCheck& check : Checker(programOf(side)).list()) {
        if (finding.count(check.id) == 0) missing.push_back(check.id);
    }
    return missing;
}

class ComponentMutant : public ::testing::TestWithParam<Mutant> {};

TEST_P(ComponentMutant, IsCaughtByTheChecksItNames) {
    EXPECT_EQ(checksThatMiss(GetParam(), Side::component), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Mutants, ComponentMutant, ::testing::ValuesIn(componentMutants),
                         identifier);

TEST(ComponentChecks, EachFindAMutant) {
    EXPECT_EQ(neverFinding(componentMutants, Side::component), std::vector<std::string>());
}

class HostMutant : public ::testing::TestWithParam<Mutant> {};

TEST_P(HostMutant, IsCaughtByTheChecksItNames) {
    EXPECT_EQ(checksThatMiss(GetParam(), Side::host), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Mutants, HostMutant, ::testing::ValuesIn(hostMutants), identifier);

TEST(HostChecks, EachFindAMutant) {
    EXPECT_EQ(neverFinding(hostMutants, Side::host), std::vector<std::string>());
}

}  // namespace
}  // namespace validator
