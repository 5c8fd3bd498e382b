#include "host/validation.h"
#include "reference_host/ReferenceHost.h"

KOR::IDmBaseObj* createValidationMaterial(const char* file, const char* cacheDirectory) {
    if (file == nullptr || cacheDirectory == nullptr) return nullptr;
    return reference_host::importMaterial(file, cacheDirectory).object;
}
