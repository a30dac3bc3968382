#include "overlay/decision/tick_plan.h"

namespace {
// DELETE, CONFLICT, DOWNLOAD, RENAME/MOVE, EDITING, VIEWING ONLY and SAFE TO
// EDIT: the badge in the kind's picture and the state's panel.
TickPlan PlanPanelState(OverlayState state, const OverlayFacts& facts, const OnScreen& screen) {
  TickPlan plan;
  const OverlayKind kind = *KindShownBy(state);
  const bool safeToEdit = state == OverlayState::SafeToEdit;
  // A file that has never shown anything gets no safe-to-edit notice.
  if (safeToEdit && screen.kind == OverlayKind::None) {
    plan.markUpToDate = true;
    return plan;
  }
  plan.choices = state == OverlayState::Download && KeepsDownloadPress(facts) ? ChoiceReset::ClearKeepingDownloadPress
                                                                              : ChoiceReset::Clear;
  // A change of the unsaved state alone never rebuilds these panels.
  if (screen.upToDate) return plan;
  plan.destroyPanel = true;
  plan.destroyBadge = screen.badge && screen.kind != kind;
  plan.buildBadge = BadgeBuild::Main;
  plan.logTag = StateLogTag(state);
  plan.logWithoutBadge = safeToEdit;
  plan.buildPanel = true;
  plan.showPanel = ShowPanelOnBuild(state, screen.kind, screen.panelVisible);
  plan.newKind = kind;
  // The notice is shown on one tick, rebuilt and hidden on the next; the
  // badge then stays hidden until the state changes.
  plan.markUpToDate = !safeToEdit || screen.kind == OverlayKind::SafeToEdit;
  plan.hideBoth = safeToEdit && screen.kind == OverlayKind::SafeToEdit;
  return plan;
}

// LOADING and NO INTERNET: a strip instead of the badge, no panel.
TickPlan PlanStatusStrip(OverlayKind kind, const OverlayFacts& facts, const OnScreen& screen) {
  TickPlan plan;
  plan.choices = ChoiceReset::Clear;
  if (screen.upToDate) return plan;
  if (kind == OverlayKind::Loading && !LoadingWorthShowing(facts, screen.kind)) {
    plan.markUpToDate = true;
    return plan;
  }
  plan.destroyPanel = true;
  plan.destroyBadge = screen.badge && screen.kind != kind;
  plan.buildBadge = kind == OverlayKind::Loading ? BadgeBuild::LoadingStrip : BadgeBuild::NoInternetStrip;
  plan.logTag = kind == OverlayKind::Loading ? L"loading: " : L"no internet: ";
  plan.newKind = kind;
  plan.markUpToDate = true;
  return plan;
}
}  // namespace

TickPlan PlanTick(OverlayState state, const OverlayFacts& facts, const OnScreen& screen) {
  switch (state) {
    case OverlayState::NoInternet: return PlanStatusStrip(OverlayKind::NoInternet, facts, screen);
    case OverlayState::Loading: return PlanStatusStrip(OverlayKind::Loading, facts, screen);
    case OverlayState::SkipDownloadTick:
    case OverlayState::SkipRenameMoveTick: {
      // An error panel is up: it stays for this tick.
      TickPlan plan;
      plan.clearSkipNextUpdate = true;
      return plan;
    }
    case OverlayState::ConflictConfirm:
    case OverlayState::RenameMoveConfirm:
    case OverlayState::ReloadConfirm: return TickPlan{};
    default: return PlanPanelState(state, facts, screen);
  }
}
