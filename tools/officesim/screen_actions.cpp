#include "tools/officesim/screen_actions.h"

#include <windows.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>
#include <gdiplus.h>

#include <vector>

#include <cstdio>

#include "common/gdi_guards.h"
#include "common/text.h"
#include "tools/officesim/host_script.h"

namespace {
std::vector<HWND> VisibleWindowsOfThisThread() {
  std::vector<HWND> windows;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM list) {
        if (!IsWindowVisible(window)) return TRUE;
        auto& found = *reinterpret_cast<std::vector<HWND>*>(list);
        found.push_back(window);
        EnumChildWindows(
            window,
            [](HWND child, LPARAM inner) {
              if (IsWindowVisible(child)) reinterpret_cast<std::vector<HWND>*>(inner)->push_back(child);
              return TRUE;
            },
            list);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&windows));
  return windows;
}

std::wstring TextOf(HWND window) {
  wchar_t text[512] = {};
  GetWindowTextW(window, text, 512);
  return text;
}

bool IsButton(HWND window) {
  wchar_t className[64] = {};
  GetClassNameW(window, className, 64);
  return lstrcmpiW(className, L"Button") == 0;
}

bool PngEncoder(CLSID& encoder) {
  UINT count = 0;
  UINT bytes = 0;
  if (Gdiplus::GetImageEncodersSize(&count, &bytes) != Gdiplus::Ok || bytes == 0) return false;
  std::vector<BYTE> buffer(bytes);
  auto* codecs = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
  if (Gdiplus::GetImageEncoders(count, bytes, codecs) != Gdiplus::Ok) return false;
  for (UINT i = 0; i < count; ++i) {
    if (lstrcmpW(codecs[i].MimeType, L"image/png") == 0) {
      encoder = codecs[i].Clsid;
      return true;
    }
  }
  return false;
}
}  // namespace

bool SaveScreenshot(const std::wstring& path) {
  Gdiplus::GdiplusStartupInput input;
  ULONG_PTR token = 0;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return false;
  bool saved = false;
  {
    const int width = GetSystemMetrics(SM_CXSCREEN);
    const int height = GetSystemMetrics(SM_CYSCREEN);
    const WindowDc screen(nullptr);
    UniqueMemoryDc memory(CreateCompatibleDC(screen.get()));
    UniqueHbitmap bitmap(CreateCompatibleBitmap(screen.get(), width, height));
    CLSID png{};
    if (memory && bitmap && PngEncoder(png)) {
      {
        const SelectedObject selected(memory.get(), bitmap.get());
        BitBlt(memory.get(), 0, 0, width, height, screen.get(), 0, 0, SRCCOPY);
      }
      Gdiplus::Bitmap image(bitmap.get(), nullptr);
      saved = image.Save(path.c_str(), &png, nullptr) == Gdiplus::Ok;
    }
  }
  Gdiplus::GdiplusShutdown(token);
  return saved;
}

bool ClickButton(const std::wstring& caption) {
  for (HWND window : VisibleWindowsOfThisThread()) {
    if (IsButton(window) && TextOf(window) == caption) {
      SendMessageW(window, BM_CLICK, 0, 0);
      return true;
    }
  }
  return false;
}

bool ClickAt(int x, int y) {
  const POINT point{x, y};
  HWND window = WindowFromPoint(point);
  if (window == nullptr || GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) return false;
  POINT client = point;
  ScreenToClient(window, &client);
  const LPARAM where = MAKELPARAM(client.x, client.y);
  SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, where);
  SendMessageW(window, WM_LBUTTONUP, 0, where);
  return true;
}

void PrintWindows() {
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM) {
        wchar_t className[128] = {};
        GetClassNameW(window, className, 128);
        RECT place{};
        GetWindowRect(window, &place);
        std::printf("officesim: window %p %s \"%s\" at %ld,%ld %ldx%ld %s owner %p\n", static_cast<void*>(window),
                    ToUtf8(className).c_str(), ToUtf8(TextOf(window)).c_str(), place.left, place.top,
                    place.right - place.left, place.bottom - place.top, IsWindowVisible(window) ? "visible" : "hidden",
                    static_cast<void*>(GetWindow(window, GW_OWNER)));
        return TRUE;
      },
      0);
}

bool WaitForText(const std::wstring& text, unsigned long timeoutMs) {
  const ULONGLONG end = GetTickCount64() + timeoutMs;
  for (;;) {
    for (HWND window : VisibleWindowsOfThisThread()) {
      if (TextOf(window) == text) return true;
    }
    if (GetTickCount64() >= end) return false;
    PumpMessages(100);
  }
}
