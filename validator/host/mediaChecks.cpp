#include <atomic>
#include <cstring>
#include <string_view>

#include "validator/check/onThreads.h"
#include "validator/host/baseObject.h"
#include "validator/host/exports.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

const std::vector<const char*> interfaces = {"IDmBaseObj", "IDmBaseMedia", "IDmSourceMedia"};

/// Calls `action` with a reference on a new material of each kind.
template <typename Action>
void withEachMaterial(const HostLibrary& host, Action action) {
    action(host.video().object);
    action(host.photo().object);
}

void refusesOtherFiles(HostLibrary& host) {
    const auto& scratch = host.occasion().scratch;
    const auto expectNone = [&](const char* what, const std::filesystem::path& file) {
        expectNull(std::string("createValidationMaterial() of ") + what,
                   host.materialOf(file, host.cacheDirectory()).get());
    };
    expectNone("a file that is missing", scratch / "missing.y4m");
    expectNone("a directory", scratch);
    expectNone("a text", footage::text(scratch));
}

void refusesNull(HostLibrary& host) {
    const std::string file = host.videoFile().string();
    host.materialOf(file, {});  // skips where there is no entry
    const auto make = host.service<KOR::IDmBaseObj*(const char*, const char*)>(exports::material);
    expectNull("createValidationMaterial() of null", make(nullptr, ""));
    expectNull("createValidationMaterial() with null for the cache", make(file.c_str(), nullptr));
}

void givesOwnInterfaces(HostLibrary& host) {
    const Material material = host.video();
    auto* const base = static_cast<KOR::IDmBaseObj*>(material.object->queryInterface("IDmBaseObj"));
    expectEqual("addRef() by IDmBaseMedia", material.media->addRef(), 2);
    expectEqual("refCount() by IDmBaseObj", base->refCount(), 2);
    expectEqual("release() by IDmBaseObj", base->release(), 1);
    expectSame("queryInterface() by IDmBaseMedia", material.media->queryInterface("IDmSourceMedia"),
               material.side);
    expectSame("queryInterface() asked again", material.object->queryInterface("IDmBaseMedia"),
               material.media);
}

void names(HostLibrary& host) {
    for (const auto& file : {host.videoFile(), host.photoFile()}) {
        const Material material = host.material(file);
        const char* const name = material.media->getFileName();
        expectObject("getFileName()", name);
        const std::string wanted = file.filename().string();
        expect(std::string_view(name).ends_with(wanted), "getFileName()",
               "a name that ends with " + shown(wanted), shown(name));
        const std::string copy = name;
        material.media->getDuration();
        material.source->getMediaInfoText("media_cache");
        expectEqual("the file name's text after other questions", std::string(name), copy);
    }
}

void durations(HostLibrary& host) {
    const std::int64_t duration = host.video().media->getDuration();
    if (host.hasOurVideo()) {
        expectEqual("getDuration() of a video of 60 pictures, 10 a second", duration,
                    footage::videoTicks);
    } else {
        expect(duration > 0, "getDuration() of a video", "above 0", shown(duration));
    }
}

void hasSource(HostLibrary& host) {
    const Material material = host.video();
    expectSame("getSource() asked again", material.side->getSource(), material.source);
    expectEqual("refCount() of the material", material.object->refCount(), 1);
}

/// What a material says, to be compared with what it says another time.
struct Answers {
    std::uint32_t type;
    std::uint32_t sourceType;
    std::int64_t duration;
    std::string name;
    std::string cache;

    bool operator==(const Answers&) const = default;
};

Answers answersOf(const Material& material) {
    return {material.media->getMediaType(), material.side->getSourceType(),
            material.media->getDuration(), material.media->getFileName(), material.cache()};
}

void repeatsAnswers(HostLibrary& host) {
    for (const auto& file : {host.videoFile(), host.photoFile()}) {
        const Material material = host.material(file);
        const Answers first = answersOf(material);
        for (int i = 0; i < 100; ++i)
            expect(answersOf(material) == first, "the answers when asked again", "the same",
                   "others");
    }
}

