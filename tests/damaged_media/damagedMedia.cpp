#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

/// Gives autotrim damaged copies of files, each to a process of its own, and names those that it
/// does not survive: it may refuse a file or use it, but not crash, hang or take too much memory.
namespace damaged_media {
namespace {

using Bytes = std::vector<char>;

struct Settings {
    std::string program;
    std::vector<std::string> files;
    std::string keep;        ///< where copies that did harm are kept
    int everyPercent = 1;    ///< steps of truncation
    int flips = 50;          ///< copies with flipped bits
    std::uint64_t seed = 1;  ///< decides which bits
    long mebibytes = 1024;   ///< of memory; 0: any amount
    int seconds = 60;        ///< of time
    unsigned jobs = 2;
};

/// Puts the files in it, in the order of their names, in the place of each directory.
std::vector<std::string> filesOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> files;
    for (const std::string& argument : arguments) {
        if (!std::filesystem::is_directory(argument)) {
            files.push_back(argument);
            continue;
        }
        const auto before = static_cast<std::ptrdiff_t>(files.size());
        for (const auto& entry : std::filesystem::directory_iterator(argument))
            files.push_back(entry.path().string());
        std::sort(files.begin() + before, files.end());
    }
    return files;
}

Bytes contentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + file);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void write(const std::filesystem::path& file, const Bytes& bytes) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
}

Bytes truncated(const Bytes& whole, int percent) {
    const std::size_t length = whole.size() * static_cast<std::size_t>(percent) / 100;
    return {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)};
}

/// Flips 1 bit in the first copies and up to 4096 in later ones; every third copy in its first 4
/// KiB only, where the headers are.
Bytes flipped(const Bytes& whole, int copy, std::uint64_t seed) {
    Bytes bytes = whole;
    if (bytes.empty()) return bytes;
    std::mt19937_64 random(seed * 1000003 + static_cast<std::uint64_t>(copy));
    const std::size_t reach =
        copy % 3 == 0 ? std::min<std::size_t>(bytes.size(), 4096) : bytes.size();
    const int bits = 1 << (copy % 13);
    for (int i = 0; i < bits; ++i) {
        const std::uint64_t choice = random();
        bytes[choice / 8 % reach] ^= static_cast<char>(1 << (choice % 8));
    }
    return bytes;
}

/// Starts the program on a file, and returns its process, whose group is its own.
pid_t start(const std::string& program, const std::string& file) {
    std::vector<std::string> words = {program,      "--no-cache", "--photos", "--min-scene", "0",
                                      "--progress", "none",       "--",       file};
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, arguments.front(), &streams, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&streams);
    if (error != 0) throw std::runtime_error("cannot run " + program + ": " + std::strerror(error));
    return process;
}

