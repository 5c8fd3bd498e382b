# Faults in the face score.

add_component_mutant(faces-other-score-for-none
  SOURCE FaceScore.cpp
  REPLACE [[neutralScore = 0.42]]
  BY [[neutralScore = 0.4]]
  CAUGHT_BY faces.none faces.negative-count faces.outside-the-picture)

add_component_mutant(faces-negative-count-as-some
  SOURCE FaceScore.cpp
  REPLACE [[frame.faceCount <= 0]]
  BY [[frame.faceCount == 0]]
  CAUGHT_BY faces.negative-count)

add_component_mutant(faces-large-above-a-hundredth
  SOURCE FaceScore.cpp
  REPLACE [[>= largeFaceArea]]
  BY [[> largeFaceArea]]
  CAUGHT_BY faces.area-of-a-hundredth-is-large)

add_component_mutant(faces-large-worth-less
  SOURCE FaceScore.cpp
  REPLACE [[? 0.7 : 0.3]]
  BY [[? 0.6 : 0.3]]
  CAUGHT_BY faces.large-in-the-middle faces.left-of-the-middle faces.at-the-right-count-as-middle
    faces.at-the-bottom)

add_component_mutant(faces-small-worth-less
  SOURCE FaceScore.cpp
  REPLACE [[? 0.7 : 0.3]]
  BY [[? 0.7 : 0.2]]
  CAUGHT_BY faces.small-in-the-middle faces.at-the-left-edge faces.at-the-bottom)

add_component_mutant(faces-middle-symmetric
  SOURCE FaceScore.cpp
  REPLACE [[{0.2, 0.0, 0.8, 0.9}]]
  BY [[{0.2, 0.0, 0.6, 0.9}]]
  CAUGHT_BY faces.at-the-right-count-as-middle faces.all-regions-are-asked-in-order)

add_component_mutant(faces-left-worth-less
  SOURCE FaceScore.cpp
  REPLACE [[{{0.1, 0.0, 0.1, 0.9}, 0.3}]]
  BY [[{{0.1, 0.0, 0.1, 0.9}, 0.2}]]
  CAUGHT_BY faces.left-of-the-middle faces.first-region-decides)

add_component_mutant(faces-edge-worth-more
  SOURCE FaceScore.cpp
  REPLACE [[{{0.0, 0.0, 0.1, 0.9}, 0.1}]]
  BY [[{{0.0, 0.0, 0.1, 0.9}, 0.2}]]
  CAUGHT_BY faces.at-the-left-edge faces.first-region-decides)

add_component_mutant(faces-without-covered-regions
  SOURCE FaceScore.cpp
  REPLACE [[{{0.8, 0.0, 0.1, 0.9}, 0.3}, {{0.9, 0.0, 0.1, 0.9}, 0.1}, ]]
  BY [[]]
  CAUGHT_BY faces.all-regions-are-asked-in-order faces.first-region-decides)

add_component_mutant(faces-without-bottom
  SOURCE FaceScore.cpp
  REPLACE [[, {{0.0, 0.9, 1.0, 0.1}, 0.1},]]
  BY [[,]]
  CAUGHT_BY faces.at-the-bottom faces.all-regions-are-asked-in-order faces.first-region-decides)

add_component_mutant(faces-last-of-equals
  SOURCE FaceScore.cpp
  REPLACE [[face.height > largest]]
  BY [[face.height >= largest]]
  CAUGHT_BY faces.first-of-equals-decides faces.without-area-count-as-corner)

add_component_mutant(faces-first-of-all
  SOURCE FaceScore.cpp
  REPLACE [[if (face.width * face.height > largest.width * largest.height)]]
  BY [[if (i == 0)]]
  CAUGHT_BY faces.largest-decides faces.twenty-count faces.without-area-count-as-corner)

add_component_mutant(faces-behind-the-count
  SOURCE FaceScore.cpp
  REPLACE [[i < count; ++i]]
  BY [[i < maxFacesPerFrame && count > 0; ++i]]
  CAUGHT_BY faces.behind-the-count-are-ignored)

add_component_mutant(faces-nineteen-at-most
  SOURCE FaceScore.cpp
  REPLACE [[std::min(frame.faceCount, maxFacesPerFrame)]]
  BY [[std::min(frame.faceCount, maxFacesPerFrame - 1)]]
  CAUGHT_BY faces.twenty-count)

add_component_mutant(faces-inside-only-for-1
  SOURCE FaceScore.cpp
  REPLACE [[pointInRect(centre, region.rect) != 0]]
  BY [[pointInRect(centre, region.rect) == 1]]
  CAUGHT_BY faces.any-answer-but-0-is-inside)

add_component_mutant(faces-own-centre
  SOURCE FaceScore.cpp
  REPLACE [[centerPoint(face)]]
  BY [[{face.x + face.width / 2, face.y + face.height / 2}]]
  CAUGHT_BY faces.centre-is-the-hosts)

add_component_mutant(faces-own-sides
  SOURCE FaceScore.cpp
  REPLACE [[height(face) * width(face)]]
  BY [[face.height * face.width]]
  CAUGHT_BY faces.sides-are-the-hosts)

add_component_mutant(faces-paired-across-scenes
  SOURCE PictureIntake.cpp
  REPLACE [[    std::int64_t index = 0;]]
  BY [[    static std::int64_t index;]]
  CAUGHT_BY faces.frames-begin-anew-for-each-scene entropy.samples-begin-anew-for-each-scene)

add_component_mutant(faces-surplus-for-last-keyframe
  SOURCE PictureIntake.cpp
  REPLACE [[        if (element != nullptr) take(keyFrame, Element(*element));
    }]]
  BY [[        if (element != nullptr) take(keyFrame, Element(*element));
    }
    for (; found != nullptr && !keyFrames.empty() && index < found->count(); ++index)
        take(keyFrames.back(), *static_cast<const Element*>(found->at(index)));]]
  CAUGHT_BY faces.surplus-frames-are-ignored)

add_component_mutant(faces-last-frame-for-all-others
  SOURCE PictureIntake.cpp
  REPLACE [[if (found == nullptr || index >= found->count()) return;]]
  BY [[if (found == nullptr || found->count() == 0) return;
        index = index < found->count() ? index : found->count() - 1;]]
  CAUGHT_BY faces.keyframes-without-frame-get-nothing entropy.keyframes-without-sample-get-nothing)

add_component_mutant(faces-no-frames-as-no-faces
  SOURCE PictureIntake.cpp
  REPLACE [[    for (std::vector<KeyFrameScore>& keyFrames : keyFramesOfScences) {
        pairByIndex<FaceDetectFrame>(]]
  BY [[    for (std::vector<KeyFrameScore>& keyFrames : keyFramesOfScences) {
        const bool isWithout = found == nullptr || found->count() == 0;
        if (isWithout && !keyFrames.empty()) keyFrames.front().score += 0.42;
        pairByIndex<FaceDetectFrame>(]]
  CAUGHT_BY faces.no-frames-leave-scores faces.no-list-leaves-scores)

add_component_mutant(faces-asked-for-twice
  SOURCE PictureIntake.cpp
  REPLACE [[        addFaceScores(found.get());]]
  BY [[        addFaceScores(resultsOf(*task, analysisTypeFace).get());]]
  CAUGHT_BY faces.are-asked-for-once)
