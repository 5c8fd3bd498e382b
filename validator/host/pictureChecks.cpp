#include <cmath>
#include <memory>

#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

using Ticks = std::vector<std::int64_t>;

/// Begins of pictures of any video of three seconds: out of order, and one of them twice.
const Ticks mixed = {2 * second, 0, second, 5 * second / 2, 0};

template <typename Element>
Ticks positionsOf(const std::vector<Element>& elements) {
    Ticks positions;
    for (const Element& element : elements)
        positions.push_back(element.pos);
    return positions;
}

void comeInOrder(HostLibrary& host) {
    const Material video = host.video();
    const auto run = [&](std::int32_t type) {
        auto made = std::make_unique<Run>(host, Types{type}, video.source);
        made->setPositions(mixed);
        made->finish();
        return made;
    };
    const auto faces = positionsOf(run(3)->faces());
    const auto entropies = positionsOf(run(8)->entropies());
    const auto blurs = positionsOf(run(2)->blurs());
    expectEqual("the number of face frames", faces.size(), mixed.size());
    expectEqual("the number of entropy samples", entropies.size(), mixed.size());
    expectEqual("the number of blur samples", blurs.size(), mixed.size());
    if (!host.hasOurVideo()) return;
    expectEqual("the positions of the face frames", faces, mixed);
    expectEqual("the positions of the entropy samples", entropies, mixed);
    expectEqual("the positions of the blur samples", blurs, mixed);
}

void comeTogether(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {3, 8}, video.source);
    run.setPositions(mixed);
    run.finish();
    expectEqual("the number of face frames", run.faces().size(), mixed.size());
    expectEqual("the number of entropy samples", run.entropies().size(), mixed.size());
}

void needPositions(HostLibrary& host) {
    const Material video = host.video();
    for (const std::int32_t type : {2, 3, 8}) {
        Run run(host, {type}, video.source);
        run.setPositions({});
        run.finish();
        expectEqual("the events without positions", run.listener.milestones(), finished);
        expectEqual("the results without positions", run.count(type), 0);
    }
}

void positionsAreCopied(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {8}, video.source);
    const auto list = host.longlongList({0, second});
    expectEqual("setKeyFramePositions()", run.analysis.setKeyFramePositions(list.get()),
                KOR::statusOk);
    list->append(2 * second);
    expectEqual("refCount() of the list of positions", list->refCount(), 1);
    run.finish();
    expectEqual("the elements of two positions", run.count(8), 2);
}

void positionsAreReplaced(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {8}, video.source);
    run.setPositions({0, second, 2 * second});
    run.setPositions({second});
    run.finish();
    expectEqual("the elements of the positions set last", run.count(8), 1);
}

void includeUnseen(HostLibrary& host) {
    const Material video = host.video();
    const std::int64_t duration = video.media->getDuration();
    const Ticks positions = {0, duration + 3600 * second, second, -3600 * second};
    Run run(host, {3, 8}, video.source);
    run.setPositions(positions);
    run.finish();
    Run seen(host, {3, 8}, video.source);
    seen.setPositions({0, second});
    seen.finish();
    expectEqual("the events", run.listener.milestones(), finished);
    expectEqual("the number of face frames", run.faces().size(), positions.size());
    const auto entropies = run.entropies();
    const auto expected = seen.entropies();
    expectEqual("the number of entropy samples", entropies.size(), positions.size());
    expectEqual("the number of those in the video alone", expected.size(), std::size_t{2});
    expectEqual("the entropy of the first picture", entropies[0].entropy, expected[0].entropy);
    expectEqual("the entropy of the third picture", entropies[2].entropy, expected[1].entropy);
    for (const std::size_t unseen : {1U, 3U}) {
        if (entropies[unseen].entropy != 0) {
            warn("a position outside of the video has the entropy of some picture");
        }
    }
}

void measureEntropy(HostLibrary& host) {
    if (!host.hasOurVideo()) skip("what is in the video is not known");
    const Material video = host.video();
    Run run(host, {8}, video.source);
    run.setPositions({second});
    run.finish();
    const double entropy = firstOf("entropy samples", run.entropies()).entropy;
    expect(entropy > 2 && entropy <= 8, "the entropy of a picture with many shades",
           "above 2, 8 at most", shown(entropy));
}

/// Photos of ours are for hosts that read those.
void needOurPhotos(const HostLibrary& host) {
    if (!host.hasOurPhoto()) skip("the host is not said to read portable graymaps");
}

void measurePhotos(HostLibrary& host) {
    needOurPhotos(host);
    const Material even = host.material(footage::evenPhoto(host.occasion().scratch));
    Run evenRun(host, {8}, even.source);
    evenRun.finish();
    expectEqual("the entropy of one even area",
                firstOf("entropy samples", evenRun.entropies()).entropy, 0.0);
    const Material halves = host.material(footage::twoTonePhoto(host.occasion().scratch));
    Run run(host, {8}, halves.source);
    run.finish();
    const double entropy = firstOf("entropy samples", run.entropies()).entropy;
    expect(std::abs(entropy - 1) < 1e-6, "the entropy of two equal halves", "1", shown(entropy));
}

