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
    return HasUnsavedChanges(ComPtr<IDispatch>(document));
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
    EXPECT_EQ(HasUnsavedChanges(ComPtr<IDispatch>(presentation)), c.unsaved) << c.triState;
  }
}

}  // namespace
