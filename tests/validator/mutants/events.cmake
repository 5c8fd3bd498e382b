# Faults in what listeners are told of, and when.

add_component_mutant(progress-rounded
  SOURCE Progress.cpp
  REPLACE [[    return static_cast<std::int32_t>(std::clamp]]
  BY [[    return static_cast<std::int32_t>(0.5 + std::clamp]]
  CAUGHT_BY events.progress-shares-video-among-tasks)

add_component_mutant(progress-of-photos-by-tasks
  SOURCE Progress.cpp
  REPLACE [[    if (at.stillMaterial) {]]
  BY [[    if (false) {]]
  CAUGHT_BY events.progress-of-photo-ignores-tasks)

add_component_mutant(progress-by-number-of-materials
  SOURCE RunDriver.cpp
  REPLACE [[        at.durationOfAll += duration;]]
  BY [[        at.durationOfAll = static_cast<double>(materials.size()) * duration;]]
  CAUGHT_BY events.progress-weighs-materials-by-duration)

add_component_mutant(progress-without-unanalysed
  SOURCE RunDriver.cpp
  REPLACE [[        const auto index = static_cast<std::int64_t>(i);]]
  BY [[        const auto index = static_cast<std::int64_t>(i);
        if (isPhotoMaterial(materials[i].get()) && photoNeedAnalysis == 0) continue;]]
  CAUGHT_BY events.progress-counts-unanalysed-materials)

add_component_mutant(progress-by-kinds
  SOURCE RunDriver.cpp
  REPLACE [[    at.taskCount = tasks.size();]]
  BY [[    at.taskCount = analysisKinds.size();]]
  CAUGHT_BY events.progress-counts-tasks-not-kinds)

add_component_mutant(progress-payload-blank
  SOURCE RunDriver.cpp
  REPLACE [[    copy.progress = overallProgressAt(copy.progress);]]
  BY [[    const std::int32_t percent = copy.progress;
    copy = TaskEventPayload{};
    copy.progress = overallProgressAt(percent);]]
  CAUGHT_BY events.progress-copies-payload)

add_component_mutant(progress-written-to-sender
  SOURCE RunDriver.cpp
  REPLACE [[    callBacks.notify(*this, taskEventProgress, &copy);]]
  BY [[    auto* const own = const_cast<void*>(payload);
    if (own != nullptr) std::memcpy(own, &copy, sizeof copy);
    callBacks.notify(*this, taskEventProgress, own);]]
  CAUGHT_BY events.progress-leaves-senders-payload)

add_component_mutant(progress-needs-payload
  SOURCE RunDriver.cpp
  REPLACE [[    if (payload != nullptr) std::memcpy]]
  BY [[    std::memcpy]]
  CAUGHT_BY events.progress-without-payload-is-survived)

add_component_mutant(failures-passed-on-as-copies
  SOURCE RunDriver.cpp
  REPLACE [[            callBacks.notify(*this, event, payload);]]
  BY [[            if (payload != nullptr) {
                TaskEventPayload copy = *static_cast<const TaskEventPayload*>(payload);
                callBacks.notify(*this, event, &copy);
            }]]
  CAUGHT_BY events.passes-on-failures events.passes-on-stops)

add_component_mutant(stops-not-passed-on
  SOURCE RunDriver.cpp
  REPLACE [[        case taskEventStopped:]]
  BY [[        case taskEventStopped:
            if (event == taskEventStopped) break;]]
  CAUGHT_BY events.passes-on-stops)

add_component_mutant(finishes-passed-on
  SOURCE RunDriver.cpp
  REPLACE [[        case taskEventFinished:
            onTaskFinishedEvent();]]
  BY [[        case taskEventFinished:
            callBacks.notify(*this, event, payload);
            onTaskFinishedEvent();]]
  CAUGHT_BY events.keeps-finishes-to-itself)

add_component_mutant(finish-needs-payload
  SOURCE RunDriver.cpp
  REPLACE [[            onTaskFinishedEvent();
            break;]]
  BY [[            if (payload != nullptr) onTaskFinishedEvent();
            break;]]
  CAUGHT_BY events.finish-needs-no-payload)

add_component_mutant(category-not-looked-at
  SOURCE RunDriver.cpp
  REPLACE [[    if (category != taskEventCategory) return statusOk;]]
  BY [[    static_cast<void>(category);]]
  CAUGHT_BY events.ignores-other-categories)

add_component_mutant(unknown-events-passed-on
  SOURCE RunDriver.cpp
  REPLACE [[            break;
        default:
            break;
    }
    return statusOk;]]
  BY [[            break;
        default:
            callBacks.notify(*this, event, payload);
    }
    return statusOk;]]
  CAUGHT_BY events.ignores-unknown-events)

add_component_mutant(unknown-events-refused
  SOURCE RunDriver.cpp
  REPLACE [[            break;
        default:
            break;
    }
    return statusOk;]]
  BY [[            break;
        default:
            return statusFailed;
    }
    return statusOk;]]
  CAUGHT_BY events.are-answered-with-0)

