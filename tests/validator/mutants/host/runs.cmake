# Faults of how runs fail, are stopped and begun again, and of how tasks end.

add_host_mutant(no-source-no-failure
  SOURCE analyse.cpp
  REPLACE [[throw std::runtime_error("there is no source that can be read");]]
  BY [[return {};]]
  CAUGHT_BY failed.without-a-source)

add_host_mutant(null-source-keeps-the-one-before
  SOURCE Task.cpp
  REPLACE [[        work_ = {};
        channel_->forgetResults();]]
  BY [[        if (source == nullptr) return KOR::statusFailed;
        work_ = {};
        channel_->forgetResults();]]
  CAUGHT_BY failed.after-null-source failed.have-no-results)

add_host_mutant(failed-without-a-reason
  SOURCE Task.cpp
  REPLACE [[        std::strncpy(payload.reason, failure.what(), sizeof payload.reason - 1);]]
  BY [[        static_cast<void>(failure);]]
  CAUGHT_BY failed.say-why)

add_host_mutant(failure-leaves-the-cache
  SOURCE Task.cpp
  REPLACE [[        if (work.clip) work.clip->isTainted = true;
]]
  BY ""
  CAUGHT_BY failed.empty-the-cache failed.empty-the-cache-as-value failed.stay-empty
    hosting.goes-on-after-a-failure)

add_host_mutant(cache-emptied-behind-the-event
  SOURCE Task.cpp
  REPLACE [[        channel->send(stop, KOR::taskEventFailed, payload);]]
  BY [[        if (work.clip) work.clip->isTainted = false;
        channel->send(stop, KOR::taskEventFailed, payload);
        if (work.clip) work.clip->isTainted = true;]]
  CAUGHT_BY failed.empty-the-cache)

add_host_mutant(cache-kept-as-a-value
  SOURCE Clip.h
  REPLACE [[        const std::string text = getMediaInfoText(key);]]
  BY [[        const std::string text = isCache ? cacheDirectory_ : getMediaInfoText(key);]]
  CAUGHT_BY failed.empty-the-cache-as-value)

