#!/usr/bin/env bash
# Trains the "ocrb" model for Tesseract's classic engine: train.sh DRAWING-PROGRAM RESULT. The same inputs and tool
# versions give the same bytes.
set -euo pipefail
draw=$(readlink -f "$1")
result=$(readlink -f "$2")
here=$(dirname "$(readlink -f "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export LC_ALL=C OMP_THREAD_LIMIT=1 QT_QPA_PLATFORM=offscreen

"$draw" . "${KELVARA_OCRB_SHEETS:-20}"
labels=$(ls ./*.png | cut -d. -f3 | sort -u)
for picture in $(ls ./*.png | sort); do
    base=${picture%.png}
    tesseract "$picture" "$base" --psm 6 -c textord_single_height_mode=1 box.train >>log 2>&1 || { tail log >&2; exit 1; }
done
unicharset_extractor --output_unicharset unicharset --norm_mode 1 $(ls ./*.box | sort) >>log 2>&1
for label in $labels; do echo "$label 0 0 1 0 0"; done >font_properties
# No shapeclustering: it merges glyphs that look alike (O, 0 and D; 8 and B).
mftraining -F font_properties -U unicharset -O ocrb.unicharset $(ls ./*.tr | sort) >>log 2>&1
cntraining $(ls ./*.tr | sort) >>log 2>&1
for part in inttemp normproto pffmtable shapetable; do mv "$part" "ocrb.$part"; done
cp "$here/ocrb.config" ocrb.config
combine_tessdata ocrb. >>log 2>&1
echo "boxes without a blob: $(grep -c FAIL log || true)"
cp ocrb.traineddata "$result"
