// What an answer of the sync app may make the overlay do, with answers a
// broken or hostile sync app could send: an avatar identifier becomes a
// file only inside the avatar folder and only a small PNG reaches GDI+;
// names, times and places are shown cleaned, capped and with "&" as "&";
// a list of thousands of members costs what fifty cost.
#include <windows.h>

// GDI+'s headers expect min and max, which NOMINMAX takes away.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "common/text.h"
#include "overlay/images/image_file_names.h"
#include "overlay/images/overlay_images.h"
#include "synclink/update_cycle.h"
#include "tests/windows/overlay_test_support.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/tick_test_support.h"
#include "tests/windows/wine_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
constexpr std::uint32_t kPurpleArgb = 0xFF7828A0u;
constexpr Rgb kPurple{120, 40, 160};
constexpr DWORD kNoPrefix = 0x80;      // SS_NOPREFIX
constexpr DWORD kEndEllipsis = 0x4000;  // SS_ENDELLIPSIS
const std::wstring kEllipsis = L"\u2026";

std::wstring Roaming() { return AppDataFolder() + L"\\QelvoFilewell"; }
std::wstring AvatarFolderPath() { return Roaming() + L"\\avatar"; }

void WriteBytes(const std::wstring& path, const std::string& bytes) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE) << Narrow(path);
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);
}

bool WritePurpleJpeg(const std::wstring& path) {
  UINT count = 0;
  UINT size = 0;
  if (Gdiplus::GetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0) return false;
  std::vector<BYTE> buffer(size);
  auto* encoders = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
  if (Gdiplus::GetImageEncoders(count, size, encoders) != Gdiplus::Ok) return false;
  for (UINT i = 0; i < count; ++i) {
    if (std::wstring(encoders[i].MimeType) != L"image/jpeg") continue;
    Gdiplus::Bitmap picture(40, 40, PixelFormat32bppARGB);
    for (int y = 0; y < 40; ++y) {
      for (int x = 0; x < 40; ++x) picture.SetPixel(x, y, Gdiplus::Color(kPurpleArgb));
    }
    return picture.Save(path.c_str(), &encoders[i].Clsid, nullptr) == Gdiplus::Ok;
  }
  return false;
}

std::string Big32(std::uint32_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>((value >> shift) & 0xFF);
  return bytes;
}

// The start of a PNG that says 5000 × 5000: decoded, a hundred megabytes.
std::string HugePngHeader() {
  return std::string("\x89PNG\r\n\x1a\n", 8) + Big32(13) + "IHDR" + Big32(5000) + Big32(5000) +
         std::string("\x08\x06\x00\x00\x00", 5) + Big32(0) + Big32(0) + "IEND" + Big32(0xAE426082u);
}

std::vector<std::string> ErrorMessages() {
  std::vector<std::string> messages;
  for (const LogLine& line : InProcessHost::Log()) {
    if (line.level == "E") messages.push_back(line.message);
  }
  return messages;
}

std::wstring TextOf(HWND window) {
  const int length = GetWindowTextLengthW(window);
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), length + 1)));
  return text;
}

DWORD StyleOf(HWND window) { return static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)); }

// The member row whose name control shows `name`: its avatar is the
// control made just before the name.
struct MemberRow {
  HWND avatar = nullptr;
  HWND name = nullptr;
};
MemberRow RowNamed(HWND panel, const std::wstring& name) {
  const std::vector<ChildRow> children = ChildrenOf(panel);
  for (size_t i = 1; i < children.size(); ++i) {
    if (children[i].id == ControlId::MemberRow && children[i].text == name)
      return {children[i - 1].window, children[i].window};
  }
  return {};
}

HBITMAP ShownBitmap(HWND control) {
  return reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
}

