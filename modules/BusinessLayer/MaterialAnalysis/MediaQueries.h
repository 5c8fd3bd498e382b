#pragma once

#include <cstdint>

#include "host/media.h"

namespace KOR {

/// Says whether `media` is a still material: its type code marks no time-based one. Null is still.
bool isPhotoMaterial(IDmBaseMedia* media);

/// Returns how long `media` counts in ticks: its duration, but 1 for a photo whose source gives it
/// no length of its own, so that it can be divided by. Null counts as such a photo.
std::int64_t mediaDuration(IDmBaseMedia* media);

/// Returns the interface "IDmSourceMedia" of `media`, or null. Null gives null.
IDmSourceMedia* sourceMediaOf(IDmBaseMedia* media);

/// Returns the source of `media`, or null where there is none. Null gives null.
IDmMediaSource* sourceOf(IDmBaseMedia* media);

}  // namespace KOR
