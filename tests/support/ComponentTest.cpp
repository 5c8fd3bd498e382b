#include "tests/support/ComponentTest.h"

#include <algorithm>

#include "fake_host/paths.h"

namespace fake_host {

Owned<KOR::IKORIntList> intList(const std::vector<std::int32_t>& values) {
    Owned<KOR::IKORIntList> list(createKORIntList());
    for (const std::int32_t value : values)
        list->append(value);
    return list;
}

Owned<KOR::IKORVoidPtrList> materialList(const std::vector<FakeMedia*>& materials) {
    Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    for (FakeMedia* const material : materials) {
        list->append(material == nullptr ? nullptr : asElement(*material));
    }
    return list;
}

ComponentTest::ComponentTest() {
    host().reset();
    component_.reset(createMaterialAnalysis());
}

ComponentTest::~ComponentTest() {
    host().reset();
}

void ComponentTest::TearDown() {
    component_.reset();
    for (const auto& material : materials_) {
        EXPECT_EQ(material->refCount(), 1U) << material->spec.fileName << " is still referenced";
    }
    materials_.clear();
    EXPECT_EQ(host().live.media, 0);
    EXPECT_EQ(host().live.tasks, 0);
    EXPECT_EQ(host().live.lists, 0);
    EXPECT_EQ(host().live.logStreams, 0);
    EXPECT_EQ(host().complaints(), Lines());
}

FakeMedia& ComponentTest::make(const MediaSpec& spec) {
    return *materials_.emplace_back(new FakeMedia(spec));
}

FakeMedia& ComponentTest::insert(const MediaSpec& spec) {
    FakeMedia& material = make(spec);
    const auto end = static_cast<std::int32_t>(probe().materials().size());
    component().insertMaterials(materialList({&material}).get(), end);
    return material;
}

void ComponentTest::useKinds(const std::vector<std::int32_t>& kinds) {
    ASSERT_EQ(component().setAnalysisKinds(intList(kinds).get()), KOR::statusOk);
}

void ComponentTest::setParam(const char* key, std::int32_t value) {
    KOR::KorValue holder{};
    holder.asInt32 = value;
    ASSERT_EQ(component().setAnalysisParam(key, &holder), KOR::statusOk);
}

void ComponentTest::setThreshold(double value) {
    KOR::KorValue holder{};
    holder.asReal = value;
    ASSERT_EQ(component().setAnalysisParam("scenceDetectionThreshold", &holder), KOR::statusOk);
}

void ComponentTest::runToEnd() {
    component().start();
    host().finishAllTasks();
}

Lines ComponentTest::journal() {
    const std::string directory = utf8Of(host().directory());
    Lines lines = host().takeJournal();
    for (std::string& line : lines) {
        const std::size_t at = line.find(directory);
        if (at != std::string::npos) line.replace(at, directory.size(), "<dir>");
    }
    return lines;
}

std::string ComponentTest::trace() {
    std::string text = "\n";
    for (const std::string& line : journal())
        text += line + "\n";
    return text;
}

Lines ComponentTest::logTexts() const {
    Lines texts;
    for (const LogLine& line : host().logLines())
        texts.push_back(line.text);
    return texts;
}

}  // namespace fake_host
