#pragma once
// What the tick does to one record's overlays once it knows the document is
// still open and whether it holds unsaved changes: clear them, show or hide
// the ones that match, or carry out the state the decision table picks
// (build, re-image or destroy the badge, build the panel, show it or not).
// Works on the tick's copy of the record; the tick stores it back.
#include <string>

#include "overlay/windows/overlay_window_state.h"
#include "synclink/file_status_record.h"

struct RecordPass {
  std::wstring path;
  std::wstring activeFile;
  bool syncAppHasData;
  // The unsaved-changes check gave another answer than the record held.
  bool editingChanged;
};

// Works on the tick's copy of the record and on the file's window state.
void UpdateRecordOverlays(const RecordPass& pass, FileStatusRecord& record, OverlayWindowState& windows);
