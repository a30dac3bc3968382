#!/bin/bash
# Draws the nine PNG images the overlays show, then checks them.
#
#   bash assets/draw-images.sh [output-folder]     (default: assets/images next to this script)
#
# Needs ImageMagick 6 (`convert`, `identify`). Everything is drawn from vector shapes (no fonts),
# so the output does not depend on what is installed beyond ImageMagick itself.
#
# How the add-in uses these files, and why the rules below exist:
#   * It loads each PNG through GDI+ and paints every transparent pixel as grey RGB(169,169,169).
#   * The badge window is a layered window whose colour key is that grey, so the transparent pixels
#     of a badge become see-through and the Office window shows around the round badge. A pixel that
#     is half transparent would be flattened onto the grey and show as a grey halo, so badge alpha
#     must be strictly 0 or 255. And an opaque pixel that happens to be exactly 169,169,169 would be
#     punched out as well, so no image may contain that colour.
#   * The loading strip, the offline strip and the panel are ordinary windows: there a transparent
#     pixel would show as a grey square, so those four images are fully opaque on the exact
#     background colour of the surface they sit on.
#
# Shapes are drawn at SS times the final size with antialiasing, then reduced with a box filter
# (an exact area average). That gives smooth inner edges; for the badges the alpha channel is then
# cut at 50% so the outline stays crisp and binary.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
out=${1:-$here/images}
mkdir -p "$out"

SS=8

# Colours. The greys are slightly blue on purpose: a tinted grey blended with white never lands on
# the neutral 169,169,169 colour key.
BRAND='rgb(25,110,180)'      # the brand blue: badge disc and the loading strip
OUTLINE='rgb(10,55,100)'     # dark rim so the badge stands out on a white page
WHITE='rgb(255,255,255)'
GREEN='rgb(30,150,65)'       # safe to edit
VIOLET='rgb(120,75,185)'     # others are viewing
AMBER='rgb(250,165,0)'       # others are editing / conflict
AMBER_INK='rgb(45,30,0)'     # the "!" on the amber triangle: dark reads better than white on amber
RED='rgb(210,35,40)'         # deleted / moved on the web
TEAL='rgb(0,140,150)'        # a newer version to download
MONO='rgb(92,100,112)'       # the offline glyph on the white strip
AVATAR_BG='rgb(216,225,236)' # default user picture: light disc...
AVATAR_FG='rgb(120,140,166)' # ...with a darker head and shoulders

# ---------------------------------------------------------------------------------------------
# Glyphs. Each function prints MVG (ImageMagick's drawing language) in its own coordinate box;
# the caller places it with translate/scale. Coordinates are in output pixels: pixel i covers
# [i, i+1), so shapes meant to be crisp at 1:1 sit on whole numbers.
# ---------------------------------------------------------------------------------------------

# The drive: a hard drive seen slightly from above, in a 32 x 32 box. The top face is a
# trapezoid, the front a rounded bar with a slot and an activity light cut out of it; edges sit on
# whole pixels so the 32 x 32 strip icon is sharp. $1 is the glyph colour, $2 the colour behind it
# (used for the cut-outs).
drive_glyph() {
    local ink=$1 paper=$2
    cat <<EOF
push graphic-context
  stroke none
  fill $ink
  polygon 8,8 24,8 30,15 2,15
  roundrectangle 2,16 30,24 1.5,1.5
  fill $paper
  roundrectangle 6,19 16,21 1,1
  roundrectangle 24,19 26,21 0.7,0.7
pop graphic-context
EOF
}

# Status marks live in a box centred on 0,0 with radius 12; the badge scales and places them.

# A round mark: white ring, coloured disc. The ring keeps the mark apart from the blue disc.
mark_disc() {
    local fill=$1
    cat <<EOF
stroke none
fill $WHITE
circle 0,0 0,14.5
fill $fill
circle 0,0 0,12
EOF
}

# Safe to edit: a white tick on green.
mark_tick() {
    mark_disc "$GREEN"
    cat <<EOF
fill none
stroke $WHITE
stroke-width 3.2
stroke-linecap round
stroke-linejoin round
polyline -6,0.5 -2,4.5 6,-4.5
EOF
}

# Others are viewing: a white eye with a violet pupil on violet.
mark_view() {
    mark_disc "$VIOLET"
    cat <<EOF
stroke none
fill $WHITE
path 'M -8.5,0 Q 0,-10 8.5,0 Q 0,10 -8.5,0 Z'
fill $VIOLET
circle 0,0 0,3.6
fill $WHITE
circle -1.2,-1.2 -1.2,-0.1
EOF
}

