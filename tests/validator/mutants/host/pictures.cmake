# Faults of what is seen in single pictures.

add_host_mutant(positions-put-in-order
  SOURCE Task.cpp
  REPLACE [[            work_.positions.push_back(positions->at(i));]]
  BY [[            work_.positions.push_back(positions->at(i));
        std::sort(work_.positions.begin(), work_.positions.end());]]
  CAUGHT_BY pictures.come-in-order)

add_host_mutant(one-kind-at-a-time
  SOURCE analyse.cpp
  REPLACE [[            add(KOR::analysisTypeEntropy,]]
  BY [[            if (!wants(KOR::analysisTypeFace)) add(KOR::analysisTypeEntropy,]]
  CAUGHT_BY pictures.come-together pictures.include-unseen)

add_host_mutant(first-picture-for-no-positions
  SOURCE analyse.cpp
  REPLACE [[clip_.isVideo ? work_.positions : still;]]
  BY [[work_.positions.empty() ? still : work_.positions;]]
  CAUGHT_BY pictures.need-positions restart.source-forgets-lists)

add_host_mutant(list-of-positions-kept
  SOURCE Task.cpp
  REPLACE [[        if (positions == nullptr) return KOR::statusFailed;]]
  BY [[        if (positions == nullptr) return KOR::statusFailed;
        positions->addRef();]]
  CAUGHT_BY pictures.copy-positions)

add_host_mutant(positions-added-to-those-before
  SOURCE Task.cpp
  REPLACE [[        work_.positions.clear();
]]
  BY ""
  CAUGHT_BY pictures.replace-positions)

add_host_mutant(unseen-left-out
  SOURCE analyse.cpp
  REPLACE [[                // It has its element all the same.]]
  BY [[                continue;]]
  CAUGHT_BY pictures.include-unseen)

add_host_mutant(unseen-ends-the-run
  SOURCE analyse.cpp
  REPLACE [[                // It has its element all the same.]]
  BY [[                throw;]]
  CAUGHT_BY pictures.include-unseen)

add_host_mutant(entropy-of-the-wrong-sign
  SOURCE analyse.cpp
  REPLACE [[bits -= share * std::log2(share);]]
  BY [[bits += share * std::log2(share);]]
  CAUGHT_BY pictures.measure-entropy pictures.measure-photos)

add_host_mutant(entropy-not-in-bits
  SOURCE analyse.cpp
  REPLACE [[std::log2(share);]]
  BY [[std::log(share);]]
  CAUGHT_BY pictures.measure-photos)

add_host_mutant(sharpness-upside-down
  SOURCE analyse.cpp
  REPLACE [[    return count == 0 ? 0 : squares]]
  BY [[    return count == 0 ? 0 : 1e9 - squares]]
  CAUGHT_BY pictures.measure-sharpness pictures.see-no-sharpness)

add_host_mutant(too-many-faces
  SOURCE analyse.cpp
  REPLACE [[            noFaces.pos = positions[i];]]
  BY [[            noFaces.pos = positions[i];
            noFaces.faceCount = KOR::maxFacesPerFrame + 1;]]
  CAUGHT_BY pictures.count-faces pictures.see-no-faces)

add_host_mutant(photo-needs-positions
  SOURCE analyse.cpp
  REPLACE [[clip_.isVideo ? work_.positions : still;]]
  BY [[clip_.isVideo || still.empty() ? work_.positions : work_.positions;]]
  CAUGHT_BY pictures.photos-have-one threads.run-on-two-materials hosting.drives-many-materials)
