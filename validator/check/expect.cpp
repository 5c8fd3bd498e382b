#include "validator/check/expect.h"

#include <algorithm>
#include <cstddef>

namespace validator {
namespace {

std::vector<std::string>& allWarnings() {
    static std::vector<std::string> theWarnings;
    return theWarnings;
}

std::string lineOrEnd(const std::vector<std::string>& lines, std::size_t number) {
    return number < lines.size() ? shown(lines[number]) : "the end";
}

}  // namespace

void fail(std::string_view what, std::string_view expected, std::string_view found) {
    throw Failure{std::string(what), std::string(expected), std::string(found)};
}

void skip(std::string_view reason) {
    throw Skip{std::string(reason)};
}

void warn(std::string_view text) {
    allWarnings().emplace_back(text);
}

const std::vector<std::string>& warnings() {
    return allWarnings();
}

void expect(bool isTrue, std::string_view what, std::string_view expected, std::string_view found) {
    if (!isTrue) fail(what, expected, found);
    held(what);
}

void expectSame(std::string_view what, const void* found, const void* expected) {
    if (found != expected) {
        fail(what, expected == nullptr ? "null" : "that object",
             found == nullptr ? "null" : "another object");
    }
    held(what);
}

void expectObject(std::string_view what, const void* found) {
    if (found == nullptr) fail(what, "an object", "null");
    held(what);
}

void expectNull(std::string_view what, const void* found) {
    if (found != nullptr) fail(what, "null", "an object");
    held(what);
}

void expectLines(std::string_view what, const std::vector<std::string>& found,
                 const std::vector<std::string>& expected) {
    const auto [mine, theirs] =
        std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
    if (mine == found.end() && theirs == expected.end()) return held(what);
    const auto number = static_cast<std::size_t>(mine - found.begin());
    fail(std::string(what) + ", line " + std::to_string(number + 1), lineOrEnd(expected, number),
         lineOrEnd(found, number));
}

}  // namespace validator
