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

/// A library of ours with one fault, and the checks that have to find it.
struct Mutant {
    std::string_view name;
    std::string_view library;
    std::string_view caughtBy;  ///< ids, with a space between two
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

std::vector<std::string> idsOf(const Mutant& mutant) {
    std::istringstream ids{std::string(mutant.caughtBy)};
    return {std::istream_iterator<std::string>(ids), {}};
}

/// Names each check that ought to find a fault in the library and does not.
std::vector<std::string> checksThatMiss(const Mutant& mutant, Side side) {
    const Checker checker(programOf(side));
    Options options;
    options.side = side;
    options.library = mutant.library;
    std::vector<std::string> blind;
    for (const std::string& id : idsOf(mutant)) {
        const Verdict verdict = checker.verdictOn(id, options);
        if (!isFault(verdict)) blind.push_back(id + ": " + std::string(nameOf(verdict.outcome)));
    }
    return blind;
}

/// The checks that no mutant fails.
std::vector<std::string> neverFailing(std::span<const Mutant> mutants, Side side) {
    std::set<std::string> failing;
    for (const Mutant& mutant : mutants) {
        for (const std::string& id : idsOf(mutant))
            failing.insert(id);
    }
    std::vector<std::string> missing;
    for (const ListedCheck& check : Checker(programOf(side)).list()) {
        if (failing.count(check.id) == 0) missing.push_back(check.id);
    }
    return missing;
}

class ComponentMutant : public ::testing::TestWithParam<Mutant> {};

TEST_P(ComponentMutant, IsCaughtByTheChecksItNames) {
    EXPECT_EQ(checksThatMiss(GetParam(), Side::component), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Mutants, ComponentMutant, ::testing::ValuesIn(componentMutants),
                         identifier);

TEST(ComponentChecks, AreEachFailedByAMutant) {
    EXPECT_EQ(neverFailing(componentMutants, Side::component), std::vector<std::string>());
}

class HostMutant : public ::testing::TestWithParam<Mutant> {};

TEST_P(HostMutant, IsCaughtByTheChecksItNames) {
    EXPECT_EQ(checksThatMiss(GetParam(), Side::host), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Mutants, HostMutant, ::testing::ValuesIn(hostMutants), identifier);

TEST(HostChecks, AreEachFailedByAMutant) {
    EXPECT_EQ(neverFailing(hostMutants, Side::host), std::vector<std::string>());
}

}  // namespace
}  // namespace validator
