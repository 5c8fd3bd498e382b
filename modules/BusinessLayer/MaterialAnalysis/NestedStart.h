#pragma once

#include <cstdint>

namespace KOR {

/// Marks that this thread is inside the start of one of a component's tasks, for as long as it
/// lives (on the stack, right around the call).
///
/// A task may finish inside its own start, and so drive the next start, and so on. The marks of one
/// thread know how deep that goes, so that a run of many such tasks does not overflow the stack.
/// They also outlive the component, which a listener may release in there, and keep what the
/// interrupted steps still need of it. Marks belong to their thread: a task that reports on another
/// one is no concern of theirs.
class NestedStart {
public:
    /// How many starts may stand inside one another: enough for every host that reports at once now
    /// and then, and about a tenth of the smallest stack on which components run (256 KiB).
    static constexpr int literalLevels = 32;

    /// `owner` is the component, `materialIndex` its current material.
    NestedStart(const void* owner, std::int32_t materialIndex);
    ~NestedStart();
    NestedStart(const NestedStart&) = delete;
    NestedStart& operator=(const NestedStart&) = delete;

    /// Returns the innermost mark that `owner` has on this thread, or null.
    static NestedStart* innermost(const void* owner);

    /// Tells the marks of `owner` on this thread that the run has moved to a material.
    static void moved(const void* owner, std::int32_t materialIndex);

    /// Drops every finish that `owner` has remembered on this thread.
    static void forgetFinishes(const void* owner);

    /// Tells the marks of `owner` on this thread that it is being destroyed.
    static void ownerDestroyed(const void* owner);

    /// Returns the material that the run is at, as far as this thread has moved it.
    std::int32_t materialIndex() const { return materialIndex_; }

    /// Says whether a finish that comes now has to wait.
    bool isBeyondLiteralLevels() const { return level_ > literalLevels; }

    /// Leaves a finish to the mark around this one.
    void rememberFinish() { outer_->finishes_ += 1; }

    /// Takes one remembered finish. False when there is none, or nobody any more to act on it.
    bool takeFinish();

private:
    const void* owner_;  ///< null once it is destroyed
    NestedStart* const previous_;
    NestedStart* const outer_;  ///< the next one around with the same owner
    const int level_;           ///< 1 for the outermost
    int finishes_ = 0;
    std::int32_t materialIndex_;
};

}  // namespace KOR
