#!/usr/bin/env bash
# Compares the whole analysis, and scene detection by itself, with a plain decode of the same
# videos. docs/performance.md says what is measured and what the columns mean.
#
#   bench/compare.sh [OPTION...] DIRECTORY
#
# DIRECTORY is where what is made for it stays: the labelled videos and their copies.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

usage() {
    cat <<'END'
usage: bench/compare.sh [OPTION...] DIRECTORY
  --set DIR              take this set of labelled videos instead of making one (repeatable)
  --build DIR            take this build instead of building the preset release
  --reference-build DIR  also compare the scenes found with those of this build
  --rounds N             measure every program N times on every video (default 5)
  --quick                measure once
  --only TEXT            only videos whose name in the table contains TEXT
  --no-copies            leave the copies in other codecs out
environment:
  LABELLED_TOOLS           directory of make_labelled.py, score_scenes.py and score_autotrim.py
  MATERIAL_ANALYSIS_CLIPS  the clips that a set is made from
END
}

fail() {
    echo "compare.sh: $1" >&2
    exit 2
}

sets=() build='' directory='' copies=yes complete=yes measuring=()
while (($#)); do
    case $1 in
    --set | --build | --reference-build | --rounds | --only)
        (($# > 1)) || fail "$1 wants a value"
        case $1 in
        --set) sets+=("$2") ;;
        --build) build=$2 ;;
        *) measuring+=("$1" "$2") ;;
        esac
        shift
        ;;
    --quick) measuring+=(--quick) ;;
    --no-copies) copies=no ;;
    --help) usage && exit 0 ;;
    -*) fail "there is no option $1" ;;
    *)
        [[ -z $directory ]] || fail "more than one directory is given"
        directory=$1
        ;;
    esac
    shift
done
[[ -n $directory ]] || { usage >&2 && exit 2; }
for tool in ffmpeg python3; do
    command -v "$tool" >/dev/null || fail "the program $tool is not there"
done
mkdir -p "$directory"

if [[ -z $build ]]; then
    build=$root/build/release
    (cd "$root" && cmake --preset release && cmake --build --preset release --parallel "$(nproc)" \
        --target autotrim scene_task) >&2
fi

if ((${#sets[@]} == 0)); then
    sets=("$directory/set")
    if [[ ! -d $directory/set ]]; then
        [[ -n ${LABELLED_TOOLS:-} ]] || fail "LABELLED_TOOLS is not set, nor is --set given"
        [[ -n ${MATERIAL_ANALYSIS_CLIPS:-} ]] ||
            fail "MATERIAL_ANALYSIS_CLIPS is not set, nor is --set given"
        rm -rf "$directory/set.unfinished"
        nice python3 "$LABELLED_TOOLS/make_labelled.py" --clips "$MATERIAL_ANALYSIS_CLIPS" \
            --out "$directory/set.unfinished" >&2
        mv "$directory/set.unfinished" "$directory/set"
    fi
fi

# The copies are of the first video of the first set that has 1280 x 720 pixels; 25 pictures a second
# suit the GIF, whose clock ticks in hundredths.
if [[ $copies == yes ]]; then
    shopt -s nullglob
    candidates=("${sets[0]}"/*720p25*.truth.json "${sets[0]}"/*720p*.truth.json)
    if ((${#candidates[@]})); then
        truth=${candidates[0]}
        seconds=40
        made=$directory/copies/$(basename "${sets[0]}")/$(basename "$truth" .truth.json)
        "$root/bench/make_copies.sh" "${truth%.truth.json}.mp4" "$seconds" "$made" || complete=no
        measuring+=(--copies "$made" --copied "$truth" --copied-seconds "$seconds")
    else
        echo "compare.sh: no copies: ${sets[0]} has no labelled video of 720 lines" >&2
        complete=no
    fi
fi

for set in "${sets[@]}"; do
    measuring+=(--set "$set")
done
python3 "$root/bench/compare.py" --build "$build" "${measuring[@]}"
[[ $complete == yes ]]
