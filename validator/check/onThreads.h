#pragma once

#include <functional>

namespace validator {

constexpr int threadCount = 4;

/// Runs `action` on `threadCount` threads at once, each with its number from 0, and returns when
/// all have ended. What one of them throws, such as a Failure, goes on here.
void onThreads(const std::function<void(int thread)>& action);

}  // namespace validator
