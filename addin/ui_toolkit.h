#pragma once

// GDI+ and the common controls (progress bar, SysLink) for the overlays.
void InitUiToolkit();
void ShutdownUiToolkit();
