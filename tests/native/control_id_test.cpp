// The control ids keep the numbers the trace log and the sync app's
// support staff know, and within one window an id names one kind of
// control, so that a look-up by id finds the control it means.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "overlay/layouts/active_users_panel.h"
#include "overlay/layouts/confirm_leave_panel.h"
#include "overlay/layouts/conflict_panel.h"
#include "overlay/layouts/control_id.h"
#include "overlay/layouts/delete_panel.h"
#include "overlay/layouts/download_panel.h"
#include "overlay/layouts/error_message_panel.h"
#include "overlay/layouts/rename_move_panel.h"
#include "overlay/layouts/safe_to_edit_panel.h"
#include "overlay/layouts/status_overlay_layouts.h"

namespace {
int Number(ControlId id) { return static_cast<int>(id); }

std::vector<PanelLayout> EveryLayout() {
  std::vector<PanelLayout> layouts = {
      MainOverlayLayout(),
      NoInternetOverlayLayout(),
      LoadingOverlayLayout(),
      SafeToEditPanelLayout(L"ann42", L"Ann Lee", L"2026-03-01 10:15"),
      SafeToEditPanelLayout(L"", L"", L""),
      ActiveUsersPanelLayout(L"ann42", L"Ann Lee", L"2026-03-01 10:15", {{L"b1", L"Bo"}, {L"b2", L"Cy"}},
                             {{L"v1", L"Di"}}),
      ActiveUsersPanelLayout(L"", L"", L"", {}, {{L"v1", L"Di"}}),
      ConflictPanelLayout(),
      DeletePanelLayout(),
      ErrorMessagePanelLayout(true),
      ErrorMessagePanelLayout(false),
      RenameMovePanelLayout(true, true, L"C:\\a.docx", L"C:\\b.docx"),
      RenameMovePanelLayout(false, false, L"C:\\a", L"C:\\b"),
  };
  for (bool editing : {false, true}) {
    for (bool downloading : {false, true}) {
      layouts.push_back(DownloadPanelLayout(L"ann42", L"Ann Lee", L"2026-03-01 10:15", editing, downloading));
      layouts.push_back(DownloadPanelLayout(L"", L"", L"", editing, downloading));
    }
  }
  for (bool unsaved : {false, true}) {
    layouts.push_back(ConfirmLeavePanelLayout(unsaved, true, false, false, false));
    layouts.push_back(ConfirmLeavePanelLayout(unsaved, false, true, false, false));
    layouts.push_back(ConfirmLeavePanelLayout(unsaved, false, false, true, false));
    layouts.push_back(ConfirmLeavePanelLayout(unsaved, false, false, false, true));
  }
  return layouts;
}
}  // namespace

TEST(ControlId, KeepsTheNumbersOfTheTexts) {
  EXPECT_EQ(Number(ControlId::None), 0);
  EXPECT_EQ(Number(ControlId::Title), 1001);
  EXPECT_EQ(Number(ControlId::ViewingTitle), 1002);
  EXPECT_EQ(Number(ControlId::EditingTitle), 1003);
  EXPECT_EQ(Number(ControlId::Description), 1004);
  EXPECT_EQ(Number(ControlId::Rule), 1005);
  EXPECT_EQ(Number(ControlId::LoadingTitle), 2001);
  EXPECT_EQ(Number(ControlId::Note), 2002);
  EXPECT_EQ(Number(ControlId::MemberRow), 2004);
}

TEST(ControlId, KeepsTheNumbersOfTheButtonsAndAreas) {
  EXPECT_EQ(Number(ControlId::Download), 3001);
  EXPECT_EQ(Number(ControlId::Downloading), 3002);
  EXPECT_EQ(Number(ControlId::Reload), 3003);
  EXPECT_EQ(Number(ControlId::SaveCopyAndReload), 3004);
  EXPECT_EQ(Number(ControlId::DiscardAndReload), 3005);
  EXPECT_EQ(Number(ControlId::ResolveConflict), 3006);
  EXPECT_EQ(Number(ControlId::ContinueToResolve), 3007);
  EXPECT_EQ(Number(ControlId::SaveAndResolve), 3008);
  EXPECT_EQ(Number(ControlId::DiscardAndResolve), 3009);
  EXPECT_EQ(Number(ControlId::FollowRenameOrMove), 3010);
  EXPECT_EQ(Number(ControlId::ContinueToFollow), 3011);
  EXPECT_EQ(Number(ControlId::SaveAndFollow), 3012);
  EXPECT_EQ(Number(ControlId::DiscardAndFollow), 3013);
  EXPECT_EQ(Number(ControlId::Hide), 3014);
  EXPECT_EQ(Number(ControlId::SaveSeparateCopy), 4001);
  EXPECT_EQ(Number(ControlId::List), 5001);
  EXPECT_EQ(Number(ControlId::PreviousName), 5001);
  EXPECT_EQ(Number(ControlId::NewName), 5002);
}

TEST(ControlId, NamesOneKindOfControlWithinEachWindow) {
  // Steps under the same parent that share an id are the same kind of
  // control: the same class, picture, colours and button look.
  int layoutIndex = 0;
  for (const PanelLayout& layout : EveryLayout()) {
    std::map<std::pair<int, int>, const LayoutStep*> first;
    for (const LayoutStep& step : layout.steps) {
      if (step.kind != StepKind::Create || step.id == ControlId::None) continue;
      const auto key = std::make_pair(step.parent, Number(step.id));
      const auto found = first.find(key);
      if (found == first.end()) {
        first[key] = &step;
        continue;
      }
      const LayoutStep& other = *found->second;
      EXPECT_EQ(std::wstring(other.className), std::wstring(step.className)) << "layout " << layoutIndex << " " << step;
      EXPECT_EQ(other.image, step.image) << "layout " << layoutIndex << " " << step;
      EXPECT_EQ(other.colour, step.colour) << "layout " << layoutIndex << " " << step;
      EXPECT_EQ(other.buttonLook, step.buttonLook) << "layout " << layoutIndex << " " << step;
    }
    ++layoutIndex;
  }
}

TEST(ControlId, GivesEveryButtonALookAndEveryCommandButtonItsOwnId) {
  for (const PanelLayout& layout : EveryLayout()) {
    for (const LayoutStep& step : layout.steps) {
      const bool ownerDrawnButton =
          std::wstring(step.className ? step.className : L"") == L"BUTTON" && (step.style & 0xF) == 0xB;
      EXPECT_EQ(ownerDrawnButton, step.buttonLook != ButtonLook::None) << step;
      if (ownerDrawnButton) EXPECT_NE(step.id, ControlId::None) << step;
    }
  }
}
