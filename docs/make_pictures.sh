#!/usr/bin/env bash
# Makes the pictures of the documentation anew, from the bundled samples, into docs/pictures/.
# Needs the program ffmpeg (Debian: ffmpeg) for JPEG, and ./run's build.
set -eu
cd "$(dirname "$0")/.."
sTool=$PWD/build/run/lumor-dewarp
[ -x "$sTool" ] || ./run --version >/dev/null
sCeiling=samples/ceiling-terrace-derived-lens419-1920.jpg
sWall=samples/wall-terrace-derived-equidistant-1504.jpg
sWork=$(mktemp -d)
trap 'rm -rf "$sWork"' EXIT
mkdir -p docs/pictures

# picture NAME SIZE ARGUMENTS...: drawn at twice the size, then scaled down and packed.
picture() {
    local sName=$1 nWidth=${2%x*} nHeight=${2#*x}
    shift 2
    "$sTool" --size $((nWidth * 2))x$((nHeight * 2)) "$@" "$sWork/$sName.png"
    ffmpeg -loglevel error -y -i "$sWork/$sName.png" -vf "scale=$nWidth:$nHeight:flags=area,format=yuvj420p" \
        -q:v 5 -frames:v 1 -bitexact "docs/pictures/$sName.jpg"
    echo "docs/pictures/$sName.jpg"
}

picture vcam 320x180 --view vcam --pan 70 --tilt 55 --zoom 120 $sCeiling
picture quad 320x180 --view quad --pan 70 --tilt 55 --zoom 120 $sCeiling
picture fisheye 320x180 --view fisheye $sCeiling
picture circular 320x180 --view circular $sCeiling
picture panorama 480x67 --view panorama $sCeiling
picture panorama-half 480x134 --view panorama-half $sCeiling
picture panorama-quarter 320x180 --view panorama-quarter $sCeiling
picture dual 320x200 --view dual $sCeiling
picture triple 384x160 --view triple $sCeiling
picture panes 480x270 --pane "0,0,960,140 view=panorama" --pane "0,140,480,400 pan=30 tilt=50 zoom=90" \
    --pane "480,140,480,400 pan=200 tilt=40 zoom=80 projection=stereographic" --pane "760,20,180,180 view=fisheye" \
    --pane-gap 4,#FFFFFF $sCeiling
picture wall-panorama 400x160 --mount wall --view panorama $sWall
picture wall-panorama-tilt 400x160 --mount wall --view panorama --mount-tilt 20 $sWall
picture wall-vcam 320x180 --mount wall --view vcam --zoom 140 $sWall
for sProjection in rectilinear 0.5 stereographic; do
    picture eye-$sProjection 320x180 --view vcam --pan 70 --tilt 50 --zoom 150 --projection $sProjection $sCeiling
done

# Overlays: a grid over the fisheye picture, a bar and a cross over the result.
overlay() {
    ffmpeg -loglevel error -y -f lavfi -i "color=s=$2,format=rgba,geq=$3" -frames:v 1 "$sWork/$1"
}
overlay grid.png 960x960 \
    "r=255:g=225:b=0:a='180*gt(lt(mod(X\,96)\,4)+lt(mod(Y\,96)\,4)\,0)'"
overlay cross.png 640x360 "r='255*gt(Y\,44)':g='255*gt(Y\,44)':b='255*gt(Y\,44)':a='150*lt(Y\,44)
    +230*gt(lt(abs(X-320)\,1.5)*lt(abs(Y-180)\,40)+lt(abs(Y-180)\,1.5)*lt(abs(X-320)\,40)\,0)'"
picture input-overlay 320x180 --view vcam --pan 70 --tilt 50 --zoom 120 --input-overlay "$sWork/grid.png" $sCeiling
picture output-overlay 320x180 --view vcam --pan 70 --tilt 50 --zoom 120 --output-overlay "$sWork/cross.png" $sCeiling
picture mask 320x180 --view vcam --pan 70 --tilt 50 --zoom 120 \
    --mask "790,150 1010,140 1000,400 740,390 #606060FF" $sCeiling
picture text 320x180 --view vcam --pan 70 --tilt 50 --zoom 120 --text "Terrace  2026-11-21 09:41:07" \
    --text-at 16,16 --text-height 32 $sCeiling

# All views at once, for the front page.
[ -e out/contact-sheet.png ] || ./run >/dev/null
ffmpeg -loglevel error -y -i out/contact-sheet.png -vf "scale=960:-2:flags=area,format=yuvj420p" -q:v 4 \
    -frames:v 1 -bitexact docs/pictures/contact-sheet.jpg
echo docs/pictures/contact-sheet.jpg

# Any camera: the commonest frame there is, a circle of 1080 pixels in 1920x1080.
ffmpeg -loglevel error -y -i $sCeiling -vf "scale=1080:1080:flags=area,pad=1920:1080:420:0:black" -q:v 2 -frames:v 1 \
    "$sWork/circle.jpg"
picture lens-circle-guessed 320x180 --lens ideal --no-clean-rim --view vcam --pan 70 --tilt 60 --zoom 120 "$sWork/circle.jpg"
picture lens-circle-found 320x180 --view vcam --pan 70 --tilt 60 --zoom 120 "$sWork/circle.jpg"
picture lens-circle-drawn 320x180 --view fisheye --lens ideal "$sWork/circle.jpg"
# The rim, twice as large as it is drawn.
rim() { # NAME ARGUMENTS...
    "$sTool" --size 1600x640 --mount wall --view panorama --mount-tilt 20 "${@:2}" $sWall "$sWork/$1.png"
    ffmpeg -loglevel error -y -i "$sWork/$1.png" -vf "crop=180:110:1390:530,scale=360:220:flags=neighbor,format=yuvj420p" \
        -q:v 4 -frames:v 1 -bitexact "docs/pictures/$1.jpg"
}
rim lens-rim-given --lens ideal --no-clean-rim
rim lens-rim-clean --lens ideal
picture equirectangular 480x120 --view equirectangular $sCeiling
picture cylindrical 480x90 --view cylindrical $sCeiling
picture panini 320x160 --view panini --pan 40 $sCeiling
