# Faults of results and how they are handed out.

add_host_mutant(results-behind-the-end
  SOURCE Channel.h
  REPLACE [[        results_ = std::make_shared<const Results>(std::move(results));
        run_.reset();  // over before it is said to be: a listener may start the next one
        speak(lock, KOR::taskEventFinished, {100, 0, ""});]]
  BY [[        run_.reset();
        speak(lock, KOR::taskEventFinished, {100, 0, ""});
        results_ = std::make_shared<const Results>(std::move(results));]]
  CAUGHT_BY results.are-complete-inside-finished)

add_host_mutant(results-given-once
  SOURCE Task.cpp
  REPLACE [[        return KOR::statusOk;
    }
    KOR::Status reserved1()]]
  BY [[        channel_->forgetResults();
        return KOR::statusOk;
    }
    KOR::Status reserved1()]]
  CAUGHT_BY results.are-repeated)

add_host_mutant(elements-of-another-kind-of-memory
  SOURCE Task.cpp
  REPLACE [[            void* const copy = ::operator new(element.size(), std::nothrow);]]
  BY [[            void* const copy = std::malloc(element.size());]]
  CAUGHT_BY results.are-blocks-of-their-own)

add_host_mutant(results-for-empty-lists-only
  SOURCE Task.cpp
  REPLACE [[        if (list == nullptr) return KOR::statusFailed;]]
  BY [[        if (list == nullptr) return KOR::statusFailed;
        if (list->count() > 0) return KOR::statusOk;]]
  CAUGHT_BY results.are-appended)

add_host_mutant(full-list-loses-an-element
  SOURCE Task.cpp
  REPLACE [[            ::operator delete(copy);
]]
  BY ""
  CAUGHT_BY results.tell-of-full-lists)

add_host_mutant(full-list-not-told-of
  SOURCE Task.cpp
  REPLACE [[            ::operator delete(copy);
            return KOR::statusFailed;]]
  BY [[            ::operator delete(copy);
            return KOR::statusOk;]]
  CAUGHT_BY results.tell-of-full-lists)

add_host_mutant(other-kinds-fail
  SOURCE Task.cpp
  REPLACE [[        if (!results || found == results->end()) return KOR::statusOk;]]
  BY [[        if (!results) return KOR::statusOk;
        if (found == results->end()) return KOR::statusFailed;]]
  CAUGHT_BY results.are-none-of-other-kinds)

add_host_mutant(results-go-with-the-material
  SOURCE Task.cpp
  REPLACE [[        if (list == nullptr) return KOR::statusFailed;]]
  BY [[        if (list == nullptr) return KOR::statusFailed;
        // The thread of the run may have a hold on the clip a moment longer.
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (work_.clip.use_count() == 1) return KOR::statusOk;]]
  CAUGHT_BY results.outlive-the-material)

add_host_mutant(last-scene-too-long
  SOURCE analyse.cpp
  REPLACE [[            scenes.push_back({scenes.back().end, clip_.duration()});]]
  BY [[            scenes.push_back({scenes.back().end, clip_.duration() + 1});]]
  CAUGHT_BY scenes.ascend-within-duration scenes.are-found-at-cuts)

add_host_mutant(scenes-overlap
  SOURCE analyse.cpp
  REPLACE [[            scenes.push_back({scenes.back().end, clip_.duration()});]]
  BY [[            scenes.push_back({scenes.back().end - 1, clip_.duration()});]]
  CAUGHT_BY scenes.ascend-within-duration)

add_host_mutant(cut-seen-late
  SOURCE analyse.cpp
  REPLACE [[clip_.position(static_cast<std::int64_t>(i));]]
  BY [[clip_.position(static_cast<std::int64_t>(i) + 1);]]
  CAUGHT_BY scenes.are-found-at-cuts)

add_host_mutant(threshold-not-looked-at
  SOURCE analyse.cpp
  REPLACE [[work_.scene.threshold / work_.scene.sensitivity;]]
  BY [[3.0;]]
  CAUGHT_BY scenes.follow-threshold)

add_host_mutant(sensitivity-multiplies
  SOURCE analyse.cpp
  REPLACE [[work_.scene.threshold / work_.scene.sensitivity;]]
  BY [[work_.scene.threshold * work_.scene.sensitivity;]]
  CAUGHT_BY scenes.divide-by-sensitivity)

