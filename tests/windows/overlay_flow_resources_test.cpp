// Each panel flow played many times in a row, in Word, Excel and
// PowerPoint, a fresh document each round: whatever a round takes (panels,
// badges, their fonts, brushes and pictures, the pipe's handles, references
// on the host's objects) it gives back. Counted after a few rounds of
// warm-up, which load what the add-in keeps for the life of the process
// (images, fonts, the default avatar). The buttons are clicked as their
// panels receive the click (the panel flows test presses them as a user
// does), which keeps many rounds quick under Wine.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

#include "tests/windows/flow_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
constexpr int kWarmUpRounds = 5;
// Thirty-two rounds of every flow in Word; Excel and PowerPoint, whose flows
// differ only in the host's own calls, get a quarter of that. A round that
// keeps even one handle, GDI or USER object or reference shows at once in
// that many, and the suite stays inside its time. QSYNC_FLOW_ROUNDS sets
// Word's number for a longer soak (200 is the soak the README gives).
int WordRounds() {
  char text[16] = {};
  const DWORD length = GetEnvironmentVariableA("QSYNC_FLOW_ROUNDS", text, sizeof text);
  const int rounds = length > 0 && length < sizeof text ? std::atoi(text) : 0;
  return rounds >= 4 ? rounds : 32;
}
int CountedRounds(SimHost host) { return host == SimHost::Word ? WordRounds() : WordRounds() / 4; }

// How one round goes after the tick that shows the file's story. Every
// round ends with the document closed (by the add-in or, where the flow
// leaves it to the user, by the user).
struct Flow {
  const char* name;
  // The sync app's story of the file, after the lines of a synced file.
  const wchar_t* story;
  bool edited;
  bool readOnly;
  void (*play)(OfficeFlow& flow, SimDocument* document, const std::wstring& path);
};

HWND Panel(const std::wstring& path) { return OfficeFlow::PanelOf(path); }

// The user closes what the flow left open, letting the changes go.
void UserCloses(OfficeFlow& flow, SimDocument* document, const std::wstring& path) {
  if (flow.app().FindDocument(path) == document) {
    flow.app().CloseDocument(document, SimApplication::SaveChoice::Discard);
  }
}

const wchar_t kDownloaded[] = L"set is_download_present=Downloaded\n";
const wchar_t kConflict[] = L"set is_conflict_present=true\n";
const wchar_t kRenamed[] = L"set is_rename_present=true\nset src=old name\nset dest=new name\n";
const wchar_t kMoved[] = L"set is_move_present=true\nset src=C:\\Filewell\\A\nset dest=C:\\Filewell\\B\n";
const wchar_t kMovedCloseFirst[] =
    L"set is_move_present=true\nset is_folder_move_present=true\nset src=C:\\Filewell\\A\nset dest=C:\\Filewell\\B\n";
const wchar_t kDeleted[] = L"set is_delete_present=true\n";
const wchar_t kViewed[] = L"set all_viewers_quid=u1bo\nset all_viewers_names=Bo Chan\n";

const Flow kFlows[] = {
    {"DownloadReload", kDownloaded, false, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::Download);
       flow.Tick();
       flow.Click(Panel(path), ControlId::Reload);
     }},
    {"DownloadSaveCopy", kDownloaded, true, false,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring& path) {
       flow.Check(Panel(path), ControlId::SaveSeparateCopy);
       flow.Click(Panel(path), ControlId::Download);
       flow.Tick();
       flow.Click(Panel(path), ControlId::Reload);
       flow.app().SetPromptAnswer(SimApplication::PromptAnswer::Discard);
       flow.Click(Panel(path), ControlId::SaveCopyAndReload);
       UserCloses(flow, document, path);  // PowerPoint cannot ask, so it kept it open
     }},
    {"DownloadDiscard", kDownloaded, true, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::Download);
       flow.Tick();
       flow.Click(Panel(path), ControlId::DiscardAndReload);
     }},
    {"ConflictContinue", kConflict, false, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::ResolveConflict);
       flow.Click(Panel(path), ControlId::ContinueToResolve);
     }},
    {"ConflictSave", kConflict, true, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::ResolveConflict);
       flow.Click(Panel(path), ControlId::SaveAndResolve);
     }},
    {"ConflictDiscard", kConflict, true, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::ResolveConflict);
       flow.Click(Panel(path), ControlId::DiscardAndResolve);
     }},
    {"RenameReload", kRenamed, false, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::FollowRenameOrMove);
       flow.Click(Panel(path), ControlId::ContinueToFollow);
     }},
    {"MoveSave", kMoved, true, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::FollowRenameOrMove);
       flow.Click(Panel(path), ControlId::SaveAndFollow);
     }},
    {"RenameDiscard", kRenamed, true, false,
     [](OfficeFlow& flow, SimDocument*, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::FollowRenameOrMove);
       flow.Click(Panel(path), ControlId::DiscardAndFollow);
     }},
    {"MoveCloseFirst", kMovedCloseFirst, false, false,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring&) {
       flow.app().CloseDocument(document, SimApplication::SaveChoice::Prompt);
     }},
    {"Delete", kDeleted, false, false,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring&) {
       flow.app().CloseDocument(document, SimApplication::SaveChoice::Prompt);
     }},
    {"Hide", kViewed, false, false,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::Hide);
       flow.app().CloseDocument(document, SimApplication::SaveChoice::Prompt);
     }},
    {"ReadOnlyError", kRenamed, true, true,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring& path) {
       flow.Click(Panel(path), ControlId::FollowRenameOrMove);
       flow.Click(Panel(path), ControlId::SaveAndFollow);
       flow.Tick();
       flow.Tick();
       UserCloses(flow, document, path);
     }},
    {"SaveError", kMoved, true, false,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring& path) {
       document->SetFailingSaves(true);
       flow.Click(Panel(path), ControlId::FollowRenameOrMove);
       flow.Click(Panel(path), ControlId::SaveAndFollow);
       flow.Tick();
       flow.Tick();
       UserCloses(flow, document, path);
     }},
    {"CopyError", kDownloaded, true, false,
     [](OfficeFlow& flow, SimDocument* document, const std::wstring& path) {
       document->SetFailingSaveCopies(true);
       flow.Click(Panel(path), ControlId::Download);
       flow.Tick();
       flow.Click(Panel(path), ControlId::SaveCopyAndReload);
       flow.Tick();
       flow.Tick();
       UserCloses(flow, document, path);
     }},
};

