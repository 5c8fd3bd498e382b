#include <clocale>

#include "tests/component/GermanLocale.h"

namespace fake_host {

GermanLocale::GermanLocale(const std::filesystem::path&)
    : isSpoken_(std::setlocale(LC_ALL, "German_Germany.1252") != nullptr) {}

GermanLocale::~GermanLocale() {
    std::setlocale(LC_ALL, "C");
}

}  // namespace fake_host
