#pragma once

#include <cstddef>
#include <functional>
#include <stop_token>

namespace reference_host {

/// What is done of one part of some work: `part` is its number, and `step` is to be called after
/// each step of it.
using PartOfWork = std::function<void(std::size_t part, const std::function<void()>& step)>;

/// Does some work in as many parts as `parts` says at once, each on a thread of its own, and
/// returns when all of them have ended. Meanwhile, the calling thread calls `onSteps` with how many
/// steps all parts have taken together, in ascending order, the last one included; steps that are
/// taken during such a call are told of in one.
///
/// The first exception, of a part, of `onSteps` or because no thread can be had, has `stop` asked
/// to stop, which is all that ends the other parts, and is thrown once they have ended.
void inParallel(std::size_t parts, const std::stop_source& stop, const PartOfWork& work,
                const std::function<void(std::size_t steps)>& onSteps);

}  // namespace reference_host
