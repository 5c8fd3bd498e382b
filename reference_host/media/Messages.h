#pragma once

#include <string>

namespace reference_host::media {

/// Sends FFmpeg's messages to the host's log from now on. May be called again without effect.
void routeMessages();

/// Keeps the first error that FFmpeg reports on this thread while the object lives: FFmpeg's return
/// codes tell that something failed, its messages tell why. Objects nest like scopes.
class FirstError {
public:
    FirstError();
    FirstError(const FirstError&) = delete;
    FirstError& operator=(const FirstError&) = delete;
    ~FirstError();

    /// Returns `reason`, with the error behind it in brackets where there was one.
    std::string explain(const std::string& reason) const;

    /// Returns the error's text, empty while there was none.
    const std::string& text() const { return text_; }

    /// Takes an error's text; the first one stays.
    void note(const std::string& text);

private:
    std::string text_;
    FirstError* outer_;
};

}  // namespace reference_host::media
