#pragma once

#include <cstdint>

namespace fake_host {

/// How much fails from the first failure on.
enum class Failing { onlyThatOne, allBehindIt };

/// Watches the allocations of a program that is linked with AllocationWatch.cpp, whose `operator
/// new` stands in for the library's: they can be made to fail, and what is not freed shows.
/// One at a time, on one thread.
class AllocationWatch {
public:
    /// Begins to watch. The `failing`th allocation from here on fails, counted from 1; none for 0.
    explicit AllocationWatch(std::int64_t failing, Failing mode = Failing::onlyThatOne);

    /// Goes on failing nothing; what was allocated until then is still waited for.
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    /// Ends the part that is watched.
    void endPart();

    /// How many allocations the part has asked for.
    std::int64_t made() const;

    /// How many blocks of the part are not freed yet, to this moment.
    std::int64_t left() const;

    /// Whether one failed with an exception, and whether one that asked for none did.
    bool hasThrown() const;
    bool hasGivenNull() const;
};

}  // namespace fake_host
