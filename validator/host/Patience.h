#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace validator {

/// How long a check waits for what has to happen. What is waited for takes milliseconds; a busy
/// machine is given more.
constexpr auto patience = std::chrono::seconds(5);

/// How long a listener stays in an event so that a call on another thread is surely under way.
constexpr auto linger = std::chrono::milliseconds(20);

/// Fails because `what` has not happened in time. Whatever hangs still does, so that nothing that
/// might wait for it may be ended any more: see isStuck().
[[noreturn]] void failForTime(const std::string& what, const std::string& found);

/// Says whether failForTime() was called.
bool isStuck();

/// Calls `action` on a thread of its own, and fails where it does not return in time. `what` names
/// the call, as in "stop()".
void expectReturn(const std::string& what, std::function<void()> action);

}  // namespace validator