add_component_mutant(finish-answered-with-status
  SOURCE RunDriver.cpp
  REPLACE [[            onTaskFinishedEvent();
            break;]]
  BY [[            return onTaskFinished();]]
  CAUGHT_BY events.are-answered-with-0-when-a-step-fails nesting.bears-thousands-of-videos)

add_component_mutant(events-of-category-0
  SOURCE ListenerList.cpp
  REPLACE [[(&sender, taskEventCategory, event, payload)]]
  BY [[(&sender, 0, event, payload)]]
  CAUGHT_BY events.come-from-the-component)

add_component_mutant(events-need-a-listener
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  BY [[    const std::vector<Entry> told(entries_.begin(), entries_.end());
    if (entries_.front()->load() == nullptr) return;]]
  CAUGHT_BY events.need-no-listener)

add_component_mutant(failures-count-as-finishes
  SOURCE RunDriver.cpp
  REPLACE [[        case taskEventFailed:
        case]]
  BY [[        case taskEventFailed:
            onTaskFinishedEvent();
            break;
        case]]
  CAUGHT_BY events.passes-on-failures failure.of-tasks-ends-no-run)

add_component_mutant(progress-clamped
  SOURCE Progress.cpp
  REPLACE [[shareDone(position, taskPercent) * position.scale]]
  BY [[shareDone(position, std::clamp(taskPercent, 0, 100)) * position.scale]]
  CAUGHT_BY events.progress-is-cut-toward-zero)

add_component_mutant(progress-rounded-down
  SOURCE Progress.cpp
  REPLACE [[std::clamp<double>(percent,]]
  BY [[std::clamp<double>(std::floor(percent),]]
  CAUGHT_BY events.progress-is-cut-toward-zero)

add_component_mutant(reserved-operation-fails
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[Status KorMaterialAnalysis::onReserved() {
    return statusOk;]]
  BY [[Status KorMaterialAnalysis::onReserved() {
    return statusFailed;]]
  CAUGHT_BY events.reserved-operation-gives-0)

add_component_mutant(progress-a-little-more
  SOURCE Progress.cpp
  REPLACE [[position.scale * 100;]]
  BY [[position.scale * 100 + 0.01;]]
  CAUGHT_BY events.progress-is-truncated)

# Leaves checks of what was told nothing to look at.
add_component_mutant(nobody-is-told
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  BY [[    const std::vector<Entry> told;]]
  FAILED_BY events.progress-copies-payload events.progress-leaves-senders-payload
    events.progress-without-payload-is-survived failure.of-tasks-ends-no-run listeners.may-stop
    listeners.may-start-again)

add_component_mutant(unheard-run-is-given-up
  SOURCE ListenerList.cpp
  REPLACE [[    const std::vector<Entry> told(entries_.begin(), entries_.end());]]
  BY [[    const std::vector<Entry> told(entries_.begin(), entries_.end());
    if (told.empty()) {
        void* const run = sender.queryInterface("IKorMaterialAnalysis");
        static_cast<IKorMaterialAnalysis*>(run)->stop();
    }]]
  FAILED_BY events.need-no-listener)

add_component_mutant(progress-without-payload-cancels
  SOURCE RunDriver.cpp
  REPLACE [[    if (payload != nullptr) std::memcpy(&copy, payload, sizeof copy);]]
  BY [[    if (payload == nullptr)
        cancelled.exchange(1);
    else
        std::memcpy(&copy, payload, sizeof copy);]]
  FAILED_BY events.progress-without-payload-is-survived)