void measureSharpness(HostLibrary& host) {
    if (!host.hasOurVideo()) skip("what is in the video is not known");
    const Material video = host.video();
    Run run(host, {2}, video.source);
    run.setPositions({second, 3 * second});
    run.finish();
    const auto samples = run.blurs();
    expectEqual("the number of blur samples", samples.size(), std::size_t{2});
    expect(samples[1].sharpness > samples[0].sharpness, "the sharpness of a fine board",
           "more than that of soft bars, " + shown(samples[0].sharpness),
           shown(samples[1].sharpness));
}

void seeNoSharpness(HostLibrary& host) {
    needOurPhotos(host);
    const Material photo = host.material(footage::evenPhoto(host.occasion().scratch));
    Run run(host, {2}, photo.source);
    run.finish();
    expectEqual("the sharpness of one even area", firstOf("blur samples", run.blurs()).sharpness,
                0.0);
}

void countFaces(HostLibrary& host) {
    const Material video = host.video();
    const Material photo = host.photo();
    for (const Material* const material : {&video, &photo}) {
        Run run(host, {3}, material->source);
        if (material == &video) run.setPositions(mixed);
        run.finish();
        for (const KOR::FaceDetectFrame& frame : run.faces()) {
            expect(frame.faceCount >= 0 && frame.faceCount <= KOR::maxFacesPerFrame,
                   "the number of faces", "0 to 20", shown(frame.faceCount));
            expectEqual("reserved", frame.reserved, 0);
            double last = 1e9;
            for (std::int32_t i = 0; i < frame.faceCount; ++i) {
                const KOR::KorRect& face = frame.faceRects[i];
                const double area = face.width * face.height;
                expect(area > 0 && area <= last, "the faces of a picture", "the largest first",
                       shown(area) + " behind " + shown(last));
                last = area;
            }
        }
    }
}

void seeNoFaces(HostLibrary& host) {
    needOurPhotos(host);
    const Material photo = host.material(footage::evenPhoto(host.occasion().scratch));
    Run run(host, {3}, photo.source);
    run.finish();
    const auto frames = run.faces();
    expectEqual("the number of face frames", frames.size(), std::size_t{1});
    expectEqual("the faces in one even area", frames[0].faceCount, 0);
}

void photosHaveOne(HostLibrary& host) {
    const Material photo = host.photo();
    for (const Types& types : {Types{3}, Types{8}, Types{2}, Types{3, 8}}) {
        Run run(host, types, photo.source);
        run.finish();
        for (const std::int32_t kind : types)
            expectEqual("the results of kind " + shown(kind) + " of a photo", run.count(kind), 1);
        Ticks positions = positionsOf(run.faces());
        for (const std::int64_t position : positionsOf(run.entropies()))
            positions.push_back(position);
        for (const std::int64_t position : positionsOf(run.blurs()))
            positions.push_back(position);
        expectEqual("the positions of a photo's results", positions, Ticks(types.size(), 0));
    }
}

}  // namespace

const std::vector<HostCheck> pictureChecks = {
    {"pictures.come-in-order",
     "Faces, entropy and blur have one element for each position, in the order in which they were "
     "set.",
     comeInOrder},
    {"pictures.come-together", "A task of types 3 and 8 has the results of both.", comeTogether},
    {"pictures.need-positions", "With an empty list of positions there are no results.",
     needPositions},
    {"pictures.copy-positions", "The list of positions is copied when it is set.",
     positionsAreCopied},
    {"pictures.replace-positions", "A list of positions takes the place of the one before.",
     positionsAreReplaced},
    {"pictures.include-unseen",
     "A position where no picture can be looked at has an element all the same, so that the others "
     "stay in their places.",
     includeUnseen},
    {"pictures.measure-entropy",
     "The entropy of a picture with many shades is high, and 8 bits at most.", measureEntropy},
    {"pictures.measure-photos", "The entropy of an even photo is 0, and that of two halves 1.",
     measurePhotos},
    {"pictures.measure-sharpness", "A fine pattern is sharper than a soft one.", measureSharpness},
    {"pictures.see-no-sharpness", "One even area has the sharpness 0.", seeNoSharpness},
    {"pictures.count-faces", "A picture has 0 to 20 faces, the largest first.", countFaces},
    {"pictures.see-no-faces", "There is no face in one even area.", seeNoFaces},
    {"pictures.photos-have-one",
     "A photo is handed no positions and has one element, at position 0.", photosHaveOne},
};

}  // namespace validator
