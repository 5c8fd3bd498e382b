#include "autotrim/Output.h"

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace autotrim {

void reserveStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free descriptor is the one that is opened.
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", O_RDONLY);
    }
}

void writeToStandardOutput(std::string_view text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !written) {
        throw std::runtime_error("cannot write to the standard output: " +
                                 std::generic_category().message(errno));
    }
}

ResultFile::ResultFile(const std::string& name)
    : name_(name), descriptor_(open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0) fail(errno);
}

ResultFile::~ResultFile() {
    if (descriptor_ >= 0) close(descriptor_);
}

void ResultFile::write(std::string_view text) {
    // A pipe or a device holds nothing that would have to go, and says so.
    if (ftruncate(descriptor_, 0) != 0 && errno != EINVAL) fail(errno);
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor_, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) fail(errno);
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    // Some file systems tell only now that there was no room.
    if (close(std::exchange(descriptor_, -1)) != 0) fail(errno);
}

void ResultFile::fail(int error) const {
    throw std::runtime_error("cannot write " + name_ + ": " +
                             std::generic_category().message(error));
}

}  // namespace autotrim
