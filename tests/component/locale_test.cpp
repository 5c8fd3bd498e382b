#include <clocale>
#include <filesystem>
#include <fstream>
#include <locale>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/GermanLocale.h"
#include "tests/component/RestoreTest.h"
#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

/// Writes 1234567.5 as 1.234.567,5.
class CommaDecimals final : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class Locale : public RunTest {
protected:
    ~Locale() override { std::locale::global(std::locale::classic()); }

    /// Everything that a run with many digits says and writes, and one that reads what it wrote.
    Lines traceOfRuns() {
        component().clearMaterials();
        std::filesystem::remove_all(host().directory() / "analysis");
        for (int i = 0; i < 1200; ++i)
            insert(photo("photo.jpg"));
        insert(video("clip.mp4", 1000000000)
                   .keyFrames({123456789})
                   .faceFrames({frameWith({largeFaceAt(0.5, 0.5)})})
                   .entropies({{123456789, 12345.6}})
                   .cacheIn(host().directory()));
        setThreshold(1234.5);
        host().takeJournal();
        runToEnd();
        Lines trace = journal();
        trace.push_back(resultFile());
        runToEnd();
        for (const std::string& line : journal())
            trace.push_back(line);
        for (const auto& record : probe().results())
            trace.push_back(asText(record.score));
        return trace;
    }
};

TEST_F(Locale, OfTheStreamsChangesNothing) {
    useKinds({6, 4, 3, 7});
    const Lines plain = traceOfRuns();
    std::locale::global(std::locale(std::locale::classic(), new CommaDecimals));
    const Lines grouped = traceOfRuns();
    EXPECT_EQ(grouped, plain);
}

TEST_F(Locale, OfTheStreamsReadsNumbersAsTheyAreWritten) {
    std::locale::global(std::locale(std::locale::classic(), new CommaDecimals));
    const auto file = host().directory() / "analysis" / "result.json";
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file)
        << ResultText{.result = R"([{"score": 1234.5}, {"score": 1.25e-400}])"}.text();
    insert(video("clip.mp4", 100 * second).cacheIn(host().directory()));
    useKinds({4, 3});
    component().start();
    ASSERT_EQ(probe().results().size(), 2U);
    EXPECT_EQ(probe().results()[0].score, 1234.5);
    EXPECT_EQ(probe().results()[1].score, 0.0);
}

TEST_F(Locale, OfTheCLibraryChangesNothing) {
    useKinds({6, 4, 3, 7});
    const Lines plain = traceOfRuns();
    const GermanLocale german(host().directory());
    if (!german.isSpoken()) GTEST_SKIP() << "no locale with decimal commas";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(traceOfRuns(), plain);
}

}  // namespace
}  // namespace fake_host
