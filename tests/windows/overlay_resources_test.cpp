// What the overlay keeps of the process's resources over a long session in
// the simulated Word: once every state has been drawn once (so the kept
// fonts, brushes and images exist), a thousand ticks, two hundred rebuilds
// of a crowded active-users panel and two hundred switches between states
// leave the kernel handles, GDI and USER objects where they were, and the
// host's documents with the references they had.
#include <gtest/gtest.h>

#include <functional>

#include "tests/windows/tick_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
// Twelve members: more than the active users list shows without scrolling.
constexpr int kMembers = 12;

std::wstring Members(const wchar_t* prefix, int count) {
  std::wstring list;
  for (int i = 1; i <= count; ++i) list += (i > 1 ? L"|" : L"") + (prefix + std::to_wstring(i));
  return list;
}

// Six editors and six viewers; the first editor and the last modifier have
// avatar files of their own, loaded afresh for every panel.
AnswerFields CrowdedAnswer(const std::wstring& time) {
  AnswerFields answer = QuietAnswer();
  AddEditors(answer, Members(L"u-ed", kMembers / 2), Members(L"Editor ", kMembers / 2));
  AddViewers(answer, Members(L"u-vw", kMembers / 2), Members(L"Viewer ", kMembers / 2));
  answer.last_modified_by_quid = L"u-ed1";
  answer.last_modified_by = L"Editor 1";
  answer.last_modified_time = time;
  return answer;
}

// The states the switching test goes through, in order; each differs from
// the one before, so each tick builds anew. Loading follows a state that
// shows a badge, so it is worth its strip.
std::vector<AnswerFields> StateCycle() {
  std::vector<AnswerFields> cycle;
  AnswerFields viewing = QuietAnswer();
  AddViewers(viewing, L"u-vw1", L"Viewer 1");
  cycle.push_back(viewing);
  AnswerFields loading = viewing;
  loading.is_loading_data_from_server = 1;
  cycle.push_back(loading);
  AnswerFields offline = QuietAnswer();
  offline.is_internet_connected = 0;
  cycle.push_back(offline);
  AnswerFields editing = QuietAnswer();
  AddEditors(editing, L"u-ed1|u-ed2", L"Editor 1|Editor 2");
  editing.last_modified_by_quid = L"u-ed1";
  editing.last_modified_by = L"Editor 1";
  cycle.push_back(editing);
  AnswerFields download = QuietAnswer();
  download.is_download_present = L"Downloaded";
  download.last_modified_by_quid = L"u-ed1";
  download.last_modified_by = L"Editor 1";
  cycle.push_back(download);
  AnswerFields conflict = QuietAnswer();
  conflict.is_conflict_present = 1;
  cycle.push_back(conflict);
  AnswerFields deleted = QuietAnswer();
  deleted.is_delete_present = 1;
  cycle.push_back(deleted);
  AnswerFields renamed = QuietAnswer();
  renamed.is_rename_present = 1;
  renamed.src = L"C:\\Users\\ann\\Filewell\\old name.docx";
  renamed.dest = L"C:\\Users\\ann\\Filewell\\new name.docx";
  cycle.push_back(renamed);
  return cycle;
}

void CopyAvatar(const wchar_t* name) {
  const std::wstring images = AppDataFolder() + L"\\QelvoFilewell\\bin\\images\\user-thumbnail.png";
  const std::wstring avatar = AppDataFolder() + L"\\QelvoFilewell\\avatar\\" + name;
  CopyFileW(images.c_str(), avatar.c_str(), FALSE);
}

class OverlayResources : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    // The display driver keeps handles of its own after its first look at
    // the windows of the process.
    CurrentResourceCounts();
    CopyAvatar(L"ed1");
  }

  void SetUp() override {
    document_ = host_.OpenRecorded(L"long session");
    ASSERT_NE(document_, nullptr);
    path_ = document_->fullName();
    // Every state once, ending where the counting starts.
    for (const AnswerFields& answer : StateCycle()) AnswerAndTick(answer);
    AnswerAndTick(CrowdedAnswer(L"2"));
    AnswerAndTick(CrowdedAnswer(L"1"));
    AnswerAndTick(StateCycle().front());
    document_->AddRef();  // the test's own, to read the count
  }
  void TearDown() override { document_->Release(); }

  // A new answer, one tick, and the queue emptied so that every shown
  // window paints (control colours, owner-drawn buttons).
  void AnswerAndTick(const AnswerFields& answer) {
    Answer(path_, answer);
    Tick();
    PumpMessages();
  }

  static void ExpectCountsBack(const ResourceCounts& before, const ResourceCounts& after, Caller caller = {}) {
    TRACE_CALLER(caller);
    EXPECT_EQ(after.handles, before.handles) << Describe(before) << " / " << Describe(after);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects) << Describe(before) << " / " << Describe(after);
    EXPECT_EQ(after.userObjects, before.userObjects) << Describe(before) << " / " << Describe(after);
  }

  OverlayHost host_{SimHost::Word};
  SimDocument* document_ = nullptr;
  std::wstring path_;
};

TEST_F(OverlayResources, AThousandTicksTakeNothing) {
  const long references = document_->references();
  const long applicationReferences = host_.app().references();
  const long collectionReferences = host_.app().collection()->references();
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 0; i < 1000; ++i) {
    Tick();
    PumpMessages();
  }
  ExpectCountsBack(before, CurrentResourceCounts());
  EXPECT_EQ(document_->references(), references);
  EXPECT_EQ(host_.app().references(), applicationReferences);
  EXPECT_EQ(host_.app().collection()->references(), collectionReferences);
  EXPECT_EQ(KindOf(path_), 8);
}

TEST_F(OverlayResources, RebuildingACrowdedActiveUsersPanelTwoHundredTimesTakesNothing) {
  AnswerAndTick(CrowdedAnswer(L"1"));
  const HWND first = PanelOf(path_);
  ASSERT_TRUE(HasChildText(first, L"LIVE MEMBERS ( 12 )"));
  const long references = document_->references();
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 1; i <= 200; ++i) AnswerAndTick(CrowdedAnswer(i % 2 ? L"2" : L"1"));
  ExpectCountsBack(before, CurrentResourceCounts());
  EXPECT_EQ(document_->references(), references);
  EXPECT_FALSE(IsWindow(first));
  EXPECT_TRUE(HasChildText(PanelOf(path_), L"LIVE MEMBERS ( 12 )"));
  EXPECT_EQ(KindOf(path_), 4);
}

TEST_F(OverlayResources, TwoHundredSwitchesBetweenStatesTakeNothing) {
  const std::vector<AnswerFields> cycle = StateCycle();
  const long references = document_->references();
  const ResourceCounts before = CurrentResourceCounts();
  for (int i = 1; i <= 200; ++i) AnswerAndTick(cycle[i % cycle.size()]);
  ExpectCountsBack(before, CurrentResourceCounts());
  EXPECT_EQ(document_->references(), references);
  EXPECT_EQ(KindOf(path_), 8);
}
}  // namespace