add_host_mutant(cache-back-with-the-next-run
  SOURCE Task.cpp
  REPLACE [[        results = analyse(work,]]
  BY [[        if (work.clip) work.clip->isTainted = false;
        results = analyse(work,]]
  CAUGHT_BY failed.stay-empty)

add_host_mutant(failure-empties-all-caches
  SOURCE Clip.h
  REPLACE [[    std::atomic<bool> isTainted{false};]]
  BY [[    inline static std::atomic<bool> isTainted{false};]]
  CAUGHT_BY failed.leave-others-alone)

add_host_mutant(failed-never-finishes
  SOURCE Task.cpp
  REPLACE [[        channel->send(stop, KOR::taskEventFailed, payload);]]
  BY [[        channel->send(stop, KOR::taskEventFailed, payload);
        return;]]
  CAUGHT_BY failed.end-and-go-on failed.without-a-source hosting.goes-on-after-a-failure)

add_host_mutant(stopped-not-told
  SOURCE Channel.h
  REPLACE [[            speak(lock, KOR::taskEventStopped, {});]]
  BY [[            static_cast<void>(0);]]
  CAUGHT_BY stop.ends-a-run stop.twice stop.from-threads stop.right-after-start)

add_host_mutant(stop-does-not-wait
  SOURCE Channel.h
  REPLACE [[        waitForSpeaker(lock);
        if (!endRun()) return;]]
  BY [[        if (!endRun()) return;]]
  CAUGHT_BY stop.waits-for-the-event threads.tell-one-event-at-a-time)

add_host_mutant(stopped-run-goes-on
  SOURCE Channel.h
  REPLACE [[        run_->request_stop();
]]
  BY ""
  CAUGHT_BY stop.inside-progress)

# For twenty milliseconds, so that it does not matter when exactly the events are counted.
add_host_mutant(stop-is-told-on-and-on
  SOURCE Channel.h
  REPLACE [[        else
            speak(lock, KOR::taskEventStopped, {});]]
  BY [[        else {
            speak(lock, KOR::taskEventStopped, {});
            std::thread([this] {
                for (int i = 0; i < 20; ++i) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                    Lock again(mutex_);
                    speak(again, KOR::taskEventStopped, {});
                }
            }).detach();
        }]]
  CAUGHT_BY stop.is-the-end)

add_host_mutant(idle-stop-is-told
  SOURCE Channel.h
  REPLACE [[        if (!endRun()) return;]]
  BY [[        static int extra = 1;
        if (!endRun() && --extra < 0) return;]]
  CAUGHT_BY stop.sends-nothing-when-idle stop.inside-finished stop.inside-stopped stop.twice
    stop.several-times-inside)

add_host_mutant(stopped-run-finishes
  SOURCE Channel.h
  REPLACE [[        if (run.stop_requested()) return;
        results_ =]]
  BY [[        results_ =]]
  CAUGHT_BY stop.inside-failed)

add_host_mutant(stopped-run-has-results
  SOURCE Channel.h
  REPLACE [[        if (!endRun()) return;]]
  BY [[        if (!endRun()) return;
        results_ = std::make_shared<const Results>(Results{{1, {std::string(16, ' ')}}});]]
  CAUGHT_BY stop.leaves-no-results)

add_host_mutant(stopped-run-has-failed
  SOURCE Task.cpp
  REPLACE [[    } catch (const Stopped&) {
        return;]]
  BY [[    } catch (const Stopped&) {
        if (work.clip) work.clip->isTainted = true;
        return;]]
  CAUGHT_BY stop.is-no-failure)

add_host_mutant(start-ends-the-run-before
  SOURCE Channel.h
  REPLACE [[        if (run_) return false;
        const std::stop_source]]
  BY [[        endRun();
        const std::stop_source]]
  CAUGHT_BY restart.is-refused-while-running restart.is-refused-inside-progress)

add_host_mutant(finished-run-stays-on
  SOURCE Channel.h
  REPLACE [[        run_.reset();  // over before it is said to be: a listener may start the next one
]]
  BY ""
  CAUGHT_BY restart.after-the-end restart.inside-finished)

add_host_mutant(run-over-behind-its-end
  SOURCE Channel.h
  REPLACE [[        run_.reset();  // over before it is said to be: a listener may start the next one
        speak(lock, KOR::taskEventFinished, {100, 0, ""});]]
  BY [[        speak(lock, KOR::taskEventFinished, {100, 0, ""});
        run_.reset();]]
  CAUGHT_BY restart.inside-finished stop.inside-finished)

add_host_mutant(no-start-while-stopping
  SOURCE Channel.h
  REPLACE [[        if (run_) return false;
        const std::stop_source]]
  BY [[        if (run_ || stopsOwed_ > 0) return false;
        const std::stop_source]]
  CAUGHT_BY restart.inside-stopped restart.behind-stop-inside)

add_host_mutant(stopped-run-stays-on
  SOURCE Channel.h
  REPLACE [[        run_->request_stop();
        run_.reset();]]
  BY [[        run_->request_stop();]]
  CAUGHT_BY restart.after-stop)

add_host_mutant(first-source-for-ever
  SOURCE Task.cpp
  REPLACE [[work_.clip = clip->shared_from_this();]]
  BY [[{
            static const auto first = clip->shared_from_this();
            work_.clip = first;
        }]]
  CAUGHT_BY restart.with-other-sources hosting.drives-many-materials)

add_host_mutant(source-keeps-results
  SOURCE Task.cpp
  REPLACE [[        channel_->forgetResults();
]]
  BY ""
  CAUGHT_BY restart.source-forgets-results)

add_host_mutant(start-keeps-results
  SOURCE Channel.h
  REPLACE [[        run_ = source;
        results_.reset();]]
  BY [[        run_ = source;]]
  CAUGHT_BY restart.start-forgets-results)

add_host_mutant(source-keeps-settings
  SOURCE Task.cpp
  REPLACE [[        work_ = {};]]
  BY [[        work_.clip.reset();]]
  CAUGHT_BY restart.source-forgets-blocks restart.source-forgets-mode restart.source-forgets-lists)

add_host_mutant(released-task-goes-on
  SOURCE Channel.h
  REPLACE [[        sender_ = nullptr;
        endRun();]]
  BY [[        static_cast<void>(0);]]
  CAUGHT_BY destruction.is-silent destruction.inside-progress destruction.inside-failed
    destruction.of-short-lives)

add_host_mutant(release-does-not-wait
  SOURCE Channel.h
  REPLACE [[        endRun();
        waitForSpeaker(lock);]]
  BY [[        endRun();]]
  CAUGHT_BY destruction.waits-for-the-event)

add_host_mutant(event-told-without-its-task
  SOURCE Channel.h
  REPLACE [[i < count && sender_ != nullptr; ++i) {]]
  BY [[i < count; ++i) {]]
  CAUGHT_BY destruction.inside-finished destruction.inside-progress)

add_host_mutant(task-waits-for-itself
  SOURCE Channel.h
  REPLACE [[            return speaker_ == std::thread::id() || speaker_ == std::this_thread::get_id();]]
  BY [[            return speaker_ == std::thread::id();]]
  CAUGHT_BY hosting.ends-inside-the-last-event)

add_host_mutant(one-run-at-a-time
  SOURCE Task.cpp
  REPLACE [[    Results results;
    std::int32_t last = -1;]]
  BY [[    static std::mutex one;
    const std::scoped_lock whole(one);
    Results results;
    std::int32_t last = -1;]]
  CAUGHT_BY threads.run-on-two-materials)

add_host_mutant(one-task-for-each-material
  SOURCE analyse.cpp
  REPLACE [[    return Analysis(work, report).run();]]
  BY [[    if (work.clip.use_count() > 4) throw std::runtime_error("it is in use");
    return Analysis(work, report).run();]]
  CAUGHT_BY threads.run-on-one-material)

add_host_mutant(cache-hidden-while-running
  SOURCE Task.cpp
  REPLACE [[        results = analyse(work,]]
  BY [[        if (work.clip) work.clip->isTainted = true;
        results = analyse(work,]]
  CAUGHT_BY threads.answer-inside-events stop.is-no-failure)

add_host_mutant(no-start-inside-events
  SOURCE Channel.h
  REPLACE [[        if (run_) return false;
        const std::stop_source]]
  BY [[        if (run_ || speaker_ == std::this_thread::get_id()) return false;
        const std::stop_source]]
  CAUGHT_BY restart.inside-finished restart.inside-stopped)

add_host_mutant(no-keyframes-in-known-scenes
  SOURCE analyse.cpp
  REPLACE [[        if (ranges.empty()) ranges = {{0, clip_.duration()}};]]
  BY [[        ranges.assign(ranges.empty() ? 1 : 0, {0, clip_.duration()});]]
  CAUGHT_BY hosting.drives-one-material keyframes.stay-in-ranges)
