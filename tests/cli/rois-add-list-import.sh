#!/usr/bin/env bash
# `rois` end to end: ROIs added as JSON are listed back exactly, the listing adds to
# another stack unchanged, refusals write nothing, ImageJ files and ROI sets import,
# and the stored attributes are what a standard HDF5 tool reads.
set -uo pipefail
cli=$1 work=$2 h5dump=$3 zip=$4
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
s=DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack
fail() { echo "FAILED: $*" >&2; exit 1; }
expect() { # expect CODE command...: runs the command and checks its exit code
  local code=$1; shift
  "$@" > out.txt 2> err.txt; local got=$?
  [ "$got" -eq "$code" ] || fail "$* exited $got, expected $code: $(cat err.txt)"
}

"$cli" demo a.orvel > /dev/null || fail demo
"$cli" demo b.orvel --seed 2 > /dev/null || fail demo
expect 0 "$cli" rois a.orvel --image $s
[ ! -s out.txt ] || fail "a new stack lists ROIs: $(cat out.txt)"

expect 0 "$cli" rois a.orvel --image $s --add '[
  {"Shape": "Rectangle", "Points": [[10, 12], [40, 30]]},
  {"Name": "Soma", "Shape": "Polygon", "Points": [[50, 50], [90, 55], [70, 99]]},
  {"Shape": "Circle", "Points": [[128, 128], [128, 140]]}]'
printf 'ROI1\nSoma\nROI2\n' | cmp -s - out.txt || fail "assigned names: $(cat out.txt)"
expect 0 "$cli" rois a.orvel --image $s --add '{"Name": "Bg", "Shape": "Freehand", "Points": [[0, 0], [255, 0], [0, 255]]}'
expect 0 "$cli" rois a.orvel --image $s
cat > expected.txt <<'END'
{"Name":"ROI1","Shape":"Rectangle","Points":[[10,12],[40,30]]}
{"Name":"ROI2","Shape":"Circle","Points":[[128,128],[128,140]]}
{"Name":"Bg","Shape":"Freehand","Points":[[0,0],[255,0],[0,255]]}
{"Name":"Soma","Shape":"Polygon","Points":[[50,50],[90,55],[70,99]]}
END
cmp -s expected.txt out.txt || fail "listing: $(cat out.txt)"

# The listing, as a list, is what --add takes: another stack lists the same lines.
expect 0 "$cli" rois b.orvel --image $s --add "[$(paste -sd, expected.txt)]"
expect 0 "$cli" rois b.orvel --image $s
cmp -s expected.txt out.txt || fail "round trip: $(cat out.txt)"

# Stored as documented: a [2, 2] int32 attribute and the shape code 1 for a rectangle.
rois=${s%/ImageStack}/ROIs
"$h5dump" -a "$rois/ROI1/Coordinates" a.orvel > dump.txt || fail h5dump
grep -q 'H5T_STD_I32LE' dump.txt || fail "Coordinates type: $(cat dump.txt)"
grep -q 'SIMPLE { ( 2, 2 ) / ( 2, 2 ) }' dump.txt || fail "Coordinates shape: $(cat dump.txt)"
grep -q '(1,0): 40, 30' dump.txt || fail "Coordinates values: $(cat dump.txt)"
"$h5dump" -a "$rois/ROI1/Shape" a.orvel | grep -q '(0): 1$' || fail "Shape code"

# Refusals leave the file as it was.
expect 1 "$cli" rois a.orvel --image $s --add '[{"Shape": "Point", "Points": [[5, 5]]}, {"Shape": "Point", "Points": [[256, 5]]}]'
grep -q 'Error: The Point reaches outside the image of 256 x 256 pixels at (256, 5)' err.txt || fail "outside: $(cat err.txt)"
expect 1 "$cli" rois a.orvel --image $s --add '{"Name": "Soma", "Shape": "Point", "Points": [[5, 5]]}'
grep -q 'An ROI named Soma already exists' err.txt || fail "name in use: $(cat err.txt)"
expect 1 "$cli" rois a.orvel --image $s --add '{"Shape": "Point", "Points": [[5.5, 5]]}'
grep -q 'is not a pair of whole numbers' err.txt || fail "not integral: $(cat err.txt)"
expect 1 "$cli" rois a.orvel --image $s --remove ROI9
grep -q 'There is no ROI ROI9' err.txt || fail "remove unknown: $(cat err.txt)"
expect 1 "$cli" rois a.orvel --image ${s%/ImageStack}/Time --add '{"Shape": "Point", "Points": [[5, 5]]}'
grep -q 'is not an image stack' err.txt || fail "1-D dataset: $(cat err.txt)"
expect 0 "$cli" rois a.orvel --image $s
cmp -s expected.txt out.txt || fail "a refusal changed the ROIs: $(cat out.txt)"

expect 0 "$cli" rois a.orvel --image $s --remove Soma
grep -qx Soma out.txt || fail "removed name"
expect 0 "$cli" rois a.orvel --image $s
grep -v Soma expected.txt | cmp -s - out.txt || fail "after removal: $(cat out.txt)"

# ImageJ: a rectangle from (4, 5), 10 x 6, and a polygon from (30, 20) with the offsets
# (0, 0), (10, 0), (5, 8), written byte by byte after the public layout.
header() { # header TYPE TOP LEFT BOTTOM RIGHT COUNT: "Iout", version 228, then the fields
  printf 'Iout\x00\xe4'; printf "\\x$(printf %02x $1)\\x00"
  for v in $2 $3 $4 $5 $6; do printf "\\x$(printf %02x $((v >> 8)))\\x$(printf %02x $((v & 255)))"; done
  head -c 46 /dev/zero
}
header 1 5 4 11 14 0 > box.roi
{ header 0 20 30 28 40 3; printf '\x00\x00\x00\x0a\x00\x05\x00\x00\x00\x00\x00\x08'; } > cell.roi
expect 0 "$cli" rois b.orvel --image $s --import box.roi
grep -qx box out.txt || fail "imported name: $(cat out.txt)"
expect 0 "$cli" rois b.orvel --image $s
grep -qx '{"Name":"box","Shape":"Rectangle","Points":\[\[4,5\],\[13,10\]\]}' out.txt || fail "imported rectangle: $(cat out.txt)"
if [ -x "$zip" ]; then
  "$zip" -q RoiSet.zip box.roi cell.roi || fail zip
  expect 1 "$cli" rois b.orvel --image $s --import RoiSet.zip
  grep -q 'An ROI named box already exists' err.txt || fail "set with a name in use: $(cat err.txt)"
  expect 0 "$cli" rois a.orvel --image $s --import RoiSet.zip
  expect 0 "$cli" rois a.orvel --image $s
  grep -qx '{"Name":"cell","Shape":"Polygon","Points":\[\[30,20\],\[40,20\],\[35,28\]\]}' out.txt || fail "set: $(cat out.txt)"
fi

expect 2 "$cli" rois a.orvel --add '{}'
expect 2 "$cli" rois a.orvel --image $s --remove ROI1 --remove ROI2
grep -q '^usage: zarvi-cli rois' err.txt || fail "usage text"
exit 0