double MillisecondsOf(void (*work)()) {
  LARGE_INTEGER frequency{};
  LARGE_INTEGER start{};
  LARGE_INTEGER end{};
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  work();
  QueryPerformanceCounter(&end);
  return 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void RunTick() { Tick(); }

// "|"-separated identifiers v-1000… and names "Member n", as the sync app
// lists them.
void AddManyViewers(AnswerFields& answer, int count) {
  std::wstring quids;
  std::wstring names;
  for (int i = 0; i < count; ++i) {
    if (i > 0) {
      quids += L'|';
      names += L'|';
    }
    quids += L"v-" + std::to_wstring(1000 + i);
    names += L"Member " + std::to_wstring(i);
  }
  AddViewers(answer, quids, names);
}

class HostileAnswer : public testing::Test {
 protected:
  void SetUp() override {
    CreateDirectoryW(Roaming().c_str(), nullptr);
    CreateDirectoryW(AvatarFolderPath().c_str(), nullptr);
  }
  void TearDown() override {
    for (const std::wstring& file : made_) DeleteFileW(file.c_str());
  }
  std::wstring Made(const std::wstring& path) {
    made_.push_back(path);
    return path;
  }

  OverlayHost host_{SimHost::Word};
  std::vector<std::wstring> made_;
};

// --- Avatar files ---

TEST_F(HostileAnswer, AvatarsOutsideTheFolderOnDevicesOrNotSmallPngsGiveTheDefaultAvatarAndOneErrorEach) {
  // Each of these files would show a purple picture if it were loaded.
  ASSERT_TRUE(WritePng(Made(Roaming() + L"\\secret.png"), 40, 40, [](int, int) { return kPurpleArgb; }));
  ASSERT_TRUE(WritePurpleJpeg(Made(AvatarFolderPath() + L"\\photo.png")));
  WriteBytes(Made(AvatarFolderPath() + L"\\huge.png"), HugePngHeader());
  const std::wstring purple = Made(AvatarFolderPath() + L"\\purple");
  ASSERT_TRUE(WritePng(purple, 40, 40, [](int, int) { return kPurpleArgb; }));
  WriteBytes(Made(AvatarFolderPath() + L"\\cut.png"), ReadFileBytes(purple).substr(0, 40));

  AnswerFields answer = QuietAnswer();
  AddViewers(answer, L"v-..\\secret.png|v-CON|v-cut.png|v-huge.png|v-photo.png|v-purple",
             L"Dot|Con|Cut|Huge|Photo|Purple");
  const std::wstring path = host_.OpenAnswered(L"avatars", answer)->fullName();
  host_.ClearLog();
  Tick();
  const HWND panel = PanelOf(path);
  ASSERT_NE(panel, nullptr);

  const Pixels fallback = PixelsOf(SharedImage(kDefaultAvatarImage));
  for (const wchar_t* name : {L"Dot", L"Con", L"Cut", L"Huge", L"Photo"}) {
    const MemberRow row = RowNamed(panel, name);
    ASSERT_NE(row.avatar, nullptr) << Narrow(name);
    const Pixels shown = PixelsOf(ShownBitmap(row.avatar));
    EXPECT_EQ(shown.CountOf(kPurple, 0, 0, shown.width, shown.height), 0) << Narrow(name);
    EXPECT_EQ(shown.width, fallback.width) << Narrow(name);
    EXPECT_EQ(shown.rgb.size() == fallback.rgb.size() &&
                  std::equal(shown.rgb.begin(), shown.rgb.end(), fallback.rgb.begin()),
              true)
        << Narrow(name) << " does not show the default avatar";
  }
  // The one plain name with a small PNG is shown.
  const Pixels own = PixelsOf(ShownBitmap(RowNamed(panel, L"Purple").avatar));
  EXPECT_EQ(own.CountOf(kPurple, 0, 0, 40, 40), 40 * 40);

  const std::string folder = Narrow(AvatarFolderPath());
  const std::vector<std::string> errors = ErrorMessages();
  ASSERT_EQ(errors.size(), 5u) << testing::PrintToString(errors);
  EXPECT_EQ(errors[0], "refused avatar file (..\\secret.png) - path separator or drive in name");
  EXPECT_EQ(errors[1], "refused avatar file (CON) - reserved device name");
  const std::string cut = "couldn't load bitmap (" + folder + "\\cut.png) - gdi status=";
  EXPECT_EQ(errors[2].substr(0, cut.size()), cut);
  EXPECT_EQ(errors[3], "couldn't load bitmap (" + folder + "\\huge.png) - PNG picture too large");
  EXPECT_EQ(errors[4], "couldn't load bitmap (" + folder + "\\photo.png) - not a PNG file");
}

TEST_F(HostileAnswer, ReservedDeviceNamesWithExtensionsAndTrailingDotsAreRefusedBeforeAnyFileIsOpened) {
  AnswerFields answer = QuietAnswer();
  AddViewers(answer, L"v-nul.png|v-COM1|v-LPT9.txt|v-aux .png|v-ann.|v-a:b|v-..", L"A|B|C|D|E|F|G");
  const std::wstring path = host_.OpenAnswered(L"devices", answer)->fullName();
  host_.ClearLog();
  Tick();
  ASSERT_NE(PanelOf(path), nullptr);
  const std::vector<std::string> expected = {
      "refused avatar file (..) - parent folder in name",
      "refused avatar file (COM1) - reserved device name",
      "refused avatar file (LPT9.txt) - reserved device name",
      "refused avatar file (a:b) - path separator or drive in name",
      "refused avatar file (ann.) - name ends in a dot or blank",
      "refused avatar file (aux .png) - reserved device name",
      "refused avatar file (nul.png) - reserved device name",
  };
  EXPECT_EQ(ErrorMessages(), expected);
}

// --- Texts from the answer ---

TEST_F(HostileAnswer, AMegabyteNameWithLineBreaksAndAnOverrideIsShownCleanedCappedAndWithItsAmpersand) {
  AnswerFields answer = QuietAnswer();
  answer.last_modified_by_quid = L"u-nobody";
  answer.last_modified_by = L"Bob\r\n&\u202EStone";
  answer.last_modified_time = L"\u2066" L"2026-03-01\r\n10:15 & later" + std::wstring(1024 * 1024, L'9');
  AddViewers(answer, L"v-ann", L"Ann\r\n\u202E&Co" + std::wstring(1024 * 1024, L'x'));
  const std::wstring path = host_.OpenAnswered(L"names", answer)->fullName();
  const double ms = MillisecondsOf(RunTick);
  std::printf("tick with three 1 MB texts: %.1f ms\n", ms);
  EXPECT_LT(ms, 10000.0);  // a freeze, not a speed limit
  const HWND panel = PanelOf(path);
  ASSERT_NE(panel, nullptr);

  const MemberRow member = RowNamed(panel, L"Ann&Co" + std::wstring(249, L'x') + kEllipsis);
  ASSERT_NE(member.name, nullptr) << testing::PrintToString(ChildTexts(panel).size());
  EXPECT_EQ(StyleOf(member.name) & (kNoPrefix | kEndEllipsis), kNoPrefix | kEndEllipsis);
  EXPECT_EQ(TextOf(member.name).size(), 256u);

  HWND name = nullptr;
  HWND time = nullptr;
  for (const ChildRow& child : ChildrenOf(panel)) {
    if (child.text == L"Bob&Stone") name = child.window;
    if (child.text.rfind(L"Modified on ", 0) == 0) time = child.window;
  }
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(StyleOf(name) & kNoPrefix, kNoPrefix);
  ASSERT_NE(time, nullptr);
  EXPECT_EQ(TextOf(time), L"Modified on 2026-03-0110:15 & later" + std::wstring(64 - 23 - 1, L'9') + kEllipsis);
  EXPECT_EQ(StyleOf(time) & kNoPrefix, kNoPrefix);

  ShowWindow(panel, SW_SHOWNA);
  PumpMessages();
  SaveArtefact(CaptureScreen(WindowRectOf(panel)), L"panel-HostileNames");
}

TEST_F(HostileAnswer, ARenameToAMegabytePlaceWithAnOverrideShowsBothPlacesCleanedAndCapped) {
  AnswerFields answer = QuietAnswer();
  answer.is_rename_present = 1;
  answer.src = L"report\u202Excod.exe\r\n" + std::wstring(1024 * 1024, L'a');
  answer.dest = L"new\u2067 &name.docx";
  const std::wstring path = host_.OpenAnswered(L"renamed", answer)->fullName();
  Tick();
  const HWND panel = PanelOf(path);
  ASSERT_NE(panel, nullptr);
  const HWND from = ChildWithId(panel, ControlId::PreviousName);
  const HWND to = ChildWithId(panel, ControlId::NewName);
  ASSERT_NE(from, nullptr);
  ASSERT_NE(to, nullptr);
  EXPECT_EQ(TextOf(from), L"reportxcod.exe" + std::wstring(1024 - 14 - 1, L'a') + kEllipsis);
  EXPECT_EQ(TextOf(to), L"new &name.docx");
}

// --- Many members ---

TEST_F(HostileAnswer, FiveThousandMembersCostTheWindowsAndGdiObjectsOfFiftyTwo) {
  AnswerFields answer = QuietAnswer();
  AddManyViewers(answer, 51);
  const std::wstring path = host_.OpenAnswered(L"crowded", answer)->fullName();
  // The first panel makes what is kept for the process (fonts, brushes,
  // images); the second is counted.
  Tick();
  AddManyViewers(answer, 52);
  Answer(path, answer);
  const double fiftyTwoMs = MillisecondsOf(RunTick);
  std::printf("tick building the panel of 52 members: %.1f ms\n", fiftyTwoMs);
  ASSERT_NE(PanelOf(path), nullptr);
  EXPECT_TRUE(HasChildText(PanelOf(path), L"and 2 more"));
  const ResourceCounts fiftyTwo = CurrentResourceCounts();

  AddManyViewers(answer, 5000);
  Answer(path, answer);
  const double ms = MillisecondsOf(RunTick);
  std::printf("tick building the panel of 5,000 members: %.1f ms\n", ms);
  RecordProperty("tick_5000_members_ms", static_cast<int>(ms));
  EXPECT_LT(ms, 20000.0);  // a freeze, not a speed limit
  const HWND panel = PanelOf(path);
  ASSERT_NE(panel, nullptr);
  EXPECT_TRUE(HasChildText(panel, L"LIVE MEMBERS ( 5000 )"));
  EXPECT_TRUE(HasChildText(panel, L"and 4,950 more"));
  EXPECT_TRUE(HasChildText(panel, L"Member 49"));
  EXPECT_FALSE(HasChildText(panel, L"Member 50"));
  const ResourceCounts fiveThousand = CurrentResourceCounts();
  EXPECT_EQ(fiveThousand.userObjects, fiftyTwo.userObjects) << Describe(fiftyTwo) << " then " << Describe(fiveThousand);
  EXPECT_EQ(fiveThousand.gdiObjects, fiftyTwo.gdiObjects) << Describe(fiftyTwo) << " then " << Describe(fiveThousand);
}

// --- Across the pipe ---

TEST_F(HostileAnswer, AHostileAnswerFromTheSyncAppReachesTheScreenCleanedCappedAndWithoutLeavingTheFolder) {
  const std::wstring path = host_.OpenRecorded(L"piped")->fullName();
  ASSERT_TRUE(WritePng(Made(Roaming() + L"\\secret.png"), 40, 40, [](int, int) { return kPurpleArgb; }));
  std::wstring quids = L"v-..\\secret.png";
  std::wstring names = L"Eve\r\n\u202Egnp.exe & Co";
  for (int i = 0; i < 59; ++i) {
    quids += L"|v-" + std::to_wstring(100 + i);
    names += L"|Member " + std::to_wstring(i);
  }
  const std::wstring text = L"{\"resp\":[{\"file_path\":\"" + path +
                            L"\",\"is_sync_file\":\"true\",\"file_combo_id\":\"k3v9x\",\"is_internet_connected\":"
                            L"\"true\",\"is_loading_data_from_server\":\"false\",\"is_download_present\":\"Already "
                            L"Up-to-date\",\"all_viewers_quid\":\"" +
                            quids + L"\",\"all_viewers_names\":\"" + names + L"\"}]}";
  const std::wstring answerFile = FreshTempPath(L"hostile-answer.txt");
  WriteUtf8File(answerFile, text);
  SyncSimProcess syncSim;
  ASSERT_TRUE(syncSim.Start(L"--answer-file " + Quoted(answerFile) + L" --run-ms 60000"));
  RunUpdateCycle(ExchangeBounds{kUpdateExchangeLimitMs, nullptr});
  syncSim.Stop();
  host_.ClearLog();
  Tick();

  const HWND panel = PanelOf(path);
  ASSERT_NE(panel, nullptr);
  EXPECT_TRUE(HasChildText(panel, L"LIVE MEMBERS ( 60 )"));
  EXPECT_TRUE(HasChildText(panel, L"and 10 more"));
  const MemberRow eve = RowNamed(panel, L"Evegnp.exe & Co");
  ASSERT_NE(eve.name, nullptr);
  EXPECT_EQ(StyleOf(eve.name) & kNoPrefix, kNoPrefix);
  const Pixels shown = PixelsOf(ShownBitmap(eve.avatar));
  EXPECT_EQ(shown.CountOf(kPurple, 0, 0, shown.width, shown.height), 0);
  const std::vector<std::string> errors = ErrorMessages();
  EXPECT_EQ(std::count(errors.begin(), errors.end(),
                       "refused avatar file (..\\secret.png) - path separator or drive in name"),
            1);
}
}  // namespace
