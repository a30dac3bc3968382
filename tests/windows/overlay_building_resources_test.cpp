// What the overlays cost the Office process: every panel and status overlay
// built, shown, painted and destroyed a hundred times must leave the
// process's GDI and USER objects (and kernel handles) where they were, and a
// person's avatar is loaded for its panel and freed with it. Counted as the
// simulated Office counts them for its leak checks.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "common/unique_resource.h"
#include "overlay/layouts/active_users_panel.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/image_loading.h"
#include "overlay/images/layering.h"
#include "overlay/images/overlay_images.h"
#include "overlay/windows/panels.h"
#include "overlay/windows/status_overlays.h"
#include "tests/caller.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/wine_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
using UniqueOverlay = UniqueResource<OverlayWindowTraits>;

HWND badge = nullptr;

// Shown and painted, children included, as a user would see it before it
// goes: the colours, the owner-drawn buttons' rounded corners, the link's
// underlined font and the bar's timer all come and go with painting.
void ShowAndPaint(HWND window) {
  ShowWindow(window, SW_SHOWNA);
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void ExpectSameCounts(const ResourceCounts& before, const ResourceCounts& after, Caller caller = {}) {
  TRACE_CALLER(caller);
  EXPECT_EQ(before.gdiObjects, after.gdiObjects) << Describe(before) << " then " << Describe(after);
  EXPECT_EQ(before.userObjects, after.userObjects) << Describe(before) << " then " << Describe(after);
  EXPECT_EQ(before.handles, after.handles) << Describe(before) << " then " << Describe(after);
}

struct Builder {
  std::string name;
  std::function<HWND()> build;
};

MemberNames Viewers(int count) {
  MemberNames viewers;
  for (int i = 0; i < count; ++i) viewers[L"v-" + std::to_wstring(10 + i)] = L"Viewer " + std::to_wstring(10 + i);
  return viewers;
}

HWND BadgeWithPicture() {
  const POINT home = BadgeHome();
  HWND made = CreateMainOverlay(OfficeWindow(), home.x - 100, home.y);
  if (made != nullptr) ApplyLayering(made, SharedImage(kDriveTickImage), RGB(169, 169, 169));
  return made;
}

std::vector<Builder> Builders() {
  const RECT office = WindowRectOf(OfficeWindow());
  const int x = office.left + 100;
  const int y = office.top + 100;
  return {
      {"Badge", BadgeWithPicture},
      {"LoadingStrip", [=] { return CreateLoadingOverlay(OfficeWindow(), SharedImage(kDriveMonoBigImage), x, y); }},
      {"NoInternetStrip",
       [=] { return CreateNoInternetOverlay(OfficeWindow(), SharedImage(kDriveMonoBigImage), x, y); }},
      {"SafeToEdit",
       [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"2026-03-01 10:15"); }},
      {"ActiveUsers",
       [] {
         return CreateActiveUsersPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"2026-03-01 10:15",
                                       {{L"e-bob", L"Bob Stone"}}, {{L"v-cat", L"Cat"}, {L"v-dan", L"Dan"}});
       }},
      {"ActiveUsersScrolling",
       [] { return CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", {}, Viewers(12)); }},
      {"DownloadEditing",
       [] { return CreateDownloadPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today", true, false); }},
      {"Downloading", [] { return CreateDownloadPanel(OfficeWindow(), badge, L"", L"", L"", true, true); }},
      {"Conflict", [] { return CreateConflictPanel(OfficeWindow(), badge); }},
      {"Delete", [] { return CreateDeletePanel(OfficeWindow(), badge); }},
      {"ErrorReadOnly", [] { return CreateErrorMessagePanel(OfficeWindow(), badge, true); }},
      {"ErrorSaving", [] { return CreateErrorMessagePanel(OfficeWindow(), badge, false); }},
      {"Renamed",
       [] {
         return CreateRenameMovePanel(OfficeWindow(), badge, true, false, L"C:\\a very long old name.docx",
                                      L"C:\\new.docx");
       }},
      {"MovedCloseFirst",
       [] { return CreateRenameMovePanel(OfficeWindow(), badge, false, true, L"C:\\from", L"C:\\to"); }},
      {"ConfirmDownloadUnsaved",
       [] { return CreateConfirmLeavePanel(OfficeWindow(), badge, true, false, true, false, false); }},
      {"ConfirmConflictSaved",
       [] { return CreateConfirmLeavePanel(OfficeWindow(), badge, false, true, false, false, false); }},
  };
}

class OverlayResources : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    SetUpOverlayStage();
    if (badge == nullptr) {
      const POINT home = BadgeHome();
      badge = CreateMainOverlay(OfficeWindow(), home.x, home.y);
    }
    // Everything that is made once and kept for the process (fonts by
    // role, the installed images, the colours' brushes, the log file, the
    // counting's own first look) is made before anything is counted.
    CurrentResourceCounts();
    for (const Builder& builder : Builders()) {
      HWND window = builder.build();
      if (window != nullptr) {
        ShowAndPaint(window);
        DestroyWindow(window);
      }
    }
    PumpMessagesFor(200);
  }
  void SetUp() override { ASSERT_NE(nullptr, badge); }
};

class BuiltAHundredTimes : public OverlayResources, public testing::WithParamInterface<Builder> {};

TEST_P(BuiltAHundredTimes, LeavesTheProcesssObjectsAsTheyWere) {
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 0; i < 100; ++i) {
    HWND window = GetParam().build();
    ASSERT_NE(nullptr, window) << "round " << i;
    ShowAndPaint(window);
    ASSERT_TRUE(DestroyWindow(window)) << "round " << i;
  }
  PumpMessagesFor(100);
  ExpectSameCounts(before, CurrentResourceCounts());
}

