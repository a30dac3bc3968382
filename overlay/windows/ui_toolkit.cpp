#include "overlay/windows/ui_toolkit.h"

#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include "common/module_activation_context.h"
#include "log/log_folder.h"
#include "log/write_log.h"
#include "overlay/images/overlay_images.h"

namespace {
// Token of our GDI+ start-up.
ULONG_PTR GdiplusToken = 0;
// Whether GdiplusToken belongs to a start-up of ours that has not been
// ended yet.
bool gdiplusStarted = false;

bool InitCommonControlClass(DWORD controlClass) {
  // Inside our own activation context so that version 6 of the common
  // controls (the one our manifest asks for) is the one initialised.
  ScopedModuleActivation activation;
  INITCOMMONCONTROLSEX controls{sizeof(controls), controlClass};
  return InitCommonControlsEx(&controls) != FALSE;
}
}  // namespace

void InitUiToolkit() {
  Gdiplus::GdiplusStartupInput input;  // version 1, every other option off
  const Gdiplus::Status status = Gdiplus::GdiplusStartup(&GdiplusToken, &input, nullptr);
  if (status != Gdiplus::Ok) {
    WriteLog(LogLevel::Error, L"couldn't initialize win GDI+ - " + std::to_wstring(static_cast<int>(status)));
  } else {
    gdiplusStarted = true;
    WriteLog(LogLevel::Info, L"win GDI+ initialized");
  }

  ImagesFolder = AppDataPath() + L"\\" + L"QelvoFilewell" + L"\\bin\\images";

  if (InitCommonControlClass(ICC_PROGRESS_CLASS)) {
    WriteLog(LogLevel::Info, L"progress common controls initialized");
  } else {
    WriteLog(LogLevel::Error, L"couldn't initialize progress common controls");
  }
  if (InitCommonControlClass(ICC_LINK_CLASS)) {
    WriteLog(LogLevel::Info, L"hyperlink common controls initialized");
  } else {
    WriteLog(LogLevel::Error, L"couldn't initialize hyperlink common controls");
  }
}

void ShutdownUiToolkit() {
  ShutdownGdiplus();
  WriteLog(LogLevel::Info, L"win GDI+ uninitialized");
}

void ShutdownGdiplus() {
  // GDI+ counts start-ups across the process and Office uses it too: a
  // shutdown without a start-up of ours (an idle add-in, a failed start-up)
  // would end Office's.
  if (!gdiplusStarted) return;
  Gdiplus::GdiplusShutdown(GdiplusToken);
  GdiplusToken = 0;
  gdiplusStarted = false;
}
