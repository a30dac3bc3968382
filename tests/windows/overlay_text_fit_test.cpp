// No text of any overlay is cut off: every panel in every variant (each
// title and description, with and without the "last modified by" section,
// long names, plain and scrolling lists) and the status overlays are built,
// and each text control's text is measured with the control's own font
// (WM_GETFONT) against the control's client area. A text that does not fit
// shows a user half a word ("Learn" for "Learn More") or loses its last
// line, and nothing tells them.
//
// What is measured, by control:
// - word-wrapped statics: DrawTextW(DT_CALCRECT | DT_WORDBREAK) at the
//   control's width must stay within its width and height;
// - ellipsis statics (people's names): one line must fit in the height;
//   the width ends in "..." by design;
// - owner-drawn statics and buttons, links: one line (GetTextExtentPoint32W)
//   must fit both ways;
// - check boxes: the box and its gap, then the text, on one line.
// A sibling that starts inside the control (a rule a few pixels into the
// description above it) takes that part of its room away.
// Not measured: the rules (id 1005), lines of underscores or hyphens that
// are meant to run off the panel's edge, and the horizontal scroll areas,
// which scroll a long file name by design.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "common/unique_resource.h"
#include "overlay/layouts/active_users_panel.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/wine_test_support.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

HWND badge = nullptr;

std::wstring ClassOf(HWND window) {
  wchar_t name[256] = {};
  GetClassNameW(window, name, 256);
  return name;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

// A SysLink's text without its anchor's markup: what the user reads.
std::wstring ShownLinkText(const std::wstring& markup) {
  std::wstring shown;
  bool inTag = false;
  for (wchar_t c : markup) {
    if (c == L'<') inTag = true;
    else if (c == L'>') inTag = false;
    else if (!inTag) shown += c;
  }
  return shown;
}

struct Misfit {
  std::wstring text;
  SIZE needed;
  SIZE has;
};

// The control's text measured with the control's own font in a screen DC.
class Measure {
 public:
  explicit Measure(HWND control) : control_(control), dc_(GetDC(nullptr)) {
    const HFONT font = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    old_ = SelectObject(dc_, font ? static_cast<HGDIOBJ>(font) : GetStockObject(SYSTEM_FONT));
  }
  ~Measure() {
    SelectObject(dc_, old_);
    ReleaseDC(nullptr, dc_);
  }
  SIZE OneLine(const std::wstring& text) const {
    SIZE size{-1, -1};
    GetTextExtentPoint32W(dc_, text.c_str(), static_cast<int>(text.size()), &size);
    return size;
  }
  SIZE Wrapped(const std::wstring& text, int width, bool noPrefix) const {
    RECT area{0, 0, width, 0};
    DrawTextW(dc_, text.c_str(), -1, &area, DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS | (noPrefix ? DT_NOPREFIX : 0));
    return {area.right, area.bottom};
  }
  int LineHeight() const {
    TEXTMETRICW metrics{};
    metrics.tmHeight = -1;
    GetTextMetricsW(dc_, &metrics);
    return metrics.tmHeight;
  }

 private:
  HWND control_;
  HDC dc_;
  HGDIOBJ old_ = nullptr;
};

RECT RectInParent(HWND control) {
  RECT box{};
  GetWindowRect(control, &box);
  MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&box), 2);
  return box;
}

// The part of the control's client area that no sibling starting inside it
// (below its top, or right of its left edge) covers: a rule drawn across
// the last line of a description hides that line as surely as a short box.
SIZE RoomOf(HWND control, SIZE has) {
  const RECT self = RectInParent(control);
  SIZE room = has;
  for (HWND other = GetWindow(GetParent(control), GW_CHILD); other != nullptr; other = GetWindow(other, GW_HWNDNEXT)) {
    if (other == control) continue;
    const RECT box = RectInParent(other);
    const bool acrossColumns = box.left < self.right && box.right > self.left;
    const bool acrossRows = box.top < self.bottom && box.bottom > self.top;
    if (acrossColumns && box.top > self.top && box.top < self.bottom) room.cy = std::min<LONG>(room.cy, box.top - self.top);
    if (acrossRows && box.left > self.left && box.left < self.right) room.cx = std::min<LONG>(room.cx, box.left - self.left);
  }
  return room;
}