INSTANTIATE_TEST_SUITE_P(EachOverlay, BuiltAHundredTimes, testing::ValuesIn(Builders()),
                         [](const testing::TestParamInfo<Builder>& info) { return info.param.name; });

// --- A person's own avatar ---

constexpr Rgb kAvatarPurple{120, 40, 160};

// %APPDATA%\QelvoFilewell\avatar\<identifier less its first two
// characters>, a 40 × 40 purple PNG; removed again at the end.
class OwnAvatar : public OverlayResources {
 protected:
  void SetUp() override {
    OverlayResources::SetUp();
    CreateDirectoryW(AvatarFolderForTest().c_str(), nullptr);
    path_ = AvatarFolderForTest() + L"\\ann42";
    ASSERT_TRUE(WritePng(path_, 40, 40, [](int, int) { return 0xFF7828A0u; }));
  }
  void TearDown() override { DeleteFileW(path_.c_str()); }

  // The bitmap the panel's first picture control shows.
  static HBITMAP AvatarOf(HWND panel, int avatarRow) {
    const HWND control = ChildrenOf(panel).at(static_cast<size_t>(avatarRow)).window;
    return reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
  }
  std::wstring path_;
};

// The safe-to-edit panel's avatar is its fifth child.
constexpr int kSafeToEditAvatar = 4;

