#include "validator/Judgement.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <stdexcept>
#include <string_view>

namespace validator {
namespace {

bool isNamedBy(const ListedCheck& check, const std::string& name) {
    return check.id == name || std::string_view(check.id).substr(0, check.id.find('.')) == name;
}

}  // namespace

std::vector<ListedCheck> chosen(const std::vector<ListedCheck>& checks,
                                const std::vector<std::string>& only) {
    if (only.empty()) return checks;
    for (const std::string& name : only) {
        const bool isKnown = std::any_of(checks.begin(), checks.end(),
                                         [&](const auto& check) { return isNamedBy(check, name); });
        if (!isKnown) throw std::runtime_error("there is no check and no group " + name);
    }
    std::vector<ListedCheck> result;
    for (const ListedCheck& check : checks) {
        const bool isWanted = std::any_of(only.begin(), only.end(),
                                          [&](const auto& name) { return isNamedBy(check, name); });
        if (isWanted) result.push_back(check);
    }
    return result;
}

std::vector<Judged> judge(const Checker& checker, const std::vector<ListedCheck>& checks,
                          const Options& options) {
    std::vector<Judged> judged;
    for (const ListedCheck& check : checks)
        judged.push_back({check, {}});
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < judged.size(); i = next++)
            judged[i].verdict = checker.verdictOn(judged[i].check.id, options);
    };
    std::vector<std::future<void>> workers;
    for (unsigned i = 0; i < options.jobs; ++i)
        workers.push_back(std::async(std::launch::async, work));
    for (auto& worker : workers)
        worker.get();
    return judged;
}

}  // namespace validator
