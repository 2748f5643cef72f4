#!/usr/bin/env bash
# The frei0r filter in the real programs, FFmpeg and melt, on a small generated clip with flashes:
# each output must equal, frame by frame, what deglare gives on the path for hosts without time
# access with the same settings. Usage: Frei0rEndToEnd.sh BUILD_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export FREI0R_PATH="$build/frei0r"
failures=0

# One line per frame: the MD5 of its pixels as 8-bit BGRA.
frames() { ffmpeg -v error -i "$1" -f framemd5 -pix_fmt bgra - | grep -v '^#' | awk -F, '{print $6}'; }
deglare() { "$build/deglare" "$@" --sequential --codec ffv1 >/dev/null 2>&1; }
ffmpeg_filter() { ffmpeg -v error -y -i "$1" -vf "frei0r=deglarer:$2" -c:v ffv1 -pix_fmt bgra "$3"; }
melt_filter() {
  local input=$1 output=$2; shift 2
  melt -silent "$input" "$@" -consumer "avformat:$output" vcodec=ffv1 pix_fmt=bgra an=1 real_time=0 >/dev/null 2>&1
}
same() {
  if [ "$(frames "$2")" = "$(frames "$3")" ] && [ "$(frames "$2" | wc -l)" -gt 0 ]; then
    echo "ok: $1"
  else
    echo "FAILED: $1"; failures=$((failures + 1))
  fi
}
# Which frames of $2 differ from the clip's own: a list such as "10 20 21".
changed() { paste -d' ' <(frames "$1") <(frames "$2") | awk '$1 != $2 {printf "%s%d", (n++ ? " " : ""), NR - 1}'; }

# A two-second clip, lossless RGB, with a one-frame flash at 10 and a two-frame flash at 20-21.
ffmpeg -v error -f lavfi -i "testsrc2=s=160x90:r=25:d=2" \
  -vf "eq=brightness=0.35:enable='eq(n,10)+between(n,20,21)',format=bgra" -c:v ffv1 clip.mkv

deglare clip.mkv clean.mkv
[ "$(changed clip.mkv clean.mkv)" = "10 20 21" ] && echo "ok: deglare replaces 10, 20 and 21" ||
  { echo "FAILED: deglare replaced $(changed clip.mkv clean.mkv)"; failures=$((failures + 1)); }
ffmpeg_filter clip.mkv "0.7|0.2|n" ffmpeg.mkv
same "ffmpeg -vf frei0r equals deglare" clean.mkv ffmpeg.mkv
melt_filter clip.mkv melt.mkv -filter frei0r.deglarer
same "melt's frei0r.deglarer equals deglare" clean.mkv melt.mkv

deglare clip.mkv marked.mkv --test-mode
ffmpeg_filter clip.mkv "0.7|0.2|y" ffmpeg-marked.mkv
same "Test mode's crosses, ffmpeg" marked.mkv ffmpeg-marked.mkv
melt_filter clip.mkv melt-marked.mkv -filter frei0r.deglarer 2=1
same "Test mode's crosses, melt" marked.mkv melt-marked.mkv
[ "$(changed clip.mkv marked.mkv)" = "10 20 21" ] && echo "ok: crosses on 10, 20 and 21" ||
  { echo "FAILED: crosses on $(changed clip.mkv marked.mkv)"; failures=$((failures + 1)); }

# Two filters in one graph, rendering frame by frame in turn: the first replaces only within one
# frame of the last good one, the second cleans what the first left.
deglare clip.mkv first.mkv --max-frames 1
deglare first.mkv both.mkv
melt_filter clip.mkv melt-two.mkv -filter frei0r.deglarer 1=0 -filter frei0r.deglarer
same "two filters in one melt graph keep their own memories" both.mkv melt-two.mkv

# A clip that starts in the middle: from frame 15 on, as deglare sees the same frames.
ffmpeg -v error -ss 0.6 -i clip.mkv -c:v ffv1 -pix_fmt bgra trimmed.mkv
deglare trimmed.mkv trimmed-clean.mkv
ffmpeg -v error -ss 0.6 -i clip.mkv -vf "frei0r=deglarer:0.7|0.2|n" -c:v ffv1 -pix_fmt bgra ffmpeg-seek.mkv
same "ffmpeg seeking into the clip" trimmed-clean.mkv ffmpeg-seek.mkv
melt_filter clip.mkv melt-seek.mkv in=15 -filter frei0r.deglarer
same "melt starting at frame 15" trimmed-clean.mkv melt-seek.mkv

echo "$failures failed"
[ "$failures" -eq 0 ]
