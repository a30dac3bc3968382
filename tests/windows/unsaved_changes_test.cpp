// The unsaved-changes check against each simulated host's Saved property,
// and the references it is given.
#include <gtest/gtest.h>

#include "docactions/unsaved_changes.h"
#include "tests/windows/in_process_host.h"

namespace {
class UnsavedChanges : public testing::TestWithParam<SimHost> {
 protected:
  // The references as a caller hands them over: one new reference on the
  // host's own slot, the others empty.
  bool Check(IDispatch* document) {
    ComPtr<IDispatch> reference(document);
    switch (GetParam()) {
      case SimHost::Excel: return HasUnsavedChanges(nullptr, std::move(reference), nullptr);
      case SimHost::PowerPoint: return HasUnsavedChanges(nullptr, nullptr, std::move(reference));
      default: return HasUnsavedChanges(std::move(reference), nullptr, nullptr);
    }
  }
  InProcessHost host_{GetParam()};
};

TEST_P(UnsavedChanges, ASavedDocumentHasNone) {
  SimDocument* document = host_.Open(L"clean" + DocumentExtension(GetParam()));
  EXPECT_FALSE(Check(document));
}

TEST_P(UnsavedChanges, AnEditedDocumentHasSome) {
  SimDocument* document = host_.Open(L"edited" + DocumentExtension(GetParam()));
  document->MarkEdited();
  EXPECT_TRUE(Check(document));
  ASSERT_TRUE(document->Save());
  EXPECT_FALSE(Check(document));
}

TEST_P(UnsavedChanges, ReleasesTheReferencesItWasGivenWhicheverWayItReturns) {
  SimDocument* document = host_.Open(L"counted" + DocumentExtension(GetParam()));
  const long before = document->references();
  Check(document);
  EXPECT_EQ(document->references(), before);
  document->MarkEdited();
  Check(document);
  EXPECT_EQ(document->references(), before);

  // A Saved that fails throws to the caller, and still lets go.
  auto* broken = new SimDispatch(L"Document");
  broken->AddMember(L"Saved", 0x4, [](WORD, const std::vector<VARIANT*>&, VARIANT*) { return DISP_E_EXCEPTION; });
  EXPECT_THROW(Check(broken), std::exception);
  EXPECT_EQ(broken->references(), 1);
  broken->Release();
}

INSTANTIATE_TEST_SUITE_P(EveryHost, UnsavedChanges, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);

TEST(PowerPointUnsavedChanges, OnlyMsoTrueCountsAsSaved) {
  InProcessHost office(SimHost::PowerPoint);
  SimDocument* presentation = office.Open(L"deck.pptx");
  const struct {
    long triState;
    bool unsaved;
  } cases[] = {{-1, false}, {0, true}, {1, true}, {-2, true}};  // msoTrue, msoFalse, msoCTrue, msoTriStateMixed
  for (const auto& c : cases) {
    presentation->SetSavedTriState(c.triState);
    EXPECT_EQ(HasUnsavedChanges(nullptr, nullptr, ComPtr<IDispatch>(presentation)), c.unsaved) << c.triState;
  }
}

TEST(UnsavedChangesOfAnotherHost, OnlyTheRunningHostsReferenceIsRead) {
  // Word is running; an Excel workbook in the Excel slot is not looked at.
  InProcessHost office(SimHost::Word);
  SimDocument* document = office.Open(L"letter.docx");
  auto* workbook = new SimDispatch(L"Workbook");
  int reads = 0;
  workbook->AddMember(L"Saved", 0x4, [&reads](WORD, const std::vector<VARIANT*>&, VARIANT* r) {
    ++reads;
    return ReturnBool(r, false);
  });
  EXPECT_FALSE(HasUnsavedChanges(ComPtr<IDispatch>(document), ComPtr<IDispatch>(workbook), nullptr));
  EXPECT_EQ(reads, 0);
  EXPECT_EQ(workbook->references(), 1);
  workbook->Release();
}
}  // namespace
