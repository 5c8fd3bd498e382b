#include "validator/component/Stage.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "fake_host/paths.h"

namespace validator {
namespace {

dynamic_library::DynamicLibrary loaded(const Occasion& occasion) {
    try {
        return dynamic_library::DynamicLibrary(occasion.library);
    } catch (const std::runtime_error& error) {
        skip(error.what());
    }
}

}  // namespace

Lines firstLines(const Lines& lines, std::size_t count) {
    const std::size_t most = std::min(count, lines.size());
    return {lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(most)};
}

Lines lastLines(const Lines& lines, std::size_t count) {
    const std::size_t most = std::min(count, lines.size());
    return {lines.end() - static_cast<std::ptrdiff_t>(most), lines.end()};
}

Owned<KOR::IKORIntList> intList(const std::vector<std::int32_t>& values) {
    Owned<KOR::IKORIntList> list(createKORIntList());
    for (const std::int32_t value : values)
        list->append(value);
    return list;
}

Owned<KOR::IKORVoidPtrList> materialList(const std::vector<FakeMedia*>& materials) {
    Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    for (FakeMedia* const material : materials)
        list->append(material == nullptr ? nullptr : asElement(*material));
    return list;
}

Stage::Stage(const Occasion& occasion) : occasion_(occasion), library_(loaded(occasion)) {
    host().reset();
}

Stage::~Stage() {
    end();
    host().reset();
}

Component Stage::create() const {
    using Factory = KOR::IKorMaterialAnalysis* (*)();
    const auto factory = reinterpret_cast<Factory>(exported("createMaterialAnalysis"));
    if (factory == nullptr) fail("the library", "an export createMaterialAnalysis", "none");
    Component made(factory());
    expectObject("createMaterialAnalysis()", made.get());
    return made;
}

KOR::IKorMaterialAnalysis& Stage::component() {
    if (!component_) {
        component_ = create();
        inserted_ = 0;
    }
    return *component_;
}

std::uint32_t Stage::releaseComponent() {
    return component_ ? component_.release()->release() : 0;
}

FakeMedia& Stage::make(const MediaSpec& spec) {
    return *materials_.emplace_back(new FakeMedia(spec));
}

FakeMedia& Stage::insert(const MediaSpec& spec) {
    FakeMedia& material = make(spec);
    expectEqual("insertMaterials()",
                component().insertMaterials(materialList({&material}).get(), inserted_),
                KOR::statusOk);
    ++inserted_;
    return material;
}

void Stage::useKinds(const std::vector<std::int32_t>& kinds) {
    expectEqual("setAnalysisKinds()", component().setAnalysisKinds(intList(kinds).get()),
                KOR::statusOk);
}

void Stage::setParam(const char* key, std::int32_t value) {
    KOR::KorValue holder{};
    holder.type = KOR::KorValue::int32;
    holder.asInt32 = value;
    expectEqual("setAnalysisParam()", component().setAnalysisParam(key, &holder), KOR::statusOk);
}

void Stage::setThreshold(double value) {
    KOR::KorValue holder{};
    holder.type = KOR::KorValue::real;
    holder.asReal = value;
    expectEqual("setAnalysisParam()",
                component().setAnalysisParam("scenceDetectionThreshold", &holder), KOR::statusOk);
}

void Stage::runToEnd() {
    component().start();
    host().finishAllTasks();
}

Lines Stage::journal() {
    const std::string directory = utf8Of(host().directory());
    Lines lines = host().takeJournal();
    for (std::string& line : lines) {
        const std::size_t at = line.find(directory);
        if (at != std::string::npos) line.replace(at, directory.size(), "<dir>");
    }
    return lines;
}

Lines Stage::journal(const std::string& beginning) {
    Lines lines = journal();
    std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(beginning); });
    return lines;
}

Lines Stage::logTexts() const {
    Lines texts;
    for (const LogLine& line : host().logLines())
        texts.push_back(line.text);
    return texts;
}

std::vector<KOR::MaterialAnalysisResult> Stage::results() {
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    expectEqual("getResults()", component().getResults(list.get()), KOR::statusOk);
    std::vector<KOR::MaterialAnalysisResult> records;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        const auto* const record = static_cast<const KOR::MaterialAnalysisResult*>(list->at(i));
        expectObject("a record of getResults()", record);
        records.push_back(*record);
    }
    for (const KOR::MaterialAnalysisResult& record : records) {
        record.media->release();
        record.media->release();
    }
    return records;
}

std::string Stage::resultText() const {
    // In text mode, so that the line ends of the platform do not matter.
    std::ifstream file(resultFile());
    expect(file.is_open(), "the result file", "a file", "none");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Stage::writeResultFile(const std::string& text) const {
    std::filesystem::create_directories(resultFile().parent_path());
    std::ofstream(resultFile()) << text;
}

void Stage::end() {
    component_.reset();
    materials_.clear();
}

}  // namespace validator