using Param = std::tuple<SimHost, int>;

std::string ParamName(const testing::TestParamInfo<Param>& info) {
  return std::string(kFlows[std::get<1>(info.param)].name) + "In" + HostName(std::get<0>(info.param));
}

class FlowRounds : public testing::TestWithParam<Param> {
 protected:
  SimHost host() const { return std::get<0>(GetParam()); }
  const Flow& flow() const { return kFlows[std::get<1>(GetParam())]; }

  std::wstring NameOf(int round) const {
    return std::wstring(flow().name, flow().name + std::char_traits<char>::length(flow().name)) + L"-" +
           std::to_wstring(round) + DocumentExtension(host());
  }

  // One round with a fresh document; it must end closed and forgotten.
  void PlayRound(int round, Caller caller = {}) {
    TRACE_CALLER(caller);
    const std::wstring path = office_.PathOf(NameOf(round));
    SimDocument* document = office_.Open(NameOf(round), flow().readOnly);
    ASSERT_NE(document, nullptr);
    if (flow().edited) document->MarkEdited();
    office_.CycleAndTick();
    ASSERT_NE(OfficeFlow::PanelOf(path), nullptr) << "round " << round;
    flow().play(office_, document, path);
    if (testing::Test::HasFatalFailure()) return;
    office_.Tick();  // a document closed behind the add-in's back is dropped here
    ASSERT_EQ(office_.app().FindDocument(path), nullptr) << "round " << round;
    ASSERT_TRUE(TheFileStatusCache().Paths().empty()) << "round " << round;
    documents_.push_back(document);
  }

  OfficeFlow office_{host()};
  std::vector<SimDocument*> documents_;
};

TEST_P(FlowRounds, ManyRoundsGiveBackEverythingTheyTake) {
  std::wstring scenario;
  for (int round = 0; round < kWarmUpRounds + CountedRounds(host()); ++round) {
    scenario += SyncedFileScenario(office_.PathOf(NameOf(round))) + flow().story;
  }
  ASSERT_TRUE(office_.StartSyncApp(scenario));

  for (int round = 0; round < kWarmUpRounds; ++round) {
    ASSERT_NO_FATAL_FAILURE(PlayRound(round));
  }
  OfficeFlow::Pump();
  const ResourceCounts before = CurrentResourceCounts();
  const long applicationReferences = office_.app().references();
  const long collectionReferences = office_.app().collection()->references();

  const ULONGLONG start = GetTickCount64();
  for (int round = kWarmUpRounds; round < kWarmUpRounds + CountedRounds(host()); ++round) {
    ASSERT_NO_FATAL_FAILURE(PlayRound(round));
  }
  OfficeFlow::Pump();
  const ResourceCounts after = CurrentResourceCounts();
  std::printf("%d rounds of %s in %s took %llu ms; %s\n", CountedRounds(host()), flow().name, HostName(host()).c_str(),
              GetTickCount64() - start, Describe(after).c_str());

  EXPECT_EQ(after.handles, before.handles) << Describe(before) << " / " << Describe(after);
  EXPECT_EQ(after.gdiObjects, before.gdiObjects) << Describe(before) << " / " << Describe(after);
  EXPECT_EQ(after.userObjects, before.userObjects) << Describe(before) << " / " << Describe(after);
  EXPECT_EQ(office_.app().references(), applicationReferences);
  EXPECT_EQ(office_.app().collection()->references(), collectionReferences);
  // A closed document keeps only the simulated host's own bookkeeping
  // reference: the add-in let go of every one it took.
  for (size_t i = 0; i < documents_.size(); ++i) {
    EXPECT_EQ(documents_[i]->references(), 1) << Narrow(documents_[i]->fullName());
  }
}

INSTANTIATE_TEST_SUITE_P(EveryFlowInEveryHost, FlowRounds,
                         testing::Combine(testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                                          testing::Range(0, static_cast<int>(std::size(kFlows)))),
                         ParamName);
}  // namespace
