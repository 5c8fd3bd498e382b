#include "autotrim/Say.h"

#include <cstdio>
#include <string>

#include "autotrim/Utf8.h"

namespace autotrim {

void say(std::string_view text) {
    const std::string line = "autotrim: " + printable(text) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void say(std::string_view file, std::string_view text) {
    // An empty name would not show.
    say(std::string(file.empty() ? "\"\"" : file).append(": ").append(text));
}

}  // namespace autotrim