# Others are editing, or a conflict: an amber warning triangle with a dark "!". The triangle is
# its own outline (no disc) so it reads as a warning sign at a glance; the thick white stroke
# drawn first is the separating ring. Its corners reach further than a disc would, so it sits a
# little up and to the left to keep them inside the badge's rim.
mark_warn() {
    cat <<EOF
stroke-linejoin round
fill $WHITE
stroke $WHITE
stroke-width 5
polygon -1.5,-14 10.5,7 -13.5,7
fill $AMBER
stroke $AMBER
stroke-width 1.5
polygon -1.5,-14 10.5,7 -13.5,7
stroke none
fill $AMBER_INK
roundrectangle -3.1,-7.5 0.1,0.8 1.4,1.4
circle -1.5,3.9 -1.5,5.5
EOF
}

# Deleted, or renamed/moved on the web: a white X on red.
mark_error() {
    mark_disc "$RED"
    cat <<EOF
fill none
stroke $WHITE
stroke-width 3.2
stroke-linecap round
line -4.8,-4.8 4.8,4.8
line 4.8,-4.8 -4.8,4.8
EOF
}

# A newer version exists: a white down-arrow on teal.
mark_download() {
    mark_disc "$TEAL"
    cat <<EOF
stroke none
fill $WHITE
roundrectangle -2,-8 2,1 1,1
stroke $WHITE
stroke-width 1
stroke-linejoin round
polygon -6.5,-0.5 6.5,-0.5 0,7
EOF
}

# The badge: a brand-blue disc with a dark rim, the white drive up and to the left, and the
# status mark in the lower-right quarter, kept inside the rim so nothing pokes out of the circle.
badge_mvg() {
    local mark=$1
    cat <<EOF
push graphic-context
  stroke $OUTLINE
  stroke-width 2
  fill $BRAND
  circle 35,35 35,2
pop graphic-context
push graphic-context
  translate 8.7,8.2
  scale 1.3,1.3
$(drive_glyph "$WHITE" "$BRAND")
pop graphic-context
push graphic-context
  translate 48.5,48.5
$($mark)
pop graphic-context
EOF
}

# Offline: the drive in grey with a slash through it. The slash is cut out of the drive with a
# white band first so the two stay apart at 28 pixels.
offline_mvg() {
    cat <<EOF
push graphic-context
  translate -0.08,-0.08
  scale 0.88,0.88
$(drive_glyph "$MONO" "$WHITE")
pop graphic-context
push graphic-context
  fill none
  stroke-linecap round
  stroke $WHITE
  stroke-width 5.5
  line 5,3.5 23,24.5
  stroke $MONO
  stroke-width 2.2
  line 5,3.5 23,24.5
pop graphic-context
EOF
}

# The panel's error icon: a white "!" on a red disc.
error_icon_mvg() {
    cat <<EOF
stroke none
fill $RED
circle 10.5,10.5 10.5,0.6
fill $WHITE
roundrectangle 9.2,4 11.8,12.6 1.3,1.3
circle 10.5,15.9 10.5,17.4
EOF
}

# The default user picture: head and shoulders on a light disc. The shoulders are a big ellipse
# that runs past the disc; they are clipped to the disc when the layers are combined.
avatar_disc_mvg() {
    echo "stroke none fill $AVATAR_BG circle 20,20 20,0.5"
}
avatar_person_mvg() {
    cat <<EOF
stroke none
fill $AVATAR_FG
circle 20,15.5 20,8
ellipse 20,38 13.5,12.5 0,360
EOF
}

# ---------------------------------------------------------------------------------------------
# Rendering
# ---------------------------------------------------------------------------------------------

# PNG options that keep the output reproducible: no timestamps, no comments, no profiles.
PNG_OPTS=(-strip -define 'png:exclude-chunks=date,time')

# render_badge FILE MARK: 70 x 70, transparent around the disc, alpha cut to 0/255.
render_badge() {
    local file=$1 mark=$2 n=$((70 * SS))
    convert -size ${n}x${n} xc:none \
        -draw "scale $SS,$SS $(badge_mvg "$mark")" \
        -filter box -resize 70x70 \
        -channel A -threshold 50% +channel \
        -background black -alpha background \
        "${PNG_OPTS[@]}" "PNG32:$out/$file"
}

# render_opaque FILE SIZE BACKGROUND MVG: fully opaque on the exact background colour.
render_opaque() {
    local file=$1 size=$2 bg=$3 mvg=$4 n=$(($2 * SS))
    convert -size ${n}x${n} "xc:$bg" \
        -draw "scale $SS,$SS $mvg" \
        -filter box -resize "${size}x${size}" \
        -alpha off "${PNG_OPTS[@]}" "PNG24:$out/$file"
}

render_badge drive_tick.png     mark_tick
render_badge drive_view.png     mark_view
render_badge drive_warn.png     mark_warn
render_badge drive_error.png    mark_error
render_badge drive_download.png mark_download

