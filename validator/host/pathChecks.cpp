#include <fstream>

#include "validator/host/exports.h"
#include "validator/host/groups.h"
#include "validator/host/onThreads.h"

namespace validator {
namespace {

namespace fs = std::filesystem;

const std::string& textOf(const HostLibrary& host, const KOR::Path& path) {
    return host.service<const std::string&(const KOR::Path&)>(exports::pathString)(path);
}

bool exists(const HostLibrary& host, const std::string& path) {
    return host.service<bool(const KOR::Path&)>(exports::exists)(host.path(path));
}

bool create(const HostLibrary& host, const std::string& path) {
    return host.service<bool(const KOR::Path&)>(exports::create)(host.path(path));
}

bool remove(const HostLibrary& host, const std::string& path) {
    return host.service<bool(const KOR::Path&)>(exports::remove)(host.path(path));
}

std::string joined(const HostLibrary& host, const std::string& base, const std::string& tail) {
    const auto join = host.service<KOR::Path(const KOR::Path&, const KOR::Path&)>(exports::join);
    return textOf(host, join(host.path(base), host.path(tail)));
}

/// Below the check's own directory; with a name that is not ASCII only.
std::string place(const HostLibrary& host, const std::string& name) {
    return host.occasion().scratch.string() + "/" + name;
}

std::string writtenFile(const HostLibrary& host, const std::string& name) {
    const std::string file = place(host, name);
    std::ofstream(file) << "content";
    return file;
}

const std::vector<std::string> texts = {"",
                                        "/",
                                        "a",
                                        "/a/b/",
                                        "a//b/../c/.",
                                        "\xC3\xA4\xE7\xB4\xA0",
                                        "\xFF\xFE",
                                        " a b ",
                                        "C:\\a",
                                        std::string(5000, 'x')};

void keepsText(HostLibrary& host) {
    for (const std::string& text : texts)
        expectEqual("string()", textOf(host, host.path(text)), text);
}

void keepsString(HostLibrary& host) {
    const auto construct = host.service<void(void*, std::string)>(exports::pathOfString);
    for (const std::string& text : texts) {
        alignas(KOR::Path) std::byte room[sizeof(KOR::Path)];
        construct(room, text);
        KOR::Path& path = *reinterpret_cast<KOR::Path*>(room);
        const std::string found = textOf(host, path);
        path.~Path();
        expectEqual("string()", found, text);
    }
}

void joins(HostLibrary& host) {
    for (const char* const base : {"/cache", "/cache/"}) {
        for (const char* const tail : {"analysis", "/analysis"})
            expectEqual("join() of " + shown(base) + " and " + shown(tail),
                        joined(host, base, tail), "/cache/analysis");
    }
    expectEqual("join() of \"/\" and \"a\"", joined(host, "/", "a"), "/a");
    expectEqual("join() of \"a\" and \"b/\"", joined(host, "a", "b/"), "a/b/");
}

void joinsManySlashes(HostLibrary& host) {
    expectEqual("join() of \"/cache//\" and \"//analysis\"", joined(host, "/cache//", "//analysis"),
                "/cache/analysis");
}

void joinsEmptySides(HostLibrary& host) {
    for (const char* const other : {"a", "/a", "a/", "/", ""}) {
        expectEqual("join() of \"\" and " + shown(other), joined(host, "", other), other);
        expectEqual("join() of " + shown(other) + " and \"\"", joined(host, other, ""), other);
    }
}

void joinsAsTheyAre(HostLibrary& host) {
    expectEqual("join() of \"a/../b//c\" and \"./d//\xC3\xA4/..\"",
                joined(host, "a/../b//c", "./d//\xC3\xA4/.."), "a/../b//c/./d//\xC3\xA4/..");
}

void seesWhatExists(HostLibrary& host) {
    const std::string file = writtenFile(host, "f\xC3\xA4.txt");
    expectEqual("exists() of a file", exists(host, file), true);
    expectEqual("exists() of a directory", exists(host, host.occasion().scratch.string()), true);
    expectEqual("exists() of what is missing", exists(host, place(host, "missing")), false);
    expectEqual("exists() of what lies below a file", exists(host, file + "/a"), false);
    fs::remove(file);
    expectEqual("exists() of a file that is gone", exists(host, file), false);
}

void creates(HostLibrary& host) {
    const std::string directory = place(host, "a/\xC3\xA4/c");
    expectEqual("create()", create(host, directory), true);
    expect(fs::is_directory(directory), "the directory", "it stands there", "not");
    expectEqual("create() of what stands there", create(host, directory), true);
}

void createsNothingOnFiles(HostLibrary& host) {
    const std::string file = writtenFile(host, "f");
    expectEqual("create() of a file's path", create(host, file), false);
    expectEqual("create() below a file", create(host, file + "/a"), false);
    expectEqual("the file's size", fs::file_size(file), std::uintmax_t{7});
}

void removes(HostLibrary& host) {
    const std::string file = writtenFile(host, "f\xC3\xA4");
    expectEqual("remove() of a file", remove(host, file), true);
    expectEqual("whether it is still there", fs::exists(file), false);
    expectEqual("remove() of what is gone", remove(host, file), false);
    expectEqual("remove() of what never was", remove(host, place(host, "missing/f")), false);
}

void removesNoDirectory(HostLibrary& host) {
    const std::string directory = place(host, "empty");
    fs::create_directory(directory);
    expectEqual("remove() of a directory", remove(host, directory), false);
    expect(fs::is_directory(directory), "the directory", "it stands there", "it is gone");
}

void throwsNothing(HostLibrary& host) {
    for (const std::string& path : {std::string(), "/" + std::string(300, 'x'),
                                    "/" + std::string(50000, 'x'), std::string("/missing/\xFF")}) {
        const std::string name = shown(path.substr(0, 20));
        expectEqual("exists() of " + name, exists(host, path), false);
        expectEqual("remove() of " + name, remove(host, path), false);
    }
    expectEqual("create() of a name that is too long",
                create(host, place(host, std::string(300, 'x'))), false);
    expectEqual("create() of \"\"", create(host, ""), false);
}

using Parts = std::vector<std::string>;

void splits(HostLibrary& host) {
    const auto split = host.service<Parts(const std::string&, char)>(exports::split);
    const auto expectParts = [&](const std::string& text, const Parts& parts) {
        expectEqual("split() of " + shown(text), split(text, ','), parts);
    };
    expectParts("a,b", {"a", "b"});
    expectParts("abc", {"abc"});
    expectParts("a b;c", {"a b;c"});
    expectEqual("split() at a zero byte", split(std::string("a\0b", 3), '\0'), Parts{"a", "b"});
    expectEqual("split() at a byte beyond ASCII",
                split("a\xFF"
                      "b",
                      '\xFF'),
                Parts{"a", "b"});
}

void splitsKeepEmptyParts(HostLibrary& host) {
    const auto split = host.service<Parts(const std::string&, char)>(exports::split);
    const auto expectParts = [&](const std::string& text, const Parts& parts) {
        expectEqual("split() of " + shown(text), split(text, ','), parts);
    };
    expectParts("a,,b", {"a", "", "b"});
    expectParts("", {""});
    expectParts(",", {"", ""});
    expectParts(",a,", {"", "a", ""});
    expectEqual("parts of a hundred thousand separators",
                split(std::string(100000, ','), ',').size(), std::size_t{100001});
}

void lengths(HostLibrary& host) {
    const auto length = host.service<std::size_t(const char*)>(exports::length);
    expectEqual("kor_strlen() of null", length(nullptr), std::size_t{0});
    expectEqual("kor_strlen() of \"\"", length(""), std::size_t{0});
    expectEqual("kor_strlen() of three bytes", length("\xE7\xB4\xA0"), std::size_t{3});
    expectEqual("kor_strlen() of a\\0b", length("a\0b"), std::size_t{1});
    expectEqual("kor_strlen() of a million bytes", length(std::string(1000000, 'a').c_str()),
                std::size_t{1000000});
}

void work(HostLibrary& host) {
    std::vector<int> made(4);
    onThreads(made.size(), [&](std::size_t n) {
        for (int i = 0; i < 50; ++i) {
            // All of them make the same directories.
            const std::string directory = joined(host, place(host, "many"), std::to_string(i));
            if (create(host, directory) && exists(host, directory)) ++made[n];
        }
    });
    expectEqual("directories that each of four threads has made or found", made,
                std::vector<int>(4, 50));
}

}  // namespace

const std::vector<HostCheck> pathChecks = {
    {"paths.null-is-empty", "A Path of null is empty.",
     [](HostLibrary& host) { expectEqual("string()", textOf(host, host.path(nullptr)), ""); }},
    {"paths.keep-text", "A Path keeps the text that it is made of byte for byte.", keepsText},
    {"paths.keep-strings", "So does a Path that is made of a std::string.", keepsString},
    {"paths.join-by-one-slash",
     "join puts exactly one \"/\" between both sides, whether or not one is there.", joins},
    {"paths.join-by-one-of-many",
     "join leaves one \"/\" between both sides where there are several.", joinsManySlashes},
    {"paths.join-empty-sides", "join of an empty side gives the other one as it is.",
     joinsEmptySides},
    {"paths.join-keeps-the-rest", "join changes nothing else of its sides.", joinsAsTheyAre},
    {"paths.exist", "exists sees files and directories, and nothing else.", seesWhatExists},
    {"paths.create-nested", "create makes a directory and those above it, or finds it there.",
     creates},
    {"paths.create-on-files", "create makes no directory where a file stands, nor below one.",
     createsNothingOnFiles},
    {"paths.remove-files", "remove deletes a file and says whether there was one.", removes},
    {"paths.remove-no-directories", "remove does not delete a directory.", removesNoDirectory},
    {"paths.answer-the-impossible",
     "For empty, overlong and unreadable paths the functions answer false, and throw nothing.",
     throwsNothing},
    {"paths.split", "split cuts a text at every separator, whichever byte that is.", splits},
    {"paths.split-keeps-empty-parts",
     "split keeps empty parts, and gives one, which is empty, for the empty text.",
     splitsKeepEmptyParts},
    {"paths.lengths", "kor_strlen counts bytes up to the terminating zero, and 0 for null.",
     lengths},
    {"paths.work-on-threads",
     "Paths may be joined, made and looked for on several threads at once.", work},
};

}  // namespace validator
