#pragma once

#include <filesystem>

namespace fake_host {

/// Switches the C library to German, whose numbers have decimal commas, for as long as it lives.
class GermanLocale {
public:
    /// A locale that has to be made first is put into `directory`.
    explicit GermanLocale(const std::filesystem::path& directory);
    ~GermanLocale();
    GermanLocale(const GermanLocale&) = delete;
    GermanLocale& operator=(const GermanLocale&) = delete;

    /// False where there is no such locale, and none could be made.
    bool isSpoken() const { return isSpoken_; }

private:
    bool isSpoken_;
};

}  // namespace fake_host
