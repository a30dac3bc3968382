#include "tests/windows/overlay_test_support.h"

// GDI+'s headers expect min and max, which NOMINMAX takes away.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>
#include <gdiplus.h>

#include <map>
#include <sstream>

#include "common/module_instance.h"
#include "common/text.h"
#include "overlay/windows/ui_toolkit.h"
#include "overlay/windows/window_class_names.h"
#include "overlay/windows/window_classes.h"
#include "tests/windows/wine_test_support.h"

namespace {
constexpr wchar_t kOfficeClass[] = L"QSyncTest-OfficeWindow";

HWND office = nullptr;

LRESULT CALLBACK OfficeWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DefWindowProcW(window, message, wParam, lParam);
}

void CreateOfficeWindow() {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = OfficeWndProc;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = CreateSolidBrush(kOfficeColour);  // kept for the process, like the class
  windowClass.lpszClassName = kOfficeClass;
  RegisterClassExW(&windowClass);
  office = CreateWindowExW(0, kOfficeClass, L"Document1 - Word", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 40, 1100, 700,
                           nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
  UpdateWindow(office);
}

std::wstring Hex(DWORD value) {
  std::wostringstream out;
  out << L"0x" << std::hex << std::uppercase << value;
  return out.str();
}

bool PngEncoder(CLSID& encoder) {
  UINT count = 0;
  UINT bytes = 0;
  if (Gdiplus::GetImageEncodersSize(&count, &bytes) != Gdiplus::Ok || bytes == 0) return false;
  std::vector<BYTE> buffer(bytes);
  auto* encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
  if (Gdiplus::GetImageEncoders(count, bytes, encoders) != Gdiplus::Ok) return false;
  for (UINT i = 0; i < count; ++i) {
    if (std::wstring(encoders[i].MimeType) == L"image/png") {
      encoder = encoders[i].Clsid;
      return true;
    }
  }
  return false;
}

std::wstring ArtefactFolder() {
  wchar_t full[MAX_PATH];
  const std::wstring relative = BinFolder() + L"\\..\\test-artefacts";
  const DWORD length = GetFullPathNameW(relative.c_str(), MAX_PATH, full, nullptr);
  std::wstring folder(full, length);
  CreateDirectoryW(folder.c_str(), nullptr);
  return folder;
}
}  // namespace

void SetUpOverlayStage() {
  static bool ready = false;
  if (ready) return;
  ready = true;
  CreateDirectoryW((AppDataFolder() + L"\\QelvoFilewell").c_str(), nullptr);
  StartFreshLog();
  InitUiToolkit();
  for (const OverlayWindowClass& windowClass : kOverlayWindowClasses) {
    RegisterOverlayWindowClass(ModuleInstance(), windowClass.name);
  }
  CreateOfficeWindow();
  PumpMessagesFor(200);
}

HWND OfficeWindow() { return office; }

POINT BadgeHome() {
  const RECT rect = WindowRectOf(office);
  return {rect.right - 300, rect.bottom - 100};
}

void PumpMessagesFor(DWORD milliseconds) {
  const DWORD start = GetTickCount();
  do {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    Sleep(10);
  } while (GetTickCount() - start < milliseconds);
}

bool operator==(const Rgb& a, const Rgb& b) { return a.r == b.r && a.g == b.g && a.b == b.b; }
bool operator!=(const Rgb& a, const Rgb& b) { return !(a == b); }
std::ostream& operator<<(std::ostream& out, const Rgb& colour) {
  return out << "RGB(" << colour.r << ", " << colour.g << ", " << colour.b << ")";
}
Rgb RgbOf(COLORREF colour) { return {GetRValue(colour), GetGValue(colour), GetBValue(colour)}; }

int Pixels::CountOf(const Rgb& colour, int x, int y, int areaWidth, int areaHeight) const {
  int count = 0;
  for (int row = y; row < y + areaHeight; ++row) {
    for (int column = x; column < x + areaWidth; ++column) {
      if (At(column, row) == colour) ++count;
    }
  }
  return count;
}

namespace {
// 32-bit top-down rows of BGRX into Rgb.
Pixels FromBgrx(int width, int height, const std::vector<std::uint32_t>& bgrx) {
  Pixels pixels;
  pixels.width = width;
  pixels.height = height;
  pixels.rgb.reserve(bgrx.size());
  for (const std::uint32_t value : bgrx) {
    pixels.rgb.push_back({static_cast<int>((value >> 16) & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                          static_cast<int>(value & 0xFF)});
  }
  return pixels;
}

BITMAPINFO TopDown32(int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}
}  // namespace

SIZE SizeOf(HBITMAP bitmap) {
  BITMAP record{};
  if (GetObjectW(bitmap, sizeof(record), &record) == 0) return {0, 0};
  return {record.bmWidth, record.bmHeight};
}

Pixels PixelsOf(HBITMAP bitmap) {
  const SIZE size = SizeOf(bitmap);
  if (size.cx == 0 || size.cy == 0) return {};
  std::vector<std::uint32_t> bits(static_cast<size_t>(size.cx) * size.cy);
  BITMAPINFO info = TopDown32(size.cx, size.cy);
  HDC screen = GetDC(nullptr);
  const int rows = GetDIBits(screen, bitmap, 0, size.cy, bits.data(), &info, DIB_RGB_COLORS);
  ReleaseDC(nullptr, screen);
  if (rows != size.cy) return {};
  return FromBgrx(size.cx, size.cy, bits);
}

bool WritePng(const std::wstring& path, int width, int height, const std::function<std::uint32_t(int, int)>& argbAt) {
  CLSID encoder{};
  if (!PngEncoder(encoder)) return false;
  Gdiplus::Bitmap picture(width, height, PixelFormat32bppARGB);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) picture.SetPixel(x, y, Gdiplus::Color(argbAt(x, y)));
  }
  return picture.Save(path.c_str(), &encoder, nullptr) == Gdiplus::Ok;
}