void answersOnThreads(HostLibrary& host) {
    const Material material = host.video();
    const Answers first = answersOf(material);
    std::atomic<int> wrong = 0;
    onThreads([&](int) {
        for (int i = 0; i < 2000; ++i) {
            if (!(answersOf(material) == first)) ++wrong;
        }
    });
    expectEqual("other answers on four threads", wrong.load(), 0);
}

void areMadeOnThreads(HostLibrary& host) {
    const auto file = host.videoFile();
    const Answers expected = answersOf(host.material(file));
    std::atomic<int> right = 0;
    onThreads([&](int) {
        const auto object = host.materialOf(file, host.cacheDirectory());
        if (!object) return;
        auto* const media = static_cast<KOR::IDmBaseMedia*>(object->queryInterface("IDmBaseMedia"));
        if (media != nullptr && media->getDuration() == expected.duration) ++right;
    });
    expectEqual("materials with the right duration, of one on each thread", right.load(),
                threadCount);
}

}  // namespace

const std::vector<HostCheck> mediaChecks = {
    {"media.count-their-references",
     "A new material has one reference; addRef and release return the new count, the last one 0.",
     [](HostLibrary& host) { withEachMaterial(host, expectCountsReferences); }},
    {"media.count-references-on-threads",
     "References on a material may be taken and given back on several threads at once.",
     [](HostLibrary& host) { expectCountsOnThreads(host.video().object); }},
    {"media.keep-observer", "A material returns the destruction's observer that was set last.",
     [](HostLibrary& host) { withEachMaterial(host, expectKeepsObserver); }},
    {"media.tell-observer-once",
     "A material tells its observer once, on the thread of the last release and not before.",
     [](HostLibrary& host) { withEachMaterial(host, expectTellsObserverOnce); }},
    {"media.forget-observer", "An observer that was taken off a material or replaced is not told.",
     [](HostLibrary& host) { withEachMaterial(host, expectForgetsObserver); }},
    {"media.are-asked-for-interfaces",
     "A material has IDmBaseObj, IDmBaseMedia and IDmSourceMedia by exactly these names, and none "
     "by null or other names.",
     [](HostLibrary& host) {
         withEachMaterial(host,
                          [](auto object) { expectInterfaces(std::move(object), interfaces); });
     }},
    {"media.queries-add-no-reference", "Asking a material for an interface adds no reference.",
     [](HostLibrary& host) {
         withEachMaterial(
             host, [](auto object) { expectQueryAddsNoReference(std::move(object), interfaces); });
     }},
    {"media.gives-own-interfaces",
     "The pointers that a material gives by name are exactly those of its interfaces, and the same "
     "each time.",
     givesOwnInterfaces},
    {"media.video-is-time-based", "The type of a video is 2, 8 or 0x40000.",
     [](HostLibrary& host) {
         const std::uint32_t type = host.video().media->getMediaType();
         expect(isTimeBased(type), "getMediaType() of a video", "2, 8 or 262144", shown(type));
     }},
    {"media.photo-is-still", "The type of a photo is none of a time-based material.",
     [](HostLibrary& host) {
         const std::uint32_t type = host.photo().media->getMediaType();
         expect(!isTimeBased(type), "getMediaType() of a photo", "neither 2, 8 nor 262144",
                shown(type));
     }},
    {"media.video-has-duration", "The duration of a video is its length in ticks.", durations},
    {"media.photo-lasts-one-tick", "The duration of a photo is 1.",
     [](HostLibrary& host) {
         expectEqual("getDuration() of a photo", host.photo().media->getDuration(), 1);
     }},
    {"media.has-name", "A material's file name is that of its file, and stays valid.", names},
    {"media.has-source",
     "A material of a file has one source, the same each time, and no reference is added.",
     hasSource},
    {"media.repeats-answers", "A material's answers are the same whenever it is asked.",
     repeatsAnswers},
    {"media.answers-on-threads", "A material answers on several threads at once.",
     answersOnThreads},
    {"media.are-made-on-threads", "Materials may be made on several threads at once.",
     areMadeOnThreads},
    {"media.of-no-such-file", "A file that is missing, a directory and a text give no material.",
     refusesOtherFiles},
    {"media.of-null", "createValidationMaterial gives null for a null argument.", refusesNull},
};

}  // namespace validator
