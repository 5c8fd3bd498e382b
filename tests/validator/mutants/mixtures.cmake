# Faults that show in whole runs over photos and videos.

add_component_mutant(faces-start-with-the-wrong-one
  SOURCE PictureIntake.cpp
  REPLACE [[frame->faceRects[0];]]
  BY [[frame->faceRects[1];]]
  CAUGHT_BY mixtures.of-photos-with-faces mixtures.of-photos-and-video)

add_component_mutant(rejection-is-not-logged
  SOURCE ResultCache.cpp
  REPLACE [[        logLine(function, why);
]]
  BY [[]]
  CAUGHT_BY mixtures.of-useless-file)