Pixels CaptureScreen(const RECT& area) {
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  BITMAPINFO info = TopDown32(width, height);
  void* bits = nullptr;
  HBITMAP picture = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ previous = SelectObject(memory, picture);
  BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY | CAPTUREBLT);
  GdiFlush();
  std::vector<std::uint32_t> copy(static_cast<const std::uint32_t*>(bits),
                                  static_cast<const std::uint32_t*>(bits) + static_cast<size_t>(width) * height);
  SelectObject(memory, previous);
  DeleteObject(picture);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return FromBgrx(width, height, copy);
}

std::wstring SaveArtefact(const Pixels& picture, const std::wstring& name) {
  const std::wstring path = ArtefactFolder() + L"\\" + name + L".png";
  const bool written = WritePng(path, picture.width, picture.height, [&](int x, int y) {
    const Rgb colour = picture.At(x, y);
    return 0xFF000000u | (static_cast<std::uint32_t>(colour.r) << 16) | (static_cast<std::uint32_t>(colour.g) << 8) |
           static_cast<std::uint32_t>(colour.b);
  });
  return written ? path : std::wstring();
}

std::vector<ChildRow> ChildrenOf(HWND window) {
  struct Walk {
    HWND top;
    std::vector<ChildRow> rows;
    std::map<HWND, int> rowOf;
  } walk{window, {}, {}};
  EnumChildWindows(
      window,
      [](HWND child, LPARAM walkAddress) -> BOOL {
        auto& walk = *reinterpret_cast<Walk*>(walkAddress);
        ChildRow row;
        row.window = child;
        wchar_t className[256] = {};
        GetClassNameW(child, className, 256);
        row.className = className;
        const int length = GetWindowTextLengthW(child);
        std::wstring text(static_cast<size_t>(length) + 1, L'\0');
        text.resize(static_cast<size_t>(GetWindowTextW(child, text.data(), length + 1)));
        row.text = text;
        row.id = static_cast<ControlId>(GetDlgCtrlID(child));
        const HWND parent = GetParent(child);
        RECT rect = WindowRectOf(child);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
        row.x = rect.left;
        row.y = rect.top;
        row.width = rect.right - rect.left;
        row.height = rect.bottom - rect.top;
        row.style = static_cast<DWORD>(GetWindowLongW(child, GWL_STYLE));
        if (const auto font = reinterpret_cast<HFONT>(SendMessageW(child, WM_GETFONT, 0, 0))) {
          LOGFONTW look{};
          if (GetObjectW(font, sizeof(look), &look) == sizeof(look)) {
            row.font = {true, look.lfHeight, look.lfWeight, look.lfItalic != 0};
          } else {
            row.font = {true, -1, -1, false};
          }
        }
        const auto holder = walk.rowOf.find(parent);
        row.parent = parent == walk.top ? 0 : holder != walk.rowOf.end() ? holder->second : -1;
        walk.rows.push_back(row);
        walk.rowOf[child] = static_cast<int>(walk.rows.size());
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&walk));
  return walk.rows;
}

std::string Describe(const ChildRow& row) {
  std::wostringstream out;
  out << row.className << L" \"" << row.text << L"\" id " << static_cast<int>(row.id) << L" at " << row.x << L","
      << row.y << L" " << row.width << L"x" << row.height << L" style " << Hex(row.style) << L" font ";
  if (row.font.set) {
    out << row.font.height << L"/" << row.font.weight << (row.font.italic ? L" italic" : L"");
  } else {
    out << L"none";
  }
  out << L" in " << row.parent;
  return Utf8(out.str());
}

void ExpectChildren(HWND window, const std::vector<ChildRow>& expected, Caller caller) {
  TRACE_CALLER(caller);
  const std::vector<ChildRow> actual = ChildrenOf(window);
  const size_t rows = std::max(actual.size(), expected.size());
  for (size_t i = 0; i < rows; ++i) {
    const std::string want = i < expected.size() ? Describe(expected[i]) : "(no such child)";
    const std::string got = i < actual.size() ? Describe(actual[i]) : "(no such child)";
    EXPECT_EQ(want, got) << "child " << (i + 1);
  }
}

void ExpectWindowRect(HWND window, int x, int y, int width, int height, Caller caller) {
  TRACE_CALLER(caller);
  const RECT rect = WindowRectOf(window);
  EXPECT_EQ(x, rect.left);
  EXPECT_EQ(y, rect.top);
  EXPECT_EQ(width, rect.right - rect.left);
  EXPECT_EQ(height, rect.bottom - rect.top);
}

std::wstring AvatarFolderForTest() { return AppDataFolder() + L"\\QelvoFilewell\\avatar"; }

std::wstring TestTempFolder() {
  wchar_t temp[MAX_PATH];
  const DWORD length = GetTempPathW(MAX_PATH, temp);
  const std::wstring folder =
      std::wstring(temp, length) + L"qsync-overlay-" + std::to_wstring(GetCurrentProcessId());
  CreateDirectoryW(folder.c_str(), nullptr);
  return folder;
}

std::vector<std::string> ErrorLines() {
  std::vector<std::string> errors;
  for (const LogLine& line : ReadLog(LogFilePath())) {
    if (line.level == "E") errors.push_back(line.message);
  }
  return errors;
}

std::string Utf8(const std::wstring& text) { return ToUtf8(text); }
