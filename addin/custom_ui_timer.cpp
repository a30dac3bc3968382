#include "addin/custom_ui_timer.h"

#include "addin/document_handlers.h"
#include "overlay/tick/custom_ui_updater.h"

void CALLBACK CustomUiTimerProc(HWND, UINT, UINT_PTR, DWORD) { UpdateCustomUI(RecordDocument); }