// Every text control under window that does not fit, with what it needs.
std::vector<Misfit> MisfitsOf(HWND window) {
  std::vector<HWND> controls;
  EnumChildWindows(
      window,
      [](HWND child, LPARAM all) -> BOOL {
        reinterpret_cast<std::vector<HWND>*>(all)->push_back(child);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&controls));
  std::vector<Misfit> misfits;
  for (HWND control : controls) {
    const std::wstring className = ClassOf(control);
    const std::wstring text = TextOf(control);
    const DWORD style = static_cast<DWORD>(GetWindowLongW(control, GWL_STYLE));
    RECT client{};
    GetClientRect(control, &client);
    const SIZE has{client.right, client.bottom};
    if (text.empty() || GetDlgCtrlID(control) == 1005) continue;
    const Measure measure(control);
    SIZE needed{0, 0};
    if (lstrcmpiW(className.c_str(), L"Static") == 0) {
      const DWORD type = style & SS_TYPEMASK;
      if (type == SS_OWNERDRAW) {
        needed = measure.OneLine(text);
      } else if (type != SS_LEFT) {
        continue;  // pictures and icons
      } else if (style & SS_ENDELLIPSIS) {
        needed = {0, measure.LineHeight()};
      } else {
        needed = measure.Wrapped(text, has.cx, (style & SS_NOPREFIX) != 0);
      }
    } else if (lstrcmpiW(className.c_str(), L"Button") == 0) {
      needed = measure.OneLine(text);
      if ((style & BS_TYPEMASK) == BS_AUTOCHECKBOX) needed.cx += GetSystemMetrics(SM_CXMENUCHECK) + 4;
    } else if (lstrcmpiW(className.c_str(), L"SysLink") == 0) {
      needed = measure.OneLine(ShownLinkText(text));
    } else {
      continue;  // our own windows: scroll areas that scroll their text
    }
    const SIZE room = RoomOf(control, has);
    if (needed.cx > room.cx || needed.cy > room.cy) misfits.push_back({text, needed, room});
  }
  return misfits;
}

struct Variant {
  std::string name;
  std::function<HWND()> build;
};
void PrintTo(const Variant& variant, std::ostream* out) { *out << variant.name; }

MemberNames Viewers(int count) {
  MemberNames viewers;
  for (int i = 0; i < count; ++i) viewers[L"v-" + std::to_wstring(10 + i)] = L"Viewer " + std::to_wstring(10 + i);
  return viewers;
}

// A name far longer than its field: it must end in "..." on one line.
const wchar_t kLongName[] = L"Maximilian Alexander Fitzgerald-Worthington the Third of Somewhere Far";

