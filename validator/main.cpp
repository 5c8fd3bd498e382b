#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "validator/Checker.h"
#include "validator/ExitCode.h"
#include "validator/Interrupt.h"
#include "validator/Judgement.h"
#include "validator/Options.h"
#include "validator/Report.h"

namespace validator {
namespace {

void print(const std::string& text) {
    const std::size_t written = std::fwrite(text.data(), 1, text.size(), stdout);
    if (written == text.size() && std::fflush(stdout) == 0) return;
    throw std::runtime_error("the report cannot be written");
}

int carryOut(const Options& options) {
    const Checker checker(programOf(options.side));
    const auto all = checker.list();
    const auto checks = chosen(all, options.only);
    if (options.lists) {
        print(options.json ? listJson(checks) : listText(checks));
        return exitCode::ok;
    }
    // Whatever is chosen needs the library.
    auto judged = judge(checker, chosen(all, {"library.loads"}), options);
    if (!hasFaults(judged)) judged = judge(checker, checks, options);
    print(options.json ? reportJson(judged, options) : reportText(judged, options));
    return hasFaults(judged) ? exitCode::foundFaults : exitCode::ok;
}

int run(const std::vector<std::string>& arguments) {
    const auto parsed = parseOptions(arguments);
    if (const auto* const answer = std::get_if<Answer>(&parsed)) {
        std::fputs(answer->text.c_str(), answer->exitCode == exitCode::ok ? stdout : stderr);
        return answer->exitCode;
    }
    return carryOut(std::get<Options>(parsed));
}

}  // namespace
}  // namespace validator

int main(int argumentCount, char** arguments) {
    try {
        validator::noticeInterrupts();
        return validator::run({arguments + 1, arguments + argumentCount});
    } catch (const validator::Interrupted&) {
        std::fprintf(stderr, "material-analysis-validator: interrupted\n");
        return validator::exitCode::interrupted;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "material-analysis-validator: %s\n", error.what());
        return validator::exitCode::wrongUse;
    }
}