TEST_F(OwnAvatar, IsShownInsteadOfTheDefaultOne) {
  const UniqueOverlay panel(CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today"));
  ASSERT_TRUE(panel);
  const HBITMAP avatar = AvatarOf(panel.get(), kSafeToEditAvatar);
  ASSERT_NE(nullptr, avatar);
  EXPECT_NE(SharedImage(kDefaultAvatarImage), avatar);
  const Pixels pixels = PixelsOf(avatar);
  ASSERT_EQ(40, pixels.width);
  ASSERT_EQ(40, pixels.height);
  EXPECT_EQ(40 * 40, pixels.CountOf(kAvatarPurple, 0, 0, 40, 40));
}

TEST_F(OwnAvatar, IsOnScreenInItsPlace) {
  const UniqueOverlay panel(CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today"));
  ASSERT_TRUE(panel);
  ShowWindow(panel.get(), SW_SHOWNA);
  PumpMessagesFor(400);
  POINT origin{0, 0};
  ClientToScreen(panel.get(), &origin);
  const Pixels picture = CaptureScreen(WindowRectOf(panel.get()));
  SaveArtefact(picture, L"panel-SafeToEditWithOwnAvatar");
  const RECT frame = WindowRectOf(panel.get());
  const int left = origin.x - frame.left + 20;
  const int top = origin.y - frame.top + 145;
  EXPECT_EQ(40 * 40, picture.CountOf(kAvatarPurple, left, top, 40, 40));
}

// The GDI objects a panel holds while it lives (the link's underlined font,
// the pictures that are its own).
long GdiObjectsHeldBy(const std::function<HWND()>& build) {
  const ResourceCounts before = CurrentResourceCounts();
  HWND panel = build();
  EXPECT_NE(nullptr, panel);
  const ResourceCounts during = CurrentResourceCounts();
  DestroyWindow(panel);
  return static_cast<long>(during.gdiObjects) - static_cast<long>(before.gdiObjects);
}

TEST_F(OwnAvatar, HoldsOneGdiObjectMoreThanTheDefaultAvatarWhileItsPanelLives) {
  const long withDefault = GdiObjectsHeldBy(
      [] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"u-nobody", L"Ann Lee", L"today"); });
  const long withOwn =
      GdiObjectsHeldBy([] { return CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today"); });
  EXPECT_EQ(withDefault + 1, withOwn);
}

TEST_F(OwnAvatar, IsDeletedWithItsPanel) {
  const ResourceCounts before = CurrentResourceCounts();
  HWND panel = CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today");
  ASSERT_NE(nullptr, panel);
  ShowAndPaint(panel);
  const HBITMAP avatar = AvatarOf(panel, kSafeToEditAvatar);
  ASSERT_EQ(static_cast<DWORD>(OBJ_BITMAP), GetObjectType(avatar));
  DestroyWindow(panel);
  EXPECT_EQ(0u, GetObjectType(avatar));
  ExpectSameCounts(before, CurrentResourceCounts());
}

TEST_F(OwnAvatar, IsLoadedAfreshForEveryPanel) {
  // The sync app may put a newer picture there at any time.
  HWND first = CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today");
  ASSERT_NE(nullptr, first);
  ASSERT_TRUE(WritePng(path_, 40, 40, [](int, int) { return 0xFF1E9641u; }));
  const UniqueOverlay second(CreateSafeToEditPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today"));
  ASSERT_TRUE(second);
  EXPECT_EQ(1600, PixelsOf(AvatarOf(first, kSafeToEditAvatar)).CountOf(kAvatarPurple, 0, 0, 40, 40));
  EXPECT_EQ(1600, PixelsOf(AvatarOf(second.get(), kSafeToEditAvatar)).CountOf({30, 150, 65}, 0, 0, 40, 40));
  DestroyWindow(first);
}

TEST_F(OwnAvatar, IsFreedWithItsPanelForEveryMemberAndTheLastModifier) {
  // Ann's file serves the last modifier and one member alike: each row
  // loads its own copy, and all of them go with the panel.
  const MemberNames members = {{L"v-ann42", L"Ann Lee"}, {L"v-cat", L"Cat"}};
  // Two of Ann's pictures (her row and the section) beyond what the same
  // panel holds with nobody's own avatar.
  const long withDefaults = GdiObjectsHeldBy([] {
    return CreateActiveUsersPanel(OfficeWindow(), badge, L"u-nobody", L"Ann Lee", L"today", {},
                                  {{L"v-nobody", L"Ann Lee"}, {L"v-cat", L"Cat"}});
  });
  EXPECT_EQ(withDefaults + 2, GdiObjectsHeldBy([&] {
              return CreateActiveUsersPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today", {}, members);
            }));
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 0; i < 100; ++i) {
    HWND panel = CreateActiveUsersPanel(OfficeWindow(), badge, L"u-ann42", L"Ann Lee", L"today", {}, members);
    ASSERT_NE(nullptr, panel);
    ShowAndPaint(panel);
    DestroyWindow(panel);
  }
  ExpectSameCounts(before, CurrentResourceCounts());
}

TEST_F(OwnAvatar, LeavesTheDefaultAvatarAliveWhenItsPanelGoes) {
  HWND panel = CreateActiveUsersPanel(OfficeWindow(), badge, L"", L"", L"", {}, {{L"v-cat", L"Cat"}});
  ASSERT_NE(nullptr, panel);
  DestroyWindow(panel);
  EXPECT_EQ(static_cast<DWORD>(OBJ_BITMAP), GetObjectType(SharedImage(kDefaultAvatarImage)));
}
}  // namespace
