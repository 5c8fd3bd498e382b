# Faults in what the face of a photo leaves.

add_component_mutant(facerect-of-last-face
  SOURCE PictureIntake.cpp
  REPLACE [=[frame->faceRects[0]]=]
  BY [=[frame->faceRects[frame->faceCount - 1]]=]
  CAUGHT_BY facerect.is-of-first-face)

add_component_mutant(facerect-of-last-frame
  SOURCE PictureIntake.cpp
  REPLACE [[found->at(0)]]
  BY [[found->at(found->count() - 1)]]
  CAUGHT_BY facerect.is-of-first-frame)

add_component_mutant(facerect-without-face
  SOURCE PictureIntake.cpp
  REPLACE [[frame->faceCount <= 0 || ]]
  BY [[]]
  CAUGHT_BY facerect.without-face-is-zero facerect.goes-to-own-record)

add_component_mutant(facerect-for-first-record
  SOURCE PictureIntake.cpp
  REPLACE [[analysisResults.back()->faceRectOfPhoto]]
  BY [[analysisResults.front()->faceRectOfPhoto]]
  CAUGHT_BY facerect.goes-to-own-record)

add_component_mutant(facerect-scored-and-logged
  SOURCE PictureIntake.cpp
  REPLACE [[    analysisResults.back()->faceRectOfPhoto =]]
  BY [[    analysisResults.back()->score = faceScoreOfFrame(*frame);
    logLine("KOR::KorMaterialAnalysis::faceDetectFinishedInternal", "face score result: {");
    analysisResults.back()->faceRectOfPhoto =]]
  CAUGHT_BY facerect.leaves-score-alone facerect.is-not-logged-as-score)

add_component_mutant(facerect-of-video-whole
  SOURCE AutoTrim.cpp
  REPLACE [[        result->posOfMaxScore = best.pos;]]
  BY [[        result->posOfMaxScore = best.pos;
        result->faceRectOfPhoto = {0, 0, 1, 1};]]
  CAUGHT_BY facerect.of-video-is-zero)

add_component_mutant(facerect-from-null-list
  SOURCE PictureIntake.cpp
  REPLACE [[if (found == nullptr || found->count() <= 0) return;]]
  BY [[if (found->count() <= 0) return;]]
  CAUGHT_BY facerect.no-list-leaves-zero)

add_component_mutant(facerect-whole-without-list
  SOURCE PictureIntake.cpp
  REPLACE [[    if (found == nullptr || found->count() <= 0) return;]]
  BY [[    if (found == nullptr) analysisResults.back()->faceRectOfPhoto = {0.0, 0.0, 1.0, 1.0};
    if (found == nullptr || found->count() <= 0) return;]]
  CAUGHT_BY facerect.no-list-leaves-zero)
