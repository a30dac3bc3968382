#!/usr/bin/env bash
# Cuts each state's overlay out of the main job's screenshots: one small
# PNG per state, named for it, for docs/gallery/ and the README.
#   scripts/make-gallery.sh [screenshots-folder] [gallery-folder]
if [ "${1:-}" = "--help" ]; then
  cat <<'USAGE'
usage: scripts/make-gallery.sh [SCREENSHOTS-FOLDER] [GALLERY-FOLDER]
  cuts each state's overlay out of the main job's screenshots (default build/main-job -> docs/gallery)
USAGE
  exit 0
fi
set -eu
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
shots="${1:-$root/build/main-job}"
gallery="${2:-$root/docs/gallery}"
mkdir -p "$gallery"

# screenshot -> state
pairs=(
  word-1-loading:loading
  word-2-no-internet:no-internet
  word-3-viewing-only:viewing-only
  word-4-editing-4-members:editing
  word-5-editing-12-members-scrolling:editing-many-members:660x880+500+630
  word-6-safe-to-edit:safe-to-edit
  word-8-download:download
  word-9-downloading:downloading
  word-10-reload:reload
  word-11-download-unsaved-changes:download-with-unsaved-changes
  word-12-reload-save-copy-or-discard:reload-save-copy-or-discard
  word-13-conflict:conflict
  word-14-conflict-continue:conflict-continue
  excel-conflict-save-or-discard:conflict-save-or-discard
  word-15-renamed:renamed
  word-16-renamed-continue:rename-continue
  word-17-moved-close-first:moved-close-first
  word-18-deleted:deleted
  word-19-renamed-save-or-discard:rename-save-or-discard
  word-20-error-read-only:error-read-only
  word-21-error-save:error-save
  # At 150 % (144 DPI): the badge's home is 450 and 150 pixels in from the
  # Office window's lower right, and the panel, one and a half times as
  # large, opens below the badge.
  word-144dpi-1-loading:loading-150-percent:500x240+600+520
  word-144dpi-2-editing-4-members:editing-150-percent:620x960+205+570
  word-144dpi-3-no-internet:no-internet-150-percent:500x240+600+520
)
for pair in "${pairs[@]}"; do
  IFS=: read -r name state crop <<< "$pair"
  shot="$shots/$name.png"
  # The simulated Office window's lower right, below its title band, where
  # the badge and its panel sit (a panel too tall for the space above the
  # badge hangs below it, past the window).
  crop="${crop:-736x638+420+97}"
  [ -f "$shot" ] || { echo "missing $shot" >&2; continue; }
  convert "$shot" -crop "$crop" +repage -fuzz 2% -trim +repage \
    -bordercolor white -border 10 -bordercolor '#c8c8c8' -border 1 \
    -resize 75% -strip "$gallery/$state.png"
done
ls "$gallery"
