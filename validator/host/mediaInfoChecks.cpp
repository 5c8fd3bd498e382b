#include <cstring>

#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

using KOR::KorValue;

const std::vector<const char*> unknownKeys = {
    "", "media", "media_lengt", "Media_Cache", "media_cache ", "unknown"};

/// A value whose every byte shows whether it was written to.
KorValue marked() {
    KorValue value;
    std::memset(static_cast<void*>(&value), 0x5A, sizeof(value));
    return value;
}

void expectUntouched(const std::string& what, const KorValue& value) {
    const KorValue untouched = marked();
    expect(std::memcmp(&value, &untouched, sizeof(value)) == 0, "the value after " + what,
           "as it was", "another one");
}

/// Calls `action` with the source of a video and of a photo.
template <typename Action>
void withEachSource(const HostLibrary& host, Action action) {
    const Material video = host.video();
    action(*video.source);
    const Material photo = host.photo();
    action(*photo.source);
}

void refuseUnknownKeys(HostLibrary& host) {
    withEachSource(host, [](KOR::IDmMediaSource& source) {
        for (const char* const key : unknownKeys) {
            KorValue value = marked();
            expectEqual("getMediaInfo() of " + shown(key), source.getMediaInfo(key, &value),
                        KOR::statusFailed);
            expectUntouched("getMediaInfo() of " + shown(key), value);
        }
    });
}

void refuseNull(HostLibrary& host) {
    withEachSource(host, [](KOR::IDmMediaSource& source) {
        KorValue value = marked();
        expectEqual("getMediaInfo() of null", source.getMediaInfo(nullptr, &value),
                    KOR::statusFailed);
        expectUntouched("getMediaInfo() of null", value);
        for (const char* const key : {"media_length", "media_cache", "unknown"})
            expectEqual("getMediaInfo() of " + shown(key) + " into null",
                        source.getMediaInfo(key, nullptr), KOR::statusFailed);
        expectEqual("getMediaInfo() of null into null", source.getMediaInfo(nullptr, nullptr),
                    KOR::statusFailed);
    });
}

void giveEmptyTexts(HostLibrary& host) {
    withEachSource(host, [](KOR::IDmMediaSource& source) {
        for (const char* const key : unknownKeys)
            expectEqual("getMediaInfoText() of " + shown(key), shown(source.getMediaInfoText(key)),
                        shown(""));
        expectEqual("getMediaInfoText() of null", shown(source.getMediaInfoText(nullptr)),
                    shown(""));
    });
}

void photoLength(HostLibrary& host) {
    const Material photo = host.photo();
    KorValue value = marked();
    expectEqual("getMediaInfo() of media_length",
                photo.source->getMediaInfo("media_length", &value), KOR::statusOk);
    expectEqual("the type of media_length", std::uint32_t{value.type},
                std::uint32_t{KorValue::int64});
    expectEqual("media_length of an ordinary photo", value.asInt64, 0);
}

void cacheAsValue(HostLibrary& host) {
    withEachSource(host, [](KOR::IDmMediaSource& source) {
        const std::string text = source.getMediaInfoText("media_cache");
        if (text.size() >= sizeof(KorValue::asText)) skip("the path is too long for a value");
        KorValue value = marked();
        expectEqual("getMediaInfo() of media_cache", source.getMediaInfo("media_cache", &value),
                    KOR::statusOk);
        expectEqual("the type of media_cache", std::uint32_t{value.type},
                    std::uint32_t{KorValue::text});
        expect(std::memchr(value.asText, 0, sizeof(value.asText)) != nullptr,
               "the text of media_cache", "a terminating zero", "none");
        expectEqual("media_cache as a value", std::string(value.asText), text);
    });
}

void cachePlace(HostLibrary& host) {
    const std::string directory = host.cacheDirectory().string();
    withEachSource(host, [&](KOR::IDmMediaSource& source) {
        const std::string text = source.getMediaInfoText("media_cache");
        const bool isBelow = text == directory || text.starts_with(directory + "/");
        expect(isBelow, "media_cache", shown(directory) + ", or a directory below it", shown(text));
    });
}

void noCache(HostLibrary& host) {
    const auto object = host.materialOf(host.videoFile(), {});
    expectObject("createValidationMaterial()", object.get());
    auto* const side = static_cast<KOR::IDmSourceMedia*>(object->queryInterface("IDmSourceMedia"));
    expectObject("queryInterface() of IDmSourceMedia", side);
    expectEqual("media_cache", shown(side->getSource()->getMediaInfoText("media_cache")),
                shown(""));
}

void cachesDiffer(HostLibrary& host) {
    if (!host.hasOurVideo()) skip("there is no second video");
    const Material first = host.video();
    const Material second = host.material(footage::shortVideo(host.occasion().scratch));
    expect(first.cache() != second.cache(), "media_cache of a second video", "another directory",
           shown(second.cache()));
}

void cacheIsFound(HostLibrary& host) {
    const std::string first = host.video().cache();
    if (host.video().cache() == first) return;
    warn("a new material of the same file has another media_cache: no result is found again");
}

void textsStay(HostLibrary& host) {
    withEachSource(host, [](KOR::IDmMediaSource& source) {
        const char* const text = source.getMediaInfoText("media_cache");
        const std::string copy = text;
        for (const char* const key : unknownKeys)
            source.getMediaInfoText(key);
        KorValue value;
        source.getMediaInfo("media_cache", &value);
        source.getMediaInfo("media_length", &value);
        expectEqual("the text of media_cache after other questions", std::string(text), copy);
    });
}

}  // namespace

const std::vector<HostCheck> mediaInfoChecks = {
    {"info.unknown-keys", "getMediaInfo fails for an unknown key and leaves the value as it was.",
     refuseUnknownKeys},
    {"info.null", "getMediaInfo fails for null arguments and writes nothing.", refuseNull},
    {"info.texts-are-never-null",
     "getMediaInfoText gives an empty text for unknown keys and for null.", giveEmptyTexts},
    {"info.photo-length", "media_length of an ordinary photo is an int64 of 0.", photoLength},
    {"info.cache-as-value", "media_cache is the same text as a value, where it has room.",
     cacheAsValue},
    {"info.cache-lies-below", "media_cache lies below the directory that was given, or is it.",
     cachePlace},
    {"info.cache-is-empty-without-a-directory", "media_cache is empty where nothing is to be kept.",
     noCache},
    {"info.caches-differ", "Two videos have a directory each.", cachesDiffer},
    {"info.cache-is-found-again",
     "A new material of the same file finds what was kept for the one before; a directory for each "
     "material is allowed, and gets a warning.",
     cacheIsFound},
    {"info.texts-stay-valid", "A text stays as it is while the source lives, whatever is asked.",
     textsStay},
};

}  // namespace validator
