#include <cstdio>
#include <future>

#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"
#include "reference_host/ReferenceHost.h"

struct Listener : KOR::IKorCallBack {
    std::promise<void> finished;

    KOR::Status onReserved() override { return KOR::statusOk; }
    KOR::Status onTaskEvent(KOR::IDmBaseObj*, std::uint32_t, std::uint32_t event, void*) override {
        if (event == KOR::taskEventFinished) finished.set_value();
        return KOR::statusOk;
    }
};

int main(int argc, char* argv[]) {
    if (argc != 2) return 2;
    const auto clip = reference_host::importMaterial(argv[1], "");
    if (clip.object == nullptr) return std::puts(clip.error.c_str()), 1;
    KOR::IKORVoidPtrList* const materials = createKORVoidPtrList();
    materials->append(clip.object);
    KOR::IKORIntList* const kinds = createKORIntList();
    for (const int kind : {KOR::analysisKindScence, KOR::analysisKindKeyFrame})
        kinds->append(kind);

    Listener listener;
    KOR::IKorMaterialAnalysis* const analysis = createMaterialAnalysis();
    analysis->insertMaterials(materials, 0);
    analysis->setAnalysisKinds(kinds);
    analysis->addCallBack(&listener);
    analysis->start();
    listener.finished.get_future().wait();
    analysis->stop();  // returns when no event is on its way any more

    KOR::IKORVoidPtrList* const results = createKORAutoVoidPtrList();
    analysis->getResults(results);
    for (std::int64_t i = 0; i < results->count(); ++i) {
        const auto* result = static_cast<KOR::MaterialAnalysisResult*>(results->at(i));
        std::printf("%.1f s to %.1f s, best at %.1f s\n", double(result->begin) / 1e7,
                    double(result->end) / 1e7, double(result->posOfMaxScore) / 1e7);
        result->media->release();  // each copy comes with two references
        result->media->release();
    }
    results->release();
    analysis->release();
    kinds->release();
    materials->release();
    clip.object->release();
}
