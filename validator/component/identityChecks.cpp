#include <string>

#include "validator/component/groups.h"

namespace validator {
namespace {

constexpr const char* ownName = "IKorMaterialAnalysis";
constexpr const char* baseName = "IDmBaseObj";

void expectUnknown(Stage& stage, const std::string& name) {
    expectNull("queryInterface(" + shown(name) + ")",
               stage.component().queryInterface(name.c_str()));
}

void lettersCount(Stage& stage) {
    for (const char* const name : {"ikormaterialanalysis", "IKORMATERIALANALYSIS",
                                   "IKorMaterialanalysis", "idmbaseobj", "IDMBASEOBJ"}) {
        expectUnknown(stage, name);
    }
}

void wholeNameCounts(Stage& stage) {
    for (const char* const name :
         {"", "I", "IKorMaterialAnalysi", "IKorMaterialAnalysis ", " IKorMaterialAnalysis",
          "IKorMaterialAnalysis2", "IDmBaseOb", "IDmBaseObject", "KOR::IDmBaseObj", "DmBaseObj"}) {
        expectUnknown(stage, name);
    }
}

void lettersAreCompared(Stage& stage) {
    for (const std::string wanted : {ownName, baseName}) {
        std::string copy = "x" + wanted;
        expectObject("queryInterface(" + shown(wanted) + "), the name elsewhere",
                     stage.component().queryInterface(copy.c_str() + 1));
        copy.back() = '?';
        expectNull("queryInterface(" + shown(copy.substr(1)) + "), at the same address",
                   stage.component().queryInterface(copy.c_str() + 1));
    }
}

void queriesAddNoReference(Stage& stage) {
    for (const char* const name : {ownName, baseName, "IKorBaseTask", "IKorCallBack", "", ""})
        stage.component().queryInterface(name);
    stage.component().queryInterface(nullptr);
    expectEqual("refCount()", stage.component().refCount(), 1);
}

void baseIsTheSameObject(Stage& stage) {
    auto* const base = static_cast<KOR::IDmBaseObj*>(stage.component().queryInterface(baseName));
    expectObject("queryInterface(\"IDmBaseObj\")", base);
    expectSame("the IDmBaseObj that the base names", base->queryInterface(baseName), base);
    expectSame("the IKorMaterialAnalysis that the base names", base->queryInterface(ownName),
               &stage.component());
    expectEqual("addRef() of the base", base->addRef(), 2);
    expectEqual("refCount() of the component", stage.component().refCount(), 2);
    expectEqual("release() of the component", stage.component().release(), 1);
    expectEqual("refCount() of the base", base->refCount(), 1);
}

void runKeepsInterfaces(Stage& stage) {
    stage.insert(photo("photo.jpg"));
    stage.runToEnd();
    expectSame("queryInterface(\"IKorMaterialAnalysis\")",
               stage.component().queryInterface(ownName), &stage.component());
    expectUnknown(stage, "IKorBaseTask");
}

void makesAnotherObject(Stage& stage) {
    const Component other = stage.create();
    expect(other.get() != &stage.component(), "the second component", "another object",
           "the same object");
    other->addRef();
    expectEqual("refCount() of the first one", stage.component().refCount(), 1);
    expectEqual("release() of the second one", other->release(), 1);
}

void componentsKeepTheirOwn(Stage& stage) {
    const Component other = stage.create();
    RecordingListener listener;
    other->addCallBack(&listener);
    other->setTaskInfo(1, 2, 3);
    other->setTaskName("other");
    other->setPriority(7);
    stage.insert(photo("photo.jpg"));
    stage.runToEnd();

    std::uint32_t first = 9;
    std::uint32_t second = 9;
    std::uint32_t third = 9;
    stage.component().getTaskInfo(&first, &second, &third);
    expectEqual("getTaskInfo()", std::vector{first, second, third}, {0, 0, 0});
    expectEqual("getTaskName()", std::string(stage.component().getTaskName()), "");
    expectEqual("getPriority()", stage.component().getPriority(), 100);
    expectEqual("events that the other one's listener heard", listener.heard().size(), 0U);
    const Owned<KOR::IKORVoidPtrList> results(createKORAutoVoidPtrList());
    other->getResults(results.get());
    expectEqual("results of the other one", results->count(), 0);
}

void parametersAreNotShared(Stage& stage) {
    stage.setThreshold(5.5);
    stage.setParam("photoNeedAnalysis", 1);
    const Component other = stage.create();
    const Owned<FakeMedia> media(new FakeMedia(video("clip.mp4", 10 * second)));
    other->insertMaterials(materialList({media.get()}).get(), 0);
    other->setAnalysisKinds(intList({4, 3}).get());
    other->start();
    expectLines("the block of the other one's scenes", stage.journal("task0.setParameterBlock"),
                {"task0.setParameterBlock(1, 1.0, 3.0, 0)"});
}

}  // namespace

const std::vector<ComponentCheck> identityChecks = {
    {"identity.fresh-object-has-one-reference",
     "A component fresh from the factory has one reference.",
     [](Stage& stage) { expectEqual("refCount()", stage.component().refCount(), 1); }},
    {"identity.last-release-gives-0", "Giving back the only reference returns 0.",
     [](Stage& stage) {
         stage.component();
         expectEqual("release()", stage.releaseComponent(), 0);
     }},
    {"identity.query-gives-own-interface",
     "The name \"IKorMaterialAnalysis\" gives the very pointer that the factory gave.",
     [](Stage& stage) {
         expectSame("queryInterface(\"IKorMaterialAnalysis\")",
                    stage.component().queryInterface(ownName), &stage.component());
     }},
    {"identity.query-gives-base", "The name \"IDmBaseObj\" gives the object's one IDmBaseObj.",
     [](Stage& stage) {
         expectSame("queryInterface(\"IDmBaseObj\")", stage.component().queryInterface(baseName),
                    static_cast<KOR::IDmBaseObj*>(&stage.component()));
     }},
    {"identity.query-denies-task",
     "The name \"IKorBaseTask\" gives null, although the component is a task.",
     [](Stage& stage) { expectUnknown(stage, "IKorBaseTask"); }},
    {"identity.query-denies-listener",
     "The name \"IKorCallBack\" gives null, although the component is a listener.",
     [](Stage& stage) { expectUnknown(stage, "IKorCallBack"); }},
    {"identity.query-heeds-case", "A name in other letters, large or small, gives null.",
     lettersCount},
    {"identity.query-compares-whole-name",
     "A name that is shorter or longer than an interface's gives null, and so does an empty one.",
     wholeNameCounts},
    {"identity.query-compares-letters",
     "Names are compared letter by letter, wherever their text lies.", lettersAreCompared},
    {"identity.query-null-name", "A null name gives null.",
     [](Stage& stage) {
         expectNull("queryInterface(null)", stage.component().queryInterface(nullptr));
     }},
    {"identity.query-adds-no-reference", "A query adds no reference, whatever it gives.",
     queriesAddNoReference},
    {"identity.one-object-behind-base",
     "The IDmBaseObj names the same interfaces as the component and counts with it.",
     baseIsTheSameObject},
    {"identity.interfaces-outlive-runs", "The interfaces are the same after a run as before.",
     runKeepsInterfaces},
    {"identity.factory-makes-another",
     "The factory makes another object each time, with a count of its own.", makesAnotherObject},
    {"identity.components-keep-their-own",
     "Two components share neither listeners nor results, and neither name, info nor priority.",
     componentsKeepTheirOwn},
    {"identity.parameters-are-not-shared",
     "A component begins with the defaults, whatever was set on another one.",
     parametersAreNotShared},
};

}  // namespace validator
