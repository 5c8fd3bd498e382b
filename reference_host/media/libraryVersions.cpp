#include "reference_host/media/libraryVersions.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#ifdef REFERENCE_HOST_HAS_LIBHEIF
#include <libheif/heif.h>
#endif

namespace reference_host::media {
namespace {

std::string dotted(unsigned version) {
    return std::to_string(AV_VERSION_MAJOR(version)) + "." +
           std::to_string(AV_VERSION_MINOR(version)) + "." +
           std::to_string(AV_VERSION_MICRO(version));
}

}  // namespace

std::string libraryVersions() {
    std::string versions =
        "libavformat " + dotted(avformat_version()) + ", libavcodec " + dotted(avcodec_version());
#ifdef REFERENCE_HOST_HAS_LIBHEIF
    versions += ", libheif ";
    versions += heif_get_version();
#endif
    return versions;
}

}  // namespace reference_host::media
