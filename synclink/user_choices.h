#pragma once
// The user's choices for a file that are still pending: what was pressed
// in its panels, which confirmation is up, whether it is hidden. One word,
// so clearing them is one call and the tick's write-back merges them in one
// step. The names are the record's field names they replace.
#include <cstdint>

enum class UserChoice : std::uint32_t {
  downloadRequested = 1u << 0,    // "Download latest version" pressed; the panel says "Downloading..."
  reloadPromptPlain = 1u << 1,    // the reload confirmation without the save question is up
  reloadPromptAskSave = 1u << 2,  // the reload confirmation with the save question is up
  retryModify = 1u << 3,          // the user asked for the newer web version (sent)
  saveSeparateCopy = 1u << 4,     // "Save my changes as a separate copy" was ticked
  renameMoveClicked = 1u << 5,    // "Reload" pressed on the rename/move panel
  renameMoveAskShown = 1u << 6,   // the rename/move confirmation asks about saving
  retryRenameOrMove = 1u << 7,    // the user accepted the rename/move (sent)
  retryDelete = 1u << 8,          // the user answered the delete panel (sent)
  resolveConflictClicked = 1u << 9,
  conflictAskShown = 1u << 10,    // the conflict confirmation asks about saving
  resolveConflict = 1u << 11,     // the user asked to resolve the conflict (sent)
  skipNextUpdate = 1u << 12,      // an error panel is up: the next tick leaves it
  uiHide = 1u << 13,              // the user hid the overlay for this file (sent when asked)
};

class UserChoices {
 public:
  bool Has(UserChoice choice) const { return (bits_ & Bit(choice)) != 0; }
  void Set(UserChoice choice, bool on = true) {
    if (on) {
      bits_ |= Bit(choice);
    } else {
      bits_ &= ~Bit(choice);
    }
  }
  // Every pending choice forgotten; the hiding stays.
  void ClearPending() { bits_ &= Bit(UserChoice::uiHide); }
  // What a copy changed between `before` and `after` is written here; the
  // other choices stay as they are.
  void MergeChanges(UserChoices before, UserChoices after) {
    const std::uint32_t changed = before.bits_ ^ after.bits_;
    bits_ = (bits_ & ~changed) | (after.bits_ & changed);
  }
  bool operator==(const UserChoices& other) const { return bits_ == other.bits_; }
  bool operator!=(const UserChoices& other) const { return bits_ != other.bits_; }

 private:
  static std::uint32_t Bit(UserChoice choice) { return static_cast<std::uint32_t>(choice); }
  std::uint32_t bits_ = 0;
};
