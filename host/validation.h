#pragma once

#include "host/IDmBaseObj.h"

extern "C" {

/// Makes a material of `file`, a video or a photo, for programs that check a host: these know no
/// other way to one. The component never calls it, and no host that is shipped needs it.
///
/// `file` is a path as UTF-8 text. Returns the material with one reference, or null where the host
/// can make nothing of the file, and for a null argument. `cacheDirectory`, a directory that
/// exists, is where the material's mediaInfoKey::media_cache lies, as it or below it; empty,
/// nothing is kept, and media_cache is empty. Both texts stay the caller's. Any thread.
KOR::IDmBaseObj* createValidationMaterial(const char* file, const char* cacheDirectory);
}
