#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"

#include <cstring>

#include "modules/BusinessLayer/MaterialAnalysis/ValuePayload.h"

namespace KOR {

namespace {

/// Returns the length that the source gives a still material, or 0.
std::int64_t ownLengthOf(IDmBaseMedia* photo) {
    KorValue length;
    std::memset(&length, 0, sizeof length);
    if (IDmMediaSource* const source = sourceOf(photo)) {
        source->getMediaInfo(mediaInfoKey::media_length, &length);
    }
    return payloadOf<std::int64_t>(&length);
}

}  // namespace

bool isPhotoMaterial(IDmBaseMedia* media) {
    return media == nullptr || (media->getMediaType() != mediaTypeVideo &&
                                media->getMediaType() != mediaTypeAudioVideo &&
                                media->getMediaType() != mediaTypeSequence);
}

std::int64_t mediaDuration(IDmBaseMedia* media) {
    if (isPhotoMaterial(media) && ownLengthOf(media) <= 0) return 1;
    return media->getDuration();
}

IDmSourceMedia* sourceMediaOf(IDmBaseMedia* media) {
    if (media == nullptr) return nullptr;
    return static_cast<IDmSourceMedia*>(media->queryInterface("IDmSourceMedia"));
}

IDmMediaSource* sourceOf(IDmBaseMedia* media) {
    IDmSourceMedia* const sourceMedia = sourceMediaOf(media);
    return sourceMedia == nullptr ? nullptr : sourceMedia->getSource();
}

}  // namespace KOR
