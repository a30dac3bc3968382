#pragma once
// What the tick does for the active, visible sync file once the decision
// table has picked a state: the whole plan made once, from plain values,
// so the special rules (the safe-to-edit notice shown once; a rebuilt
// panel shown only when the badge's kind changed or the user had it open;
// a loading strip only when something is worth it) sit in one place and are
// tested natively. The Windows side only carries the plan out.
//
// The confirmations (conflict, rename/move, reload) depend on which form of
// their panel is on screen and keep their own procedures.
#include <optional>

#include "overlay/decision/overlay_decision.h"
#include "overlay/decision/overlay_kind.h"

// What is on screen for the file when the state runs.
struct OnScreen {
  // The kind the badge showed before this tick.
  OverlayKind kind = OverlayKind::None;
  bool badge = false;
  bool panelVisible = false;
  // The record was drawn already: only its unsaved state changed.
  bool upToDate = false;
};

enum class ChoiceReset {
  Keep,
  Clear,
  // Cleared, but a download the user asked for that is still running keeps
  // its press and the separate-copy choice made with it.
  ClearKeepingDownloadPress,
};

enum class BadgeBuild { None, Main, LoadingStrip, NoInternetStrip };

struct TickPlan {
  ChoiceReset choices = ChoiceReset::Keep;
  // The skipped ticks after an error panel only clear skipNextUpdate.
  bool clearSkipNextUpdate = false;
  bool destroyPanel = false;
  bool destroyBadge = false;
  // Built when no badge is left; a new main badge gets the kind's image.
  BadgeBuild buildBadge = BadgeBuild::None;
  // Logged at Info before the path. Only when a badge is there, unless
  // logWithoutBadge; for the strips only when one is built.
  const wchar_t* logTag = nullptr;
  bool logWithoutBadge = false;
  // The state's panel, built against the badge (when there is one).
  bool buildPanel = false;
  bool showPanel = false;
  std::optional<OverlayKind> newKind;
  bool markUpToDate = false;
  // The safe-to-edit notice's second tick: both windows hidden, kept.
  bool hideBoth = false;
};

// The plan for `state` (any but the three confirmations, which get an
// empty plan).
TickPlan PlanTick(OverlayState state, const OverlayFacts& facts, const OnScreen& screen);
