#include "tests/autotrim/Process.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace autotrim {
namespace {

void check(bool good, const char* what) {
    if (!good) throw std::system_error(errno, std::generic_category(), what);
}

/// Returns the reading and the writing end of something.
std::pair<int, int> openPipe() {
    int ends[2];
    check(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
    return {ends[0], ends[1]};
}

/// The same for a terminal of 80 columns.
std::pair<int, int> openTerminal() {
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    check(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0, "posix_openpt");
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    check(slave >= 0, "ptsname");
    const winsize size{24, 80, 0, 0};
    check(ioctl(slave, TIOCSWINSZ, &size) == 0, "TIOCSWINSZ");
    return {master, slave};
}

/// The environment, with a terminal that can redraw and no cache of the user's.
std::vector<std::string> environmentIn(const std::filesystem::path& home) {
    std::vector<std::string> variables = {"TERM=xterm", "HOME=" + home.string()};
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (text.rfind("TERM=", 0) != 0 && text.rfind("HOME=", 0) != 0 &&
            text.rfind("XDG_CACHE_HOME=", 0) != 0) {
            variables.push_back(text);
        }
    }
    return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

std::vector<std::string> Ended::errorLines() const {
    std::vector<std::string> lines;
    std::istringstream text(errors);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

Process::Process(const std::vector<std::string>& arguments, ErrorsTo errorsTo,
                 const std::filesystem::path& outputFile)
    : keptOutput_(directory_.path() / "output") {
    const auto [reading, writing] = errorsTo == ErrorsTo::terminal ? openTerminal() : openPipe();
    errorsEnd_ = reading;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    const std::filesystem::path output = outputFile.empty() ? keptOutput_ : outputFile;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT,
                                     0666);
    posix_spawn_file_actions_adddup2(&actions, writing, STDERR_FILENO);
    if (errorsTo == ErrorsTo::nowhere) {
        posix_spawn_file_actions_addclose(&actions, STDERR_FILENO);
    }
    posix_spawn_file_actions_addchdir_np(&actions, AUTOTRIM_CLIPS);

    std::vector<std::string> texts = {AUTOTRIM_PROGRAM};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = environmentIn(directory_.path());
    const int error = posix_spawn(&pid_, AUTOTRIM_PROGRAM, &actions, nullptr,
                                  pointersTo(texts).data(), pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(writing);
    if (error != 0) throw std::system_error(error, std::generic_category(), AUTOTRIM_PROGRAM);
}

Process::~Process() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(errorsEnd_);
}

bool Process::readErrors() {
    char bytes[4096];
    const ssize_t count = read(errorsEnd_, bytes, sizeof bytes);
    // A terminal ends with an error when its other side is closed.
    if (count <= 0) return false;
    errors_.append(bytes, static_cast<std::size_t>(count));
    return true;
}

std::string Process::readErrorLine() {
    std::size_t end = errors_.find('\n', taken_);
    while (end == std::string::npos && readErrors())
        end = errors_.find('\n', taken_);
    if (end == std::string::npos) return {};
    const std::size_t begin = std::exchange(taken_, end + 1);
    return errors_.substr(begin, end - begin);
}

void Process::readErrorsUntil(const std::string& text) {
    while (errors_.find(text) == std::string::npos && readErrors()) {
    }
}

void Process::send(int signal) const {
    check(kill(pid_, signal) == 0, "kill");
}

bool Process::endsWithin(std::chrono::nanoseconds time) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + time;
    pollfd readable{errorsEnd_, POLLIN, 0};
    for (auto left = time; left.count() > 0; left = deadline - Clock::now()) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        const timespec timeout{seconds.count(), (left - seconds).count()};
        if (ppoll(&readable, 1, &timeout, nullptr) > 0 && !readErrors()) return true;
    }
    return false;
}

Ended Process::wait() {
    while (readErrors()) {
    }
    int status = 0;
    check(waitpid(pid_, &status, 0) == pid_, "waitpid");
    pid_ = -1;
    std::ifstream output(keptOutput_, std::ios::binary);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            {std::istreambuf_iterator<char>(output), {}},
            errors_};
}

Ended run(const std::vector<std::string>& arguments) {
    return Process(arguments).wait();
}

}  // namespace autotrim