/// Returns what is wrong with how the program dealt with the file; empty when nothing is.
std::string harmOf(const std::string& file, const Settings& settings) {
    const pid_t process = start(settings.program, file);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(settings.seconds);
    int status = 0;
    rusage usage{};
    while (wait4(process, &status, WNOHANG, &usage) == 0) {
        if (std::chrono::steady_clock::now() >= deadline) {
            kill(process, SIGKILL);
            wait4(process, &status, 0, &usage);
            return "takes more than " + std::to_string(settings.seconds) + " s";
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
    if (WEXITSTATUS(status) > 1) return "exit code " + std::to_string(WEXITSTATUS(status));
    const long mebibytes = usage.ru_maxrss / 1024;
    if (settings.mebibytes == 0 || mebibytes <= settings.mebibytes) return "";
    return std::to_string(mebibytes) + " MiB of memory";
}

/// One copy to be made of a file.
struct Copy {
    std::size_t file;
    std::string name;
    std::function<Bytes(const Bytes&)> damage;
};

std::vector<Copy> copiesOf(std::size_t file, const Settings& settings) {
    std::vector<Copy> copies;
    for (int percent = 0; percent < 100; percent += settings.everyPercent) {
        copies.push_back({file, "truncated-" + std::to_string(percent),
                          [=](const Bytes& whole) { return truncated(whole, percent); }});
    }
    for (int flip = 0; flip < settings.flips; ++flip) {
        copies.push_back(
            {file, "flipped-" + std::to_string(flip),
             [=, seed = settings.seed](const Bytes& whole) { return flipped(whole, flip, seed); }});
    }
    return copies;
}

class Run {
public:
    explicit Run(const Settings& settings) : settings_(settings) {
        for (std::size_t i = 0; i < settings.files.size(); ++i) {
            for (Copy& copy : copiesOf(i, settings))
                copies_.push_back(std::move(copy));
        }
        std::string name = std::filesystem::temp_directory_path() / "damaged-media-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
        directory_ = name;
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { std::filesystem::remove_all(directory_); }

    /// Tries every copy. Returns how many did harm.
    int tryAll() {
        std::vector<std::thread> workers;
        for (unsigned i = 0; i < settings_.jobs; ++i)
            workers.emplace_back([this] { work(); });
        for (std::thread& worker : workers)
            worker.join();
        std::printf("%zu damaged copies of %zu files: %d did harm\n", copies_.size(),
                    settings_.files.size(), harmful_);
        return harmful_;
    }

private:
    void work() {
        while (true) {
            const std::size_t number = next_++;
            if (number >= copies_.size()) return;
            attempt(copies_[number]);
        }
    }

    void attempt(const Copy& copy) {
        const std::filesystem::path original = settings_.files[copy.file];
        const std::string name =
            original.stem().string() + "-" + copy.name + original.extension().string();
        const std::filesystem::path file = directory_ / name;
        write(file, copy.damage(contentOf(original.string())));
        const std::string harm = harmOf(file.string(), settings_);
        if (!harm.empty()) report(file, harm);
        std::filesystem::remove(file);
    }

    void report(const std::filesystem::path& file, const std::string& harm) {
        const std::lock_guard lock(mutex_);
        ++harmful_;
        std::printf("%s: %s\n", file.filename().c_str(), harm.c_str());
        std::fflush(stdout);
        if (settings_.keep.empty()) return;
        std::filesystem::create_directories(settings_.keep);
        std::filesystem::copy_file(file, settings_.keep / file.filename(),
                                   std::filesystem::copy_options::overwrite_existing);
    }

    const Settings& settings_;
    std::vector<Copy> copies_;
    std::filesystem::path directory_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    int harmful_ = 0;
};

}  // namespace
}  // namespace damaged_media

int main(int argumentCount, char** arguments) {
    damaged_media::Settings settings;
    CLI::App app("Runs autotrim on damaged copies of files.");
    app.add_option("PROGRAM", settings.program, "autotrim")->required()->check(CLI::ExistingFile);
    app.add_option("FILE", settings.files, "Media files, or directories of them")
        ->required()
        ->check(CLI::ExistingPath);
    app.add_option("--every", settings.everyPercent, "Truncate at every so many percent")
        ->check(CLI::Range(1, 100));
    app.add_option("--flips", settings.flips, "Copies of each file with flipped bits")
        ->check(CLI::Range(0, 1000000));
    app.add_option("--seed", settings.seed, "Decides which bits");
    app.add_option("--mebibytes", settings.mebibytes, "The most memory; 0: any amount");
    app.add_option("--seconds", settings.seconds, "The most time for a copy");
    app.add_option("--jobs", settings.jobs, "Copies at once")->check(CLI::Range(1U, 64U));
    app.add_option("--keep", settings.keep, "Keep copies that did harm in this directory");
    CLI11_PARSE(app, argumentCount, arguments);
    try {
        settings.files = damaged_media::filesOf(settings.files);
        return damaged_media::Run(settings).tryAll() == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "damaged_media: %s\n", error.what());
        return 2;
    }
}
