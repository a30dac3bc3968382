// officesim: a stand-in for Word, Excel, PowerPoint or Outlook (chosen by
// the executable's own name) that loads COM add-ins as Office does, gives
// them an Application object and a real main window, plays a script of
// user actions, and shuts the add-ins down as Office does at exit.
//
//   WINWORD.EXE [--script FILE] [--cycles N]
//
// --cycles N connects and disconnects a fresh add-in object N times in one
// process and prints the process's resources after the first, the second
// and the last cycle, so leaks show as growth.
#include <windows.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "common/text.h"
#include "tools/officesim/addin_loader.h"
#include "tools/officesim/host_kind.h"
#include "tools/officesim/host_script.h"
#include "tools/officesim/resource_counts.h"
#include "tools/officesim/sim_application.h"
#include "tools/officesim/sim_dispatch.h"

namespace {
// Without a window manager under Xvfb there is no title bar: the window
// paints its own band in the host's colour with its title ("report.docx -
// Word"), so a screenshot shows which document is active.
COLORREF HostColour(SimHost host) {
  switch (host) {
    case SimHost::Word: return RGB(0x2B, 0x57, 0x9A);
    case SimHost::Excel: return RGB(0x21, 0x73, 0x46);
    case SimHost::PowerPoint: return RGB(0xB7, 0x47, 0x2A);
    default: return RGB(0x00, 0x72, 0xC6);
  }
}

void PaintMainWindow(HWND window) {
  PAINTSTRUCT paint;
  HDC dc = BeginPaint(window, &paint);
  RECT client;
  GetClientRect(window, &client);
  FillRect(dc, &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  RECT band = client;
  band.bottom = band.top + 32;
  const auto host = static_cast<SimHost>(GetWindowLongPtrW(window, GWLP_USERDATA));
  HBRUSH bandBrush = CreateSolidBrush(HostColour(host));
  FillRect(dc, &band, bandBrush);
  DeleteObject(bandBrush);
  wchar_t title[512] = {};
  GetWindowTextW(window, title, 512);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(0xFF, 0xFF, 0xFF));
  HGDIOBJ previousFont = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
  DrawTextW(dc, title, -1, &band, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
  SelectObject(dc, previousFont);
  EndPaint(window, &paint);
}

LRESULT CALLBACK MainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT) {
    PaintMainWindow(window);
    return 0;
  }
  if (message == WM_SETTEXT) {
    const LRESULT result = DefWindowProcW(window, message, wParam, lParam);
    InvalidateRect(window, nullptr, FALSE);
    return result;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND CreateMainWindow(SimHost host) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = MainWindowProc;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.lpszClassName = MainWindowClass(host);
  RegisterClassExW(&windowClass);
  HWND window = CreateWindowExW(0, MainWindowClass(host), MainWindowTitle(host), WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                60, 40, 1100, 700, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
  SetWindowLongPtrW(window, GWLP_USERDATA, static_cast<LONG_PTR>(host));
  UpdateWindow(window);
  return window;
}

// Office runs per-monitor DPI aware, so its windows (and the add-in's
// overlays over them) are measured in the monitor's own pixels: at 150 %
// the add-in must draw at 144 DPI itself. Per Monitor v2 where Windows
// has it, else per monitor, else system aware.
void BecomeDpiAwareLikeOffice() {
  using SetContext = BOOL(WINAPI*)(HANDLE);
  const auto set = reinterpret_cast<SetContext>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetProcessDpiAwarenessContext")));
  if (set != nullptr && (set(reinterpret_cast<HANDLE>(-4)) || set(reinterpret_cast<HANDLE>(-3)))) return;
  SetProcessDPIAware();
}

SAFEARRAY* EmptyCustomArray() { return SafeArrayCreateVector(VT_VARIANT, 0, 0); }

double MillisecondsSince(const LARGE_INTEGER& start) {
  LARGE_INTEGER now, frequency;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return 1000.0 * static_cast<double>(now.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Office's COMAddIn object for one add-in, which OnConnection receives as
// AddInInst: its ProgId, its description and whether it is connected.
ComPtr<IDispatch> CreateAddinInstance(const std::wstring& progId) {
  auto* instance = new SimDispatch(L"COMAddIn");
  instance->AddMember(L"ProgId", 0x0, [progId](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnString(result, progId);
  });
  instance->AddMember(L"Description", 0x1, [progId](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnString(result, progId);
  });
  instance->AddMember(L"Connect", 0x6, [](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnBool(result, true);
  });
  return ComPtr<IDispatch>::Attach(instance);
}

// Office's start-up: connect every add-in, then tell them start-up is done.
// An add-in whose OnConnection fails is not kept.
void ConnectAddins(std::vector<LoadedAddin>& addins, SimApplication& application, SAFEARRAY* custom) {
  for (auto it = addins.begin(); it != addins.end();) {
    LARGE_INTEGER start;
    QueryPerformanceCounter(&start);
    if (!it->instance) it->instance = CreateAddinInstance(it->progId);
    // The connect mode Office passes when it loads an add-in at its own start-up.
    const HRESULT hr = it->addin->OnConnection(&application, 3, it->instance.get(), &custom);
    std::printf("officesim: %s OnConnection returned 0x%08lX in %.3f ms\n", ToUtf8(it->progId).c_str(),
                static_cast<unsigned long>(hr), MillisecondsSince(start));
    if (FAILED(hr)) {
      it->addin.reset();
      FreeAddinModule(*it);
      it = addins.erase(it);
      continue;
    }
    ++it;
  }
  for (auto& loaded : addins) loaded.addin->OnStartupComplete(&custom);
}

// Office's exit: OnBeginShutdown, OnDisconnection(ext_dm_HostShutdown = 0),
// release, and unload what may be unloaded.
void DisconnectAddins(std::vector<LoadedAddin>& addins, SAFEARRAY* custom) {
  for (auto& loaded : addins) loaded.addin->OnBeginShutdown(&custom);
  for (auto& loaded : addins) {
    LARGE_INTEGER start;
    QueryPerformanceCounter(&start);
    const HRESULT hr = loaded.addin->OnDisconnection(0, &custom);
    std::printf("officesim: %s OnDisconnection returned 0x%08lX in %.3f ms\n", ToUtf8(loaded.progId).c_str(),
                static_cast<unsigned long>(hr), MillisecondsSince(start));
    loaded.addin.reset();
    FreeAddinModule(loaded);
    // Whatever the add-in kept of its COMAddIn object must be back by now.
    std::printf("officesim: references held by %s on its COMAddIn = %ld\n", ToUtf8(loaded.progId).c_str(),
                static_cast<SimDispatch*>(loaded.instance.get())->references() - 1);
  }
  addins.clear();
  CoFreeUnusedLibraries();
}
}  // namespace

int wmain(int argc, wchar_t** argv) {
  std::wstring scriptPath;
  int cycles = 0;
  for (int i = 1; i < argc; ++i) {
    const std::wstring argument = argv[i];
    if (argument == L"--script" && i + 1 < argc) {
      scriptPath = argv[++i];
    } else if (argument == L"--cycles" && i + 1 < argc) {
      cycles = _wtoi(argv[++i]);
    } else if (argument == L"--help") {
      std::printf("usage: WINWORD.EXE|EXCEL.EXE|POWERPNT.EXE|OUTLOOK.EXE [--script FILE] [--cycles N]\n"
                  "The executable's name decides which Office host is played. See README.md.\n");
      return 0;
    }
  }
  setvbuf(stdout, nullptr, _IONBF, 0);
  BecomeDpiAwareLikeOffice();

  wchar_t exePath[MAX_PATH];
  GetModuleFileNameW(nullptr, exePath, MAX_PATH);
  const SimHost host = HostFromExecutableName(exePath);
  std::printf("officesim: playing %s (%s)\n", ToUtf8(OfficeRegistryName(host)).c_str(), ToUtf8(exePath).c_str());

  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  HWND mainWindow = CreateMainWindow(host);
  auto* application = new SimApplication(host, mainWindow);
  SAFEARRAY* custom = EmptyCustomArray();
  int exitCode = 0;

  if (cycles > 0) {
    // Read between cycles, printed at the end: the printing allocates too.
    // The second reading is there because the heap keeps what the busiest
    // early cycle grew it to, so memory settles one cycle after the others.
    std::vector<std::pair<int, ResourceCounts>> readings;
    readings.reserve(3);
    for (int cycle = 1; cycle <= cycles; ++cycle) {
      std::vector<LoadedAddin> addins = CreateListedAddins(host);
      ConnectAddins(addins, *application, custom);
      PumpMessages(20);
      DisconnectAddins(addins, custom);
      PumpMessages(5);
      if (cycle <= 2 || cycle == cycles) readings.emplace_back(cycle, CurrentResourceCounts());
    }
    for (const auto& [cycle, counts] : readings) {
      std::printf("officesim: resources after cycle %d: %s\n", cycle, Describe(counts).c_str());
    }
  } else {
    std::vector<LoadedAddin> addins = CreateListedAddins(host);
    std::printf("officesim: %zu add-in(s) listed with LoadBehavior 3\n", addins.size());
    ConnectAddins(addins, *application, custom);
    bool scriptOk = true;
    if (!scriptPath.empty()) {
      scriptOk = RunHostScript(ReadScriptFile(scriptPath), *application);
    } else {
      PumpMessages(1000);
    }
    DisconnectAddins(addins, custom);
    if (!scriptOk) exitCode = 2;
  }

  application->ReleaseDocumentsAtExit();
  application->PrintReferences();

  // Every reference the add-ins took on the application must be back.
  std::printf("officesim: application references at exit = %ld\n", application->references());
  application->Release();
  SafeArrayDestroy(custom);
  DestroyWindow(mainWindow);
  CoUninitialize();
  return exitCode;
}
