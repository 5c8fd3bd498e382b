#include <memory>
#include <stdexcept>
#include <type_traits>

#include <windows.h>

#include "validator/Interrupt.h"
#include "validator/Subprocess.h"

namespace validator {
namespace {

struct CloseHandleOf {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf>;

std::wstring wide(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).wstring();
}

/// Appends an argument as the C runtime takes it apart again: backslashes count only before quotes.
void appendQuoted(std::wstring& line, const std::wstring& argument) {
    if (!line.empty()) line += L' ';
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"') line.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        line += letter;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

Handle opened(const std::filesystem::path& file, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE handle = CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      &inherited, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot open " + file.string());
    return Handle(handle);
}

/// Ends every process in it when it goes.
Handle makeJob() {
    Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

/// Waits for the process, at most for `limit` or until an interrupt. Returns whether it has ended.
bool endedWithin(std::chrono::milliseconds limit, HANDLE process) {
    // The end is noticed at once, an interrupt after this long.
    constexpr DWORD pauseMs = 20;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (WaitForSingleObject(process, pauseMs) != WAIT_OBJECT_0) {
        if (isInterrupted() || std::chrono::steady_clock::now() >= deadline) return false;
    }
    return true;
}

Ending endingBy(DWORD code) {
    return {code == 0, true, "ended with exit status " + std::to_string(code)};
}

}  // namespace

Ending runProgram(const std::vector<std::string>& command, const std::filesystem::path& output,
                  std::chrono::milliseconds limit) {
    if (isInterrupted()) throw Interrupted();
    std::wstring line;
    for (const std::string& argument : command)
        appendQuoted(line, wide(argument));
    const Handle input = opened("NUL", GENERIC_READ, OPEN_EXISTING);
    const Handle streams = opened(output, GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOW setting{};
    setting.cb = sizeof setting;
    setting.dwFlags = STARTF_USESTDHANDLES;
    setting.hStdInput = input.get();
    setting.hStdOutput = streams.get();
    setting.hStdError = streams.get();
    const Handle job = makeJob();
    PROCESS_INFORMATION made{};
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                       CREATE_SUSPENDED | CREATE_NO_WINDOW, nullptr, nullptr, &setting,
                       &made) == 0) {
        throw std::runtime_error("cannot run " + command.front() + ": error " +
                                 std::to_string(GetLastError()));
    }
    const Handle process(made.hProcess);
    const Handle thread(made.hThread);
    AssignProcessToJobObject(job.get(), process.get());
    ResumeThread(thread.get());
    if (!endedWithin(limit, process.get())) {
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), INFINITE);
        if (isInterrupted()) throw Interrupted();
        return {false, false, "had not ended after " + std::to_string(limit.count()) + " ms"};
    }
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    return endingBy(code);
}

std::filesystem::path ownProgram() {
    std::wstring name(32768, L'\0');  // the most that the system gives
    const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (length == 0) throw std::runtime_error("the program does not know its own file");
    name.resize(length);
    return name;
}

}  // namespace validator
