#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "validator/check/lastHeld.h"
#include "validator/check/shown.h"

/// How checks say what they found. Each function returns when all is well, and throws otherwise.
namespace validator {

/// The claim does not hold.
struct Failure {
    std::string what;
    std::string expected;
    std::string found;
};

/// The claim cannot be tried.
struct Skip {
    std::string reason;
};

[[noreturn]] void fail(std::string_view what, std::string_view expected, std::string_view found);
[[noreturn]] void skip(std::string_view reason);

/// The check goes on, and ends in a warning if nothing is worse. For what the contract leaves open
/// but integrators would want to know.
void warn(std::string_view text);

/// Returns what was warned of since the process began.
const std::vector<std::string>& warnings();

/// Fails unless `isTrue`; `found` is what is the case instead.
void expect(bool isTrue, std::string_view what, std::string_view expected, std::string_view found);

/// Fails unless both are equal. `what` names the value, as in "refCount()".
template <typename Value>
void expectEqual(std::string_view what, const Value& found,
                 const std::type_identity_t<Value>& expected) {
    if (!(found == expected)) fail(what, shown(expected), shown(found));
    held(what);
}

/// Fails unless both pointers lead to the same object.
void expectSame(std::string_view what, const void* found, const void* expected);

/// Fails unless the pointer leads to an object.
void expectObject(std::string_view what, const void* found);

/// Fails unless the pointer is null.
void expectNull(std::string_view what, const void* found);

/// Returns the element at `index`. Fails where there is none; `what` names all of them, as in
/// "events".
template <typename Value>
Value elementOf(std::string_view what, const std::vector<Value>& values, std::size_t index) {
    if (index < values.size()) return values[index];
    fail("the number of " + std::string(what), "at least " + shown(index + 1),
         shown(values.size()));
}

/// Returns the first element. Fails where there is none.
template <typename Value>
Value firstOf(std::string_view what, const std::vector<Value>& values) {
    return elementOf(what, values, 0);
}

/// Returns the last element. Fails where there is none.
template <typename Value>
Value lastOf(std::string_view what, const std::vector<Value>& values) {
    return elementOf(what, values, values.empty() ? 0 : values.size() - 1);
}

/// Fails unless both have the same lines, and says which is the first that differs. `what` names
/// the whole, as in "the log".
void expectLines(std::string_view what, const std::vector<std::string>& found,
                 const std::vector<std::string>& expected);

}  // namespace validator
