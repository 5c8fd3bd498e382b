#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "validator/check/checker.h"
#include "validator/check/expect.h"

/// A program that holds checks, as those of the validator do, which end in every way that there is.
namespace validator {
namespace {

[[noreturn]] void hang() {
    while (true)
        std::this_thread::sleep_for(std::chrono::hours(1));
}

/// What a check is about, and does not survive its end.
struct Fragile {
    explicit Fragile(const Occasion&) {}
    ~Fragile() { std::abort(); }
};

const std::vector<Check<Fragile>> fragileChecks = {
    {"odd.fails-before-its-subject-crashes", "What fails is well.",
     [](Fragile&) { fail("it", "well", "not well"); }},
    {"odd.passes-before-its-subject-crashes", "The subject ends well.", [](Fragile&) {}},
};

const std::vector<RunnableCheck> checks = {
    {"odd.passes", "Nothing is wrong.", [](const Occasion&) {}},
    {"odd.fails", "One is two.", [](const Occasion&) { expectEqual("one", 1, 2); }},
    {"odd.warns", "All is well, almost.",
     [](const Occasion&) {
         warn("first");
         warn("second");
     }},
    {"odd.warns-and-fails", "It is not well, either.",
     [](const Occasion&) {
         warn("beware");
         fail("it", "well", "not well");
     }},
    {"odd.skips", "There is something to try.", [](const Occasion&) { skip("there is nothing"); }},
    {"odd.throws", "Nothing is thrown.",
     [](const Occasion&) { throw std::runtime_error("thrown"); }},
    {"odd.throws-what-is-no-exception", "Nothing odd is thrown.", [](const Occasion&) { throw 1; }},
    {"odd.crashes", "The process lives on.",
     [](const Occasion&) {
         std::puts("last words");
         std::abort();
     }},
    {"odd.crashes-after-all-was-well", "The process lives on.",
     [](const Occasion&) {
         expectEqual("one", 1, 1);
         expect(true, "the last thing", "well", "not well");
         std::abort();
     }},
    {"odd.ends-early", "The process does not end.", [](const Occasion&) { std::_Exit(0); }},
    {"odd.crashes-afterwards", "The process lives on to its end.",
     [](const Occasion&) { std::atexit([] { std::abort(); }); }},
    {"odd.fails-and-crashes", "The process lives on after a failure.",
     [](const Occasion&) {
         std::atexit([] { std::abort(); });
         fail("it", "well", "not well");
     }},
    {"odd.finds-much", "Everything may be found.",
     [](const Occasion&) {
         std::string text = "xx";
         while (text.size() < 8000000)
             text += "素";
         fail("it", "little", text);
     }},
    {"odd.hangs", "The process comes to its end.", [](const Occasion&) { hang(); }},
    {"odd.prints-much", "Everything may be printed.",
     [](const Occasion&) {
         const std::string text(1 << 20, 'x');
         for (int i = 0; i < 100; ++i)
             std::puts(text.c_str());
     }},
    {"odd.leaves-files", "Files may be left.",
     [](const Occasion& occasion) {
         std::ofstream(occasion.scratch / "left") << "left";
         std::ofstream(std::filesystem::temp_directory_path() / "left, too") << "left";
     }},
    {"odd.takes-much-memory", "There is no end of memory.",
     [](const Occasion&) {
         std::vector<std::vector<char>> blocks;
         while (true)
             blocks.emplace_back(1 << 26);
     }},
    {"odd.tells-its-occasion", "A check knows what it was given.",
     [](const Occasion& occasion) {
         fail(std::to_string(occasion.seed), occasion.library,
              occasion.video + " and " + occasion.photo);
     }},
};

}  // namespace
}  // namespace validator

int main(int argumentCount, char** arguments) {
    std::vector<validator::RunnableCheck> checks = validator::checks;
    append(checks, validator::fragileChecks);
    return validator::checkerMain(argumentCount, arguments, checks);
}
