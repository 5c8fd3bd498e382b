#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>
#include <vector>

#include "reference_host/media/Container.h"
#include "reference_host/media/FootageFacts.h"
#include "reference_host/media/PictureSource.h"
#include "reference_host/media/SegmentDecoder.h"
#include "reference_host/media/SegmentQueue.h"

namespace reference_host::media {

/// Looks at several segments of a video at once, each on a thread of its own. next() belongs to one
/// thread, on which everything is put in order again.
class SegmentedPictures final : public PictureSource {
public:
    /// Takes in, on the thread that is in next(), how much of the packets has been handled: 0 to 1.
    using Tell = std::function<void(double share)>;

    /// How many threads there are.
    struct Crew {
        /// From the beginning on; at least 1.
        std::size_t workers = 1;
        /// For the last segments only, so many of which are not left for when a worker is free: of
        /// five equal ones, two cores would work on the last with one.
        std::size_t helpers = 0;
    };

    /// Reads the packets of `container`, which has been opened and not been read; `facts` were
    /// found in the same file before. Reading ends soon after `stop` is requested. Throws
    /// MediaError.
    SegmentedPictures(std::unique_ptr<Container> container, const FootageFacts& facts,
                      const SegmentDecoder::Plan& plan, const Crew& crew,
                      const std::stop_token& stop, Tell tell);
    ~SegmentedPictures() override;

    /// Throws NotDivisible and SegmentTooLong.
    bool next(std::int64_t& timestamp, scenes::PictureFeatures& picture) override;
    Damage damage() const override { return damage_; }
    std::vector<KeptPicture> takeKept() override { return kept_.take(); }

private:
    enum class Role { worker, helper };

    void work(Role role);
    /// Adds what is seen in `segment`; `decoder` is opened for the first one.
    void decode(const Segment& segment, std::optional<SegmentDecoder>& decoder);
    /// Returns the next segment once it may be decoded in this role; none when there is none left.
    std::optional<Segment> takeSegment(Role role);
    bool mayTake(Role role) const;
    bool isWaitingFull() const;
    void open(std::optional<SegmentDecoder>& decoder);
    void handle(const Segment& segment, double part);
    bool waitForView();
    void endWork();

    const SegmentDecoder::Plan plan_;
    const std::int64_t workerCount_;
    const std::size_t helperCount_;
    const std::int64_t lastTimestamp_;
    /// How long the whole video is, in the unit of its stream.
    const double length_;
    const Tell tell_;
    /// Asked to stop when the run is, and at the end of this.
    std::stop_source end_;
    std::stop_callback<std::function<void()>> stopped_;
    const std::unique_ptr<Container> container_;

    std::mutex mutex_;
    std::condition_variable changed_;
    SegmentQueue segments_;
    /// What the workers have seen, by the segments' numbers.
    std::map<std::int64_t, SegmentView> views_;
    /// How many pictures that makes.
    std::size_t waiting_ = 0;
    /// What ended the work on segments or the reading of them, by the segments' numbers.
    std::map<std::int64_t, std::exception_ptr> failures_;
    /// The segment that is given next, and how many there have been.
    std::int64_t wanted_ = 0;
    std::int64_t taken_ = 0;
    bool isReadWhole_ = false;
    double handled_ = 0;

    SegmentView view_;
    std::size_t nextPicture_ = 0;
    Damage damage_;
    KeptPictures kept_;
    std::vector<std::jthread> workers_;
};

}  // namespace reference_host::media
