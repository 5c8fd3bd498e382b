#pragma once

#include <cstdint>

#include "host/IDmBaseObj.h"
#include "host/status.h"
#include "host/value.h"

namespace KOR {

/// Keys of the information that a source gives about itself.
namespace mediaInfoKey {

/// int64, ticks: how long a still material is shown on its own account. 0 for an ordinary photo.
constexpr const char* media_length = "media_length";

/// Text, UTF-8: the directory that keeps what has been computed for this material. Empty when
/// nothing may be kept, which is also the answer for a source on which a task has failed: from that
/// task's event 3 on, so that no empty result is ever stored as a success.
constexpr const char* media_cache = "media_cache";

}  // namespace mediaInfoKey

/// Media type codes of time-based materials. Every other code, 0 included, marks a still one.
constexpr std::uint32_t mediaTypeAudioVideo = 2;
constexpr std::uint32_t mediaTypeVideo = 8;
constexpr std::uint32_t mediaTypeSequence = 0x40000;

/// The code that reference hosts give to a still picture.
constexpr std::uint32_t mediaTypePhoto = 4;

/// Source type code of a source whose pictures cannot be reached by position: face detection on it
/// is handed no positions.
constexpr std::uint32_t sourceTypeUnseekable = 16;

/// What a material's content comes from. It is what an analysis task is given to read.
///
/// Lives as long as the media object that it belongs to. Any thread.
class IDmMediaSource {
public:
    /// 0. Fills `value` with the information stored under `key`. statusFailed when the source does
    /// not know the key, or for a null argument; `value` is then left as it was.
    virtual Status getMediaInfo(const char* key, KorValue* value) = 0;

    /// 1. Returns the text stored under `key` (UTF-8, of any length), or an empty one; never null.
    /// The text stays valid until the source dies.
    virtual const char* getMediaInfoText(const char* key) = 0;

protected:
    ~IDmMediaSource() = default;
};

/// The side of a material that has a source; obtained by the name "IDmSourceMedia".
class IDmSourceMedia {
public:
    /// 0. Returns the source, or null for a material without one. No reference is added.
    virtual IDmMediaSource* getSource() = 0;

    /// 1. Returns the source's type code; only sourceTypeUnseekable has a meaning to the component.
    virtual std::uint32_t getSourceType() = 0;

protected:
    ~IDmSourceMedia() = default;
};

/// The media-information part of a media object.
class IDmMediaInformation {
public:
    /// 0. Returns the media type code (above).
    virtual std::uint32_t getMediaType() = 0;

    /// 1. Returns the duration in ticks; 1 for a photo.
    virtual std::int64_t getDuration() = 0;

protected:
    ~IDmMediaInformation() = default;
};

/// A material: an imported video or photo. Obtained by the name "IDmBaseMedia".
///
/// Its answers do not change while it is part of a run, save that of mediaInfoKey::media_cache.
/// They may be asked for on any thread, and cheaply: a progress event asks for every duration.
class IDmBaseMedia : public virtual IDmBaseObj, public IDmMediaInformation {
public:
    /// 0. Returns the file name, zero-terminated and never null, valid as long as the object.
    virtual const char* getFileName() = 0;

protected:
    ~IDmBaseMedia() = default;
};

}  // namespace KOR
