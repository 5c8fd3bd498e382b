#pragma once

#include <string>
#include <string_view>

namespace autotrim {

/// Puts something in the place of the standard streams that the process was started without, so
/// that no file opened later takes their descriptors and gets what is meant for them. Writing there
/// still fails. To be called before any file is opened.
void reserveStandardStreams();

/// Writes `text` to the standard output. Throws std::runtime_error when not all of it arrives.
void writeToStandardOutput(std::string_view text);

/// A file that is going to hold a result. It is opened before the work begins, so that what cannot
/// be written shows at once; what it held before stays there until the result is written.
class ResultFile {
public:
    /// Opens or makes the file. Throws std::runtime_error, which names it and the reason.
    explicit ResultFile(const std::string& name);
    ResultFile(const ResultFile&) = delete;
    ResultFile& operator=(const ResultFile&) = delete;
    ~ResultFile();

    /// Makes `text` all that the file holds. Throws like the constructor.
    void write(std::string_view text);

private:
    [[noreturn]] void fail(int error) const;

    std::string name_;
    int descriptor_;
};

}  // namespace autotrim
