#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "dynamic_library/DynamicLibrary.h"
#include "fake_host/FakeHost.h"
#include "fake_host/FakeMedia.h"
#include "fake_host/FakeTask.h"
#include "fake_host/RecordingListener.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "validator/check/Check.h"
#include "validator/check/expect.h"

namespace validator {

using namespace fake_host;

constexpr std::int64_t second = KOR::ticksPerSecond;

using Lines = std::vector<std::string>;
using Component = Owned<KOR::IKorMaterialAnalysis>;

/// The first lines, and the last: `count` of them, or as many as there are.
Lines firstLines(const Lines& lines, std::size_t count);
Lines lastLines(const Lines& lines, std::size_t count);

/// A list of analysis kinds for setAnalysisKinds.
Owned<KOR::IKORIntList> intList(const std::vector<std::int32_t>& values);

/// A borrowing list of materials; null stands for an element that is null.
Owned<KOR::IKORVoidPtrList> materialList(const std::vector<FakeMedia*>& materials);

/// A candidate on a host in memory that works, and is told what to answer and when tasks end.
///
/// Everything goes the way that an editor goes: the library is loaded, its factory called, and the
/// component reached by its interfaces. Making a stage loads the library; the check is skipped
/// where that fails.
class Stage {
public:
    explicit Stage(const Occasion& occasion);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    const Occasion& occasion() const { return occasion_; }

    /// What the candidate exports under this name; null where it does not.
    void* exported(const char* name) const { return library_.symbol(name); }

    /// Makes another component. Fails where the factory is missing or gives null.
    Component create() const;

    /// The component of this stage, made when it is first asked for.
    KOR::IKorMaterialAnalysis& component();

    /// Gives the stage's reference back and returns what the component answers. component() makes
    /// another one afterwards.
    std::uint32_t releaseComponent();

    /// Makes a material, on which the stage holds a reference until its end.
    FakeMedia& make(const MediaSpec& spec);

    /// Makes a material and adds it to the component behind those that were added to it so before.
    FakeMedia& insert(const MediaSpec& spec);

    /// Each fails where the component refuses.
    void useKinds(const std::vector<std::int32_t>& kinds);
    void setParam(const char* key, std::int32_t value);
    void setThreshold(double value);

    /// The task made for the `number`th kind, and what was made so far.
    FakeTask& task(std::size_t number) const { return host().task(number); }

    /// Starts a run and finishes every task of it.
    void runToEnd();

    /// What happened since the last look: each call to a task, log line, event and destruction as
    /// one line (see FakeTask), with this check's directory called "<dir>".
    Lines journal();

    /// Those lines of the journal that begin with `beginning`.
    Lines journal(const std::string& beginning);

    /// The texts of all lines of the log so far.
    Lines logTexts() const;

    /// Copies of the records, taken by getResults; the references that this leaves are given back.
    std::vector<KOR::MaterialAnalysisResult> results();

    /// A directory of this check's own, and the result file of a material whose cache it is.
    std::filesystem::path directory() const { return host().directory(); }
    std::filesystem::path resultFile() const { return directory() / "analysis" / "result.json"; }

    /// The whole result file with its line ends as "\n"; fails where there is none.
    std::string resultText() const;

    /// Puts a result file there for the component to find.
    void writeResultFile(const std::string& text) const;

    /// Gives the component and all materials of the stage back. Everything that the host made
    /// should be gone then.
    void end();

private:
    const Occasion& occasion_;
    dynamic_library::DynamicLibrary library_;
    std::vector<Owned<FakeMedia>> materials_;
    std::int32_t inserted_ = 0;
    Component component_;
};

/// A claim about components.
using ComponentCheck = Check<Stage>;

}  // namespace validator
