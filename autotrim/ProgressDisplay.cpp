#include "autotrim/ProgressDisplay.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace autotrim {
namespace {

void writeToStandardError(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

class NoDisplay final : public ProgressDisplay {
public:
    void showOpening(const Progress&) override {}
    void show(const Progress&) override {}
    void clear() override {}
};

class MachineDisplay final : public ProgressDisplay {
public:
    void showOpening(const Progress&) override {}

    void show(const Progress& progress) override {
        if (shown_ == progress) return;
        shown_ = progress;
        writeToStandardError(progressLine(progress));
    }

    void clear() override {}

private:
    std::optional<Progress> shown_;
};

/// Redraws one line of a terminal in place.
class BarDisplay final : public ProgressDisplay {
public:
    ~BarDisplay() override { clear(); }

    void showOpening(const Progress& progress) override { draw(openingLine(progress, columns())); }

    void show(const Progress& progress) override {
        const auto left = remaining_.at(progress.percent, RemainingTime::Clock::now());
        draw(progressBar(progress, left, columns()));
    }

    void clear() override {
        if (!line_.empty()) writeToStandardError("\r\x1B[K");
        line_.clear();
    }

private:
    static std::size_t columns() {
        winsize size{};
        const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
        // Writing into the last column would make some terminals go on to the next line.
        return known ? size.ws_col - std::size_t{1} : 79;
    }

    void draw(const std::string& line) {
        if (line == line_) return;
        line_ = line;
        writeToStandardError("\r" + line + "\x1B[K");
    }

    std::string line_;
    RemainingTime remaining_;
};

bool standardErrorCanRedraw() {
    const char* const terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) == 1 && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

}  // namespace

std::unique_ptr<ProgressDisplay> makeProgressDisplay(ProgressStyle style) {
    if (style == ProgressStyle::machine) return std::make_unique<MachineDisplay>();
    if (style == ProgressStyle::automatic && standardErrorCanRedraw()) {
        return std::make_unique<BarDisplay>();
    }
    return std::make_unique<NoDisplay>();
}

}  // namespace autotrim
