// The user's pending choices as one word: set and read by name, forgotten
// in one call (the hiding stays), and merged so that only what a copy
// changed is written.
#include "synclink/user_choices.h"

#include <gtest/gtest.h>

TEST(UserChoices, StartWithNothingChosen) {
  const UserChoices choices;
  for (std::uint32_t bit = 1; bit <= static_cast<std::uint32_t>(UserChoice::uiHide); bit <<= 1) {
    EXPECT_FALSE(choices.Has(static_cast<UserChoice>(bit))) << bit;
  }
}

TEST(UserChoices, AreSetAndClearedByName) {
  UserChoices choices;
  choices.Set(UserChoice::retryModify);
  choices.Set(UserChoice::saveSeparateCopy, true);
  EXPECT_TRUE(choices.Has(UserChoice::retryModify));
  EXPECT_TRUE(choices.Has(UserChoice::saveSeparateCopy));
  EXPECT_FALSE(choices.Has(UserChoice::resolveConflict));
  choices.Set(UserChoice::retryModify, false);
  EXPECT_FALSE(choices.Has(UserChoice::retryModify));
  EXPECT_TRUE(choices.Has(UserChoice::saveSeparateCopy));
}

TEST(UserChoices, ClearingThePendingOnesKeepsTheHiding) {
  UserChoices choices;
  for (std::uint32_t bit = 1; bit <= static_cast<std::uint32_t>(UserChoice::uiHide); bit <<= 1) {
    choices.Set(static_cast<UserChoice>(bit));
  }
  choices.ClearPending();
  for (std::uint32_t bit = 1; bit < static_cast<std::uint32_t>(UserChoice::uiHide); bit <<= 1) {
    EXPECT_FALSE(choices.Has(static_cast<UserChoice>(bit))) << bit;
  }
  EXPECT_TRUE(choices.Has(UserChoice::uiHide));
}

TEST(UserChoices, MergingWritesOnlyWhatTheCopyChanged) {
  UserChoices before;
  before.Set(UserChoice::skipNextUpdate);
  UserChoices after = before;
  after.Set(UserChoice::skipNextUpdate, false);  // the copy cleared one
  after.Set(UserChoice::reloadPromptPlain);      // and set another
  // Meanwhile a click stored a choice the copy never saw.
  UserChoices stored = before;
  stored.Set(UserChoice::downloadRequested);

  stored.MergeChanges(before, after);
  EXPECT_FALSE(stored.Has(UserChoice::skipNextUpdate));
  EXPECT_TRUE(stored.Has(UserChoice::reloadPromptPlain));
  EXPECT_TRUE(stored.Has(UserChoice::downloadRequested));
}
