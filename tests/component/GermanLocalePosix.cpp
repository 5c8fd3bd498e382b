#include <clocale>
#include <cstdlib>
#include <string>

#include "tests/component/GermanLocale.h"

namespace fake_host {
namespace {

bool speak(const std::filesystem::path& directory) {
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) return true;
    }
    const std::string target = (directory / "de_DE.UTF-8").string();
    const std::string command = "localedef -i de_DE -f UTF-8 '" + target + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) return false;
    setenv("LOCPATH", directory.c_str(), 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
}

}  // namespace

GermanLocale::GermanLocale(const std::filesystem::path& directory) : isSpoken_(speak(directory)) {}

GermanLocale::~GermanLocale() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}

}  // namespace fake_host
