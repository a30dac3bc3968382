#include <gtest/gtest.h>

#include "docactions/copy_name.h"

TEST(SplitAtLastDot, SplitsATwoDotNameAtTheLastDot) {
  const SplitFileName name = SplitAtLastDot(L"data.tar.gz");
  EXPECT_EQ(name.base, L"data.tar");
  EXPECT_EQ(name.extension, L"gz");
}

TEST(SplitAtLastDot, KeepsANameWithoutADotWhole) {
  const SplitFileName name = SplitAtLastDot(L"README");
  EXPECT_EQ(name.base, L"README");
  EXPECT_EQ(name.extension, L"");
}

TEST(FormatCopyStamp, PadsEveryFieldButTheYear) {
  EXPECT_EQ(FormatCopyStamp({2026, 11, 15, 22, 24, 3, 7}), L"2026-11-15 22.24.03.007");
  EXPECT_EQ(FormatCopyStamp({2027, 1, 2, 3, 4, 5, 60}), L"2027-01-02 03.04.05.060");
}

TEST(SeparateCopyName, PutsUserAndStampBeforeTheExtension) {
  EXPECT_EQ(SeparateCopyName(SplitAtLastDot(L"report.docx"), L"ann", L"2026-11-15 22.24.03.007"),
            L"report (ann 2026-11-15 22.24.03.007).docx");
}

TEST(SeparateCopyName, LeavesTheUserOutWhenItIsUnknown) {
  EXPECT_EQ(SeparateCopyName(SplitAtLastDot(L"report.docx"), L"", L"2026-11-15 22.24.03.007"),
            L"report (2026-11-15 22.24.03.007).docx");
}

TEST(SeparateCopyName, AddsNoTrailingDotToANameWithoutExtension) {
  EXPECT_EQ(SeparateCopyName(SplitAtLastDot(L"notes"), L"ann", L"2026-11-15 22.24.03.007"),
            L"notes (ann 2026-11-15 22.24.03.007)");
}

TEST(SeparateCopyName, KeepsTheInnerDotsOfTheBase) {
  EXPECT_EQ(SeparateCopyName(SplitAtLastDot(L"data.tar.gz"), L"bo", L"2026-01-01 00.00.00.000"),
            L"data.tar (bo 2026-01-01 00.00.00.000).gz");
}

TEST(IsNewSeparateCopy, OnlyAFileThisSaveBroughtIntoBeingCounts) {
  EXPECT_TRUE(IsNewSeparateCopy(false, true, true));
  EXPECT_FALSE(IsNewSeparateCopy(true, true, true));    // overwritten, not made
  EXPECT_FALSE(IsNewSeparateCopy(false, false, true));  // the host said it failed
  EXPECT_FALSE(IsNewSeparateCopy(false, true, false));  // the host said yes, but nothing is there
}

TEST(IsFolderOnDisk, TakesDrivesAndSharesOnly) {
  EXPECT_TRUE(IsFolderOnDisk(L"C:\\Users\\ann\\Filewell"));
  EXPECT_TRUE(IsFolderOnDisk(L"d:\\"));
  EXPECT_TRUE(IsFolderOnDisk(L"\\\\server\\share\\docs"));
  EXPECT_FALSE(IsFolderOnDisk(L""));
  EXPECT_FALSE(IsFolderOnDisk(L"https://contoso.sharepoint.com/Shared Documents"));
  EXPECT_FALSE(IsFolderOnDisk(L"C:"));
  EXPECT_FALSE(IsFolderOnDisk(L"Documents"));
  EXPECT_FALSE(IsFolderOnDisk(L"\\\\"));
}
