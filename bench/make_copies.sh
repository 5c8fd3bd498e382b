#!/usr/bin/env bash
# Stores the beginning of a video once more in every other codec. What stands there already, and is
# newer than the video, is left alone; a codec without its encoder is said and passed over.
#
#   bench/make_copies.sh VIDEO SECONDS DIRECTORY
set -euo pipefail
if (($# != 3)); then
    echo "usage: bench/make_copies.sh VIDEO SECONDS DIRECTORY" >&2
    exit 2
fi
video=$1 seconds=$2 directory=$3
mkdir -p "$directory"
encoders=$(ffmpeg -hide_banner -loglevel error -encoders | awk 'NR > 1 {print $2}')
status=0
export SVT_LOG=1  # of libsvtav1: errors only

# make_copy NAME ENCODER ARGUMENT... stores the video as NAME.
make_copy() {
    local name=$1 encoder=$2
    if ! grep -qx "$encoder" <<<"$encoders"; then
        echo "make_copies.sh: $name is left out: ffmpeg has no encoder $encoder" >&2
        status=1
        return
    fi
    [[ $directory/$name -nt $video ]] && return
    echo "make_copies.sh: making $directory/$name with $encoder" >&2
    # The name keeps its ending, by which ffmpeg knows the container.
    if nice ffmpeg -nostdin -loglevel error -y -t "$seconds" -i "$video" -an \
        -c:v "$encoder" -threads 2 "${@:3}" "$directory/unfinished.$name"; then
        mv "$directory/unfinished.$name" "$directory/$name"
    else
        rm -f "$directory/unfinished.$name"
        echo "make_copies.sh: $name is left out: ffmpeg could not make it" >&2
        status=1
    fi
}

# The faster of the two encoders of AV1, where it is there.
av1=(libaom-av1 -usage realtime -cpu-used 8 -row-mt 1 -b:v 3M)
if grep -qx libsvtav1 <<<"$encoders"; then
    av1=(libsvtav1 -preset 10 -crf 35)
fi

make_copy hevc.mp4 libx265 -preset veryfast -crf 24 -tag:v hvc1 -x265-params log-level=error
make_copy vp9.webm libvpx-vp9 -deadline realtime -cpu-used 7 -row-mt 1 -b:v 3M
make_copy av1.mp4 "${av1[@]}"
make_copy mpeg2.ts mpeg2video -b:v 8M -g 15 -bf 2
make_copy mpeg4.mp4 mpeg4 -q:v 4 -bf 2
make_copy prores.mov prores_ks -profile:v standard
make_copy mjpeg.mov mjpeg -q:v 4 -pix_fmt yuvj420p
make_copy gif.gif gif
exit "$status"