std::vector<Variant> AllVariants() {
  std::vector<Variant> v;
  auto add = [&](std::string name, std::function<HWND()> build) { v.push_back({std::move(name), std::move(build)}); };
  add("SafeToEditWithSection",
      [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"2026-03-01 10:15"); });
  add("SafeToEditWithoutSection",
      [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"", L"Ann Lee", L"2026-03-01 10:15"); });
  add("SafeToEditLongName",
      [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", kLongName, L"2026-03-01 10:15"); });
  const MemberNames bob = {{L"e-bob", L"Bob Stone"}};
  const MemberNames bobAndZoe = {{L"e-bob", L"Bob Stone"}, {L"e-zoe", L"Zoe Park"}};
  const MemberNames others = {{L"v-dan", L"Dan"}, {L"v-cat", L"Cat"}, {L"v-eve", L"Eve"}};
  const MemberNames longNamed = {{L"v-long", kLongName}};
  auto active = [](MemberNames editors, MemberNames viewers, bool section) -> std::function<HWND()> {
    return [=] {
      return CreateActiveUsersPanel(OfficeWindow(), badge, L"u-ann42", section ? L"Ann Lee" : L"",
                                    L"2026-03-01 10:15", editors, viewers);
    };
  };
  add("ActiveUsersOneViewer", active({}, Viewers(1), true));
  add("ActiveUsersTwoViewers", active({}, Viewers(2), true));
  add("ActiveUsersOneEditor", active(bob, {}, true));
  add("ActiveUsersOneEditorThreeViewers", active(bob, others, true));
  add("ActiveUsersTwoEditorsWithoutSection", active(bobAndZoe, {}, false));
  add("ActiveUsersEightWithoutSection", active({}, Viewers(8), false));
  add("ActiveUsersTwelveWithSection", active(bobAndZoe, Viewers(10), true));
  add("ActiveUsersLongName", active({}, longNamed, true));
  for (int details = 0; details < 2; ++details) {
    for (int editing = 0; editing < 2; ++editing) {
      for (int downloading = 0; downloading < 2; ++downloading) {
        add(std::string("Download") + (details ? "Details" : "NoDetails") + (editing ? "Editing" : "") +
                (downloading ? "Downloading" : ""),
            [=] {
              return CreateDownloadPanel(OfficeWindow(), badge, details ? L"u-ann42" : L"",
                                         details ? L"Ann Lee" : L"", details ? L"2026-03-01 10:15" : L"",
                                         editing != 0, downloading != 0);
            });
      }
    }
  }
  add("DownloadLongName", [] {
    return CreateDownloadPanel(OfficeWindow(), badge, L"u-ann42", kLongName, L"2026-03-01 10:15", true, false);
  });
  add("Conflict", [] { return CreateConflictPanel(OfficeWindow(), badge); });
  add("Delete", [] { return CreateDeletePanel(OfficeWindow(), badge); });
  add("ErrorReadOnly", [] { return CreateErrorMessagePanel(OfficeWindow(), badge, true); });
  add("ErrorSaving", [] { return CreateErrorMessagePanel(OfficeWindow(), badge, false); });
  for (int renamed = 0; renamed < 2; ++renamed) {
    for (int closeFirst = 0; closeFirst < 2; ++closeFirst) {
      add(std::string(renamed ? "Renamed" : "Moved") + (closeFirst ? "CloseFirst" : ""), [=] {
        return CreateRenameMovePanel(OfficeWindow(), badge, renamed != 0, closeFirst != 0, L"Budget 2025.xlsx",
                                     L"Budget 2026 final.xlsx");
      });
    }
  }
  const char* situations[] = {"Conflict", "Download", "Rename", "Move"};
  for (int situation = 0; situation < 4; ++situation) {
    for (int unsaved = 0; unsaved < 2; ++unsaved) {
      add(std::string("Confirm") + situations[situation] + (unsaved ? "Unsaved" : "Saved"), [=] {
        return CreateConfirmLeavePanel(OfficeWindow(), badge, unsaved != 0, situation == 0, situation == 1,
                                       situation == 2, situation == 3);
      });
    }
  }
  add("NoInternetOverlay", [] { return CreateNoInternetOverlay(OfficeWindow(), nullptr, 100, 100); });
  add("LoadingOverlay", [] { return CreateLoadingOverlay(OfficeWindow(), nullptr, 100, 100); });
  return v;
}

class TextFit : public testing::TestWithParam<Variant> {
 protected:
  static void SetUpTestSuite() {
    SetUpOverlayStage();
    if (badge == nullptr) {
      const POINT home = BadgeHome();
      badge = CreateMainOverlay(OfficeWindow(), home.x, home.y);
    }
  }
};

TEST_P(TextFit, ShowsEveryTextWholeInItsControl) {
  ASSERT_NE(nullptr, badge);
  const UniqueOverlay window(GetParam().build());
  ASSERT_TRUE(window);
  for (const Misfit& misfit : MisfitsOf(window.get())) {
    ADD_FAILURE() << "\"" << Narrow(misfit.text) << "\" needs " << misfit.needed.cx << " x " << misfit.needed.cy
                  << " but has " << misfit.has.cx << " x " << misfit.has.cy;
  }
}

INSTANTIATE_TEST_SUITE_P(Every, TextFit, testing::ValuesIn(AllVariants()),
                         [](const testing::TestParamInfo<Variant>& info) { return info.param.name; });

}  // namespace
