#pragma once

// GDI+ and the common controls (progress bar, SysLink) for the overlays.
void InitUiToolkit();
// Ends GDI+ and logs it.
void ShutdownUiToolkit();
// Ends our GDI+ start-up, if one is running, without logging.
void ShutdownGdiplus();
