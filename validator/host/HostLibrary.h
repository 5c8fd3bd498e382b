#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "dynamic_library/DynamicLibrary.h"
#include "host/files.h"
#include "host/lists.h"
#include "host/media.h"
#include "host/tasks.h"
#include "validator/check/Check.h"
#include "validator/check/expect.h"
#include "validator/host/Held.h"

namespace validator {

constexpr std::int64_t second = KOR::ticksPerSecond;

/// A material of the candidate, with the sides of it that it has been asked for.
struct Material {
    Held<KOR::IDmBaseObj> object;
    KOR::IDmBaseMedia* media = nullptr;
    KOR::IDmSourceMedia* side = nullptr;
    KOR::IDmMediaSource* source = nullptr;

    /// The text of media_cache.
    std::string cache() const { return source->getMediaInfoText("media_cache"); }
};

/// Whether this is the type of a video; every other code stands for a photo.
constexpr bool isTimeBased(std::uint32_t type) {
    return type == KOR::mediaTypeAudioVideo || type == KOR::mediaTypeVideo ||
           type == KOR::mediaTypeSequence;
}

/// A candidate: a host's library, loaded as an editor's is, so that its services are there for
/// libraries that come later. It stays loaded until the process ends, since runs that were given up
/// may go on for a while; the check is skipped where it cannot be loaded.
///
/// Each service is asked for by its exported name, and the check fails where that is missing.
class HostLibrary {
public:
    explicit HostLibrary(const Occasion& occasion);

    const Occasion& occasion() const { return occasion_; }

    /// What the candidate exports under this name; null where it does not.
    void* exported(const char* name) const { return library_.symbol(name); }

    template <typename Function>
    Function* service(const char* name) const {
        void* const address = exported(name);
        if (address == nullptr) fail("the library", std::string("an export ") + name, "none");
        return reinterpret_cast<Function*>(address);
    }

    /// Each fails where the factory gives null, or the list does not take an element.
    Held<KOR::IKORIntList> intList(const std::vector<std::int32_t>& elements = {}) const;
    Held<KOR::IKORLonglongList> longlongList(const std::vector<std::int64_t>& elements = {}) const;
    Held<KOR::IKORVoidPtrList> borrowingList(const std::vector<void*>& elements = {}) const;
    Held<KOR::IKORVoidPtrList> owningList(const std::vector<void*>& elements = {}) const;

    KOR::Path path(const char* text) const;
    KOR::Path path(const std::string& text) const { return path(text.c_str()); }

    /// Makes a task of these types. Fails where the factory gives null.
    Held<KOR::IKorBaseTask> task(const std::vector<std::int32_t>& types) const;

    /// Makes a material of a file, which keeps its cache below `cacheDirectory`; null where the
    /// host makes nothing of it. The check is skipped where the host has no entry for that.
    Held<KOR::IDmBaseObj> materialOf(const std::filesystem::path& file,
                                     const std::filesystem::path& cacheDirectory) const;

    /// Makes a material, of the footage given from outside or of ours (see footage.h), and asks for
    /// its sides. Fails where one is missing.
    Material video() const;
    Material photo() const;

    /// The same of any file, for which the host has to make a material.
    Material material(const std::filesystem::path& file) const;

    /// The file of video(); ours is written when it is first asked for.
    std::filesystem::path videoFile() const;
    std::filesystem::path photoFile() const;

    /// Whether video() is of our own footage, of which more is known.
    bool hasOurVideo() const { return occasion_.video.empty(); }
    bool hasOurPhoto() const { return occasion_.photo.empty(); }

    /// A directory that exists, for what is kept of materials.
    std::filesystem::path cacheDirectory() const;

private:
    const Occasion& occasion_;
    const dynamic_library::DynamicLibrary& library_;
};

/// A claim about hosts.
using HostCheck = Check<HostLibrary>;

}  // namespace validator
