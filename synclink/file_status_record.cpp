#include "synclink/file_status_record.h"

void ResetUserActionFlags(FileStatusRecord& record) {
  record.downloadRequested = 0;
  record.reloadPromptPlain = 0;
  record.reloadPromptAskSave = 0;
  record.saveSeparateCopy = 0;
  record.retryModify = 0;
  record.renameMoveClicked = 0;
  record.renameMoveAskShown = 0;
  record.retryRenameOrMove = 0;
  record.retryDelete = 0;
  record.resolveConflictClicked = 0;
  record.conflictAskShown = 0;
  record.resolveConflict = 0;
  record.skipNextUpdate = 0;
}