add_host_mutant(blocks-count-in-any-mode
  SOURCE Task.cpp
  REPLACE [[        if (work.mode == KOR::parameterModeDefault)]]
  BY [[        if (work.mode == -1)]]
  CAUGHT_BY scenes.ignore-blocks-by-default scenes.default-mode-comes-first
    keyframes.ignore-blocks-by-default)

add_host_mutant(explicit-mode-at-first
  SOURCE analyse.h
  REPLACE [[mode = KOR::parameterModeDefault;]]
  BY [[mode = KOR::parameterModeExplicit;]]
  CAUGHT_BY scenes.default-mode-comes-first)

add_host_mutant(default-threshold-too-high
  SOURCE analyse.h
  REPLACE [[scene{1.0, 3.0, 0};]]
  BY [[scene{1.0, 1e9, 0};]]
  CAUGHT_BY scenes.have-defaults)

add_host_mutant(refused-block-kept
  SOURCE Task.cpp
  REPLACE [[            const auto& scene = *static_cast<const KOR::SceneParameters*>(block);]]
  BY [[            const auto& scene = *static_cast<const KOR::SceneParameters*>(block);
            work_.scene = scene;]]
  CAUGHT_BY scenes.keep-defaults-on-refusal)

add_host_mutant(keyframes-of-the-first-scene
  SOURCE analyse.cpp
  REPLACE [[        for (const KOR::TickRange& range : ranges)
            chooseWithin]]
  BY [[        const KOR::TickRange& range = ranges.front();
        chooseWithin]]
  CAUGHT_BY scenes.come-with-keyframes keyframes.stay-in-ranges)

add_host_mutant(keyframes-from-the-last-on
  SOURCE analyse.cpp
  REPLACE [[            add(KOR::analysisTypeKeyFrame, clip_.position(picture));]]
  BY [[            add(KOR::analysisTypeKeyFrame, clip_.duration() - clip_.position(picture));]]
  CAUGHT_BY keyframes.ascend)

add_host_mutant(ranges-not-looked-at
  SOURCE analyse.cpp
  REPLACE [[        if (ranges.empty()) ranges =]]
  BY [[        ranges =]]
  CAUGHT_BY keyframes.stay-in-ranges)

add_host_mutant(no-ranges-no-keyframes
  SOURCE analyse.cpp
  REPLACE [[        if (ranges.empty()) ranges = {{0, clip_.duration()}};]]
  BY ""
  CAUGHT_BY keyframes.without-ranges keyframes.ascend)

add_host_mutant(keyframes-without-limit
  SOURCE analyse.cpp
  REPLACE [[std::min({started, last - first, std::int64_t{wanted.maxPerScene}});]]
  BY [[std::min(started, last - first);]]
  CAUGHT_BY keyframes.are-limited)

add_host_mutant(stretch-counted-when-it-ends
  SOURCE analyse.cpp
  REPLACE [[(end - begin - 1) / stretch + 1;]]
  BY [[(end - begin) / stretch + 1;]]
  CAUGHT_BY keyframes.follow-stretches)

add_host_mutant(no-margin-at-the-end
  SOURCE analyse.cpp
  REPLACE [[            last -= wanted.marginFramesEnd;
]]
  BY ""
  CAUGHT_BY keyframes.keep-margins)

add_host_mutant(keyframes-beside-their-pictures
  SOURCE analyse.cpp
  REPLACE [[            add(KOR::analysisTypeKeyFrame, clip_.position(picture));]]
  BY [[            add(KOR::analysisTypeKeyFrame, clip_.position(picture) + 1);]]
  CAUGHT_BY keyframes.are-pictures)

add_host_mutant(no-results
  SOURCE Task.cpp
  REPLACE [[        const auto found = results ? results->find(kind) : Results::const_iterator();
        if (!results ||]]
  BY [[        const auto found = results ? results->end() : Results::const_iterator();
        if (!results ||]]
  FAILED_BY pictures.include-unseen pictures.measure-entropy pictures.measure-photos
    pictures.measure-sharpness pictures.see-no-sharpness pictures.see-no-faces
    restart.with-other-sources)
