#include <csignal>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "validator/Interrupt.h"
#include "validator/Subprocess.h"

extern char** environ;

namespace validator {
namespace {

/// Where the streams of a program go, and its process group, which is its own.
class Setting {
public:
    explicit Setting(const std::filesystem::path& output) {
        posix_spawn_file_actions_init(&streams_);
        posix_spawn_file_actions_addopen(&streams_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&streams_, STDOUT_FILENO, output.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&streams_, STDOUT_FILENO, STDERR_FILENO);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&attributes_, 0);
    }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;
    ~Setting() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&streams_);
    }

    pid_t start(const std::vector<std::string>& command) const {
        std::vector<char*> arguments;
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        pid_t process = 0;
        const int error = posix_spawn(&process, arguments.front(), &streams_, &attributes_,
                                      arguments.data(), environ);
        if (error == 0) return process;
        throw std::runtime_error("cannot run " + command.front() + ": " + std::strerror(error));
    }

private:
    posix_spawn_file_actions_t streams_;
    posix_spawnattr_t attributes_;
};

/// Waits for the process, at most until `deadline` or an interrupt. Returns whether it has ended by
/// then. Its number stays its own, and that of its group, until its status is taken.
bool endedBefore(std::chrono::steady_clock::time_point deadline, pid_t process) {
    // A check takes a few milliseconds; looking this often costs nothing beside it.
    constexpr auto pause = std::chrono::milliseconds(1);
    siginfo_t ended{};
    while (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           ended.si_pid == 0) {
        if (isInterrupted() || std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

Ending endingBy(int status) {
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        return {false, true,
                "ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")"};
    }
    const int code = WEXITSTATUS(status);
    return {code == 0, true, "ended with exit status " + std::to_string(code)};
}

}  // namespace

Ending runProgram(const std::vector<std::string>& command, const std::filesystem::path& output,
                  std::chrono::milliseconds limit) {
    if (isInterrupted()) throw Interrupted();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    const pid_t process = Setting(output).start(command);
    const bool isInTime = endedBefore(deadline, process);
    kill(-process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    if (isInTime) return endingBy(status);
    if (isInterrupted()) throw Interrupted();
    return {false, false, "had not ended after " + std::to_string(limit.count()) + " ms"};
}

std::filesystem::path ownProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

}  // namespace validator