# The loading strip: the drive glyph fills the 32 x 32 image at 1:1 on the strip's blue.
render_opaque drive.png 32 "$BRAND" "$(drive_glyph "$WHITE" "$BRAND")"
render_opaque drive-mono-big.png 28 "$WHITE" "$(offline_mvg)"
render_opaque error_icon1.png 21 "$WHITE" "$(error_icon_mvg)"

# The avatar needs clipping, so it is drawn as a layer, cut to the disc, then put on white.
n=$((40 * SS))
convert -size ${n}x${n} xc:none -draw "scale $SS,$SS $(avatar_disc_mvg) $(avatar_person_mvg)" \
    \( -size ${n}x${n} xc:none -draw "scale $SS,$SS $(avatar_disc_mvg)" \) \
    -compose DstIn -composite \
    -background "$WHITE" -compose over -flatten \
    -filter box -resize 40x40 \
    -alpha off "${PNG_OPTS[@]}" "PNG24:$out/user-thumbnail.png"

# ---------------------------------------------------------------------------------------------
# Checks: size, alpha rules and the colour key. Every problem is reported, then the script exits 1.
# ---------------------------------------------------------------------------------------------

failed=0
fail() { echo "FAIL: $*" >&2; failed=$((failed + 1)); }

# check_common FILE W H: the size, and no opaque pixel equal to the colour key.
check_common() {
    local f=$out/$1 w=$2 h=$3 size keyed
    size=$(identify -format '%wx%h' "$f")
    [ "$size" = "${w}x${h}" ] || fail "$1: size is $size, expected ${w}x${h}"
    keyed=$(convert "$f" -alpha on -depth 8 txt:- | grep -c '(169,169,169,255)' || true)
    [ "$keyed" = 0 ] || fail "$1: $keyed opaque pixel(s) are RGB(169,169,169), the colour key"
}

# check_badge FILE: alpha only 0 or 255, and all four corners transparent.
check_badge() {
    local f=$out/$1 before=$failed levels corners
    if [ ! -f "$f" ]; then fail "$1: not written"; return; fi
    check_common "$1" 70 70
    levels=$(convert "$f" -alpha extract -depth 8 -format '%c' histogram:info: \
        | sed -n 's/.*(\([0-9]*\),[0-9]*,[0-9]*).*/\1/p; s/.*gray(\([0-9]*\)).*/\1/p' \
        | sort -un | tr '\n' ' ')
    [ "$levels" = "0 255 " ] || fail "$1: alpha has $(wc -w <<<"$levels") levels" \
        "(${levels:0:40}...), expected only 0 and 255"
    corners=$(convert "$f" \
        -format '%[fx:p{0,0}.a] %[fx:p{69,0}.a] %[fx:p{0,69}.a] %[fx:p{69,69}.a]' info:)
    [ "$corners" = "0 0 0 0" ] || fail "$1: corner alpha is [$corners], expected all transparent"
    [ "$failed" != "$before" ] ||
        echo "ok   $1: 70x70, alpha only 0 and 255, corners transparent, no colour-key pixel"
}

# check_opaque FILE SIZE BACKGROUND: no transparency at all, and the corners are the surface colour.
check_opaque() {
    local f=$out/$1 size=$2 bg=$3 before=$failed opaque corner want
    if [ ! -f "$f" ]; then fail "$1: not written"; return; fi
    check_common "$1" "$size" "$size"
    opaque=$(identify -format '%[opaque]' "$f")
    [ "$opaque" = "true" ] || fail "$1: has transparent pixels, must be fully opaque"
    want=$(convert xc:"$bg" -depth 8 -format '%[pixel:p{0,0}]' info:)
    for corner in "0,0" "$((size - 1)),0" "0,$((size - 1))" "$((size - 1)),$((size - 1))"; do
        corner=$(convert "$f" -depth 8 -format "%[pixel:p{$corner}]" info:)
        [ "$corner" = "$want" ] || fail "$1: a corner is $corner, expected the background $want"
    done
    [ "$failed" != "$before" ] ||
        echo "ok   $1: ${size}x${size}, fully opaque, background $want, no colour-key pixel"
}

for f in drive_tick.png drive_view.png drive_warn.png drive_error.png drive_download.png; do
    check_badge "$f"
done
check_opaque drive.png 32 "$BRAND"
check_opaque drive-mono-big.png 28 "$WHITE"
check_opaque error_icon1.png 21 "$WHITE"
check_opaque user-thumbnail.png 40 "$WHITE"

if [ "$failed" != 0 ]; then
    echo "draw-images.sh: $failed check(s) failed, see above" >&2
    exit 1
fi
echo "all 9 images written to $out and checked"
