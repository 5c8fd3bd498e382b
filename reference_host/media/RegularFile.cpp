#include "reference_host/media/RegularFile.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reference_host/media/MediaError.h"

namespace reference_host::media {
namespace {

[[noreturn]] void refuse(int error) {
    if (error == ENOENT || error == ENOTDIR) throw MediaError("there is no such file");
    if (error == EACCES || error == EPERM) throw MediaError("the file may not be read");
    throw MediaError("the file cannot be opened: " + std::generic_category().message(error));
}

void requireRegular(const struct stat& status) {
    if (S_ISDIR(status.st_mode)) throw MediaError("it is a directory");
    if (!S_ISREG(status.st_mode)) throw MediaError("it is not a regular file");
    if (status.st_size == 0) throw MediaError("the file is empty");
}

int openRegular(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) refuse(errno);
    requireRegular(status);
    // Something else may have taken the file's place since: never wait for a pipe's other end.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) refuse(errno);
    return descriptor;
}

}  // namespace

RegularFile::RegularFile(const std::filesystem::path& path) : descriptor_(openRegular(path)) {
    try {
        struct stat status {};
        if (::fstat(descriptor_, &status) != 0) refuse(errno);
        requireRegular(status);
        sizeBytes_ = status.st_size;
        modified_ = status.st_mtim;
    } catch (...) {
        ::close(descriptor_);
        throw;
    }
}

RegularFile::~RegularFile() {
    ::close(descriptor_);
}

std::ptrdiff_t RegularFile::readAt(std::int64_t offset, std::uint8_t* buffer,
                                   std::size_t size) const {
    std::ptrdiff_t got = 0;
    do {
        got = ::pread(descriptor_, buffer, size, offset);
    } while (got < 0 && errno == EINTR);
    return got < 0 ? -errno : got;
}

}  // namespace reference_host::media
