// The add-in's application-event sinks, advised on the simulated Word,
// Excel and PowerPoint: what they answer, which event reaches which
// routine, and that nothing ever travels back into the host.
#include <gtest/gtest.h>

#include <olectl.h>

#include "addin/event_sinks.h"
#include "tests/windows/in_process_host.h"

namespace {
const IID kWordEvents = {0x00020A01, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelEvents = {0x00024413, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointEvents = {0x914934C2, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};
const IID kWordDocument = {0x0002096B, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelWorkbook = {0x000208DA, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointPresentation = {0x9149349D, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};

const IID& EventsOf(SimHost host) {
  return host == SimHost::Excel ? kExcelEvents : host == SimHost::PowerPoint ? kPowerPointEvents : kWordEvents;
}
const IID& DocumentInterfaceOf(SimHost host) {
  return host == SimHost::Excel ? kExcelWorkbook : host == SimHost::PowerPoint ? kPowerPointPresentation
                                                                               : kWordDocument;
}

// The host's three events as its type library numbers them, and the
// activities its handlers name in the log.
struct HostEventIds {
  DISPID open, close, activate;
  UINT openArgs, closeArgs, activateArgs;
  const char* openActivity;
  const char* closeActivity;
  const char* activateActivity;
  const char* word;  // document, workbook, presentation
};
HostEventIds IdsOf(SimHost host) {
  if (host == SimHost::Excel) {
    return {0x61F, 0x622, 0x620, 1, 2, 1, "workbook opens", "workbook before close", "workbook activates", "workbook"};
  }
  if (host == SimHost::PowerPoint) {
    return {2006, 2004, 2009, 1, 1, 2, "presentation opens", "presentation before close", "presentation activates",
            "presentation"};
  }
  return {4, 6, 10, 1, 2, 2, "document opens", "document before close", "document activates", "document"};
}

// A document object whose FullName read fails the way a host member fails.
SimDispatch* FailingDocument(SimHost host) {
  auto* document = new SimDispatch(L"Document");
  document->AddInterface(DocumentInterfaceOf(host));
  document->AddMember(L"FullName", 0x0, [](WORD, const std::vector<VARIANT*>&, VARIANT*) { return DISP_E_EXCEPTION; });
  return document;
}

// One whose FullName read throws something that is not a std::exception.
SimDispatch* ThrowingDocument(SimHost host) {
  auto* document = new SimDispatch(L"Document");
  document->AddInterface(DocumentInterfaceOf(host));
  document->AddMember(L"FullName", 0x0, [](WORD, const std::vector<VARIANT*>&, VARIANT*) -> HRESULT { throw 42; });
  return document;
}

class HostEventSink : public testing::TestWithParam<SimHost> {
 protected:
  void SetUp() override {
    ASSERT_EQ(sinks_.Subscribe(AddinHostOf(GetParam()), &host_.app()), S_OK);
    ASSERT_EQ(host_.app().events().sinkCount(), 1u);
    sink_ = host_.app().events().sinkAt(0);
  }
  void TearDown() override { sinks_.Unsubscribe(AddinHostOf(GetParam()), &host_.app()); }

  // Calls the sink as the host does: arguments in reverse order, the
  // document by reference; a second argument (window or Cancel) after it.
  HRESULT Fire(DISPID dispid, IDispatch* document, UINT argumentCount, VARIANT_BOOL* cancel = nullptr) {
    IDispatch* documentPointer = document;
    IDispatch* windowPointer = document;
    VARIANT arguments[2];
    VariantInit(&arguments[0]);
    VariantInit(&arguments[1]);
    // rgvarg[cArgs - 1] is the first argument.
    VARIANT& first = arguments[argumentCount - 1];
    first.vt = VT_BYREF | VT_DISPATCH;
    first.ppdispVal = &documentPointer;
    if (argumentCount == 2) {
      if (cancel != nullptr) {
        arguments[0].vt = VT_BYREF | VT_BOOL;
        arguments[0].pboolVal = cancel;
      } else {
        arguments[0].vt = VT_BYREF | VT_DISPATCH;
        arguments[0].ppdispVal = &windowPointer;
      }
    }
    DISPPARAMS params{arguments, nullptr, argumentCount, 0};
    VARIANT result;
    VariantInit(&result);
    return sink_->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result, nullptr, nullptr);
  }

  InProcessHost host_{GetParam()};
  HostEventSinks sinks_;
  IDispatch* sink_ = nullptr;
};

TEST_P(HostEventSink, AnswersItsHostsEventInterfaceAndIDispatchAndNothingElse) {
  void* object = reinterpret_cast<void*>(0xdeadbeef);
  ASSERT_EQ(sink_->QueryInterface(EventsOf(GetParam()), &object), S_OK);
  EXPECT_EQ(object, static_cast<void*>(sink_));
  static_cast<IUnknown*>(object)->Release();
  object = reinterpret_cast<void*>(0xdeadbeef);
  ASSERT_EQ(sink_->QueryInterface(IID_IDispatch, &object), S_OK);
  static_cast<IUnknown*>(object)->Release();

  for (const IID* other : {&kWordEvents, &kExcelEvents, &kPowerPointEvents, &IID_IConnectionPoint,
                           &DocumentInterfaceOf(GetParam())}) {
    if (IsEqualIID(*other, EventsOf(GetParam()))) continue;
    object = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(sink_->QueryInterface(*other, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
  }
}

TEST_P(HostEventSink, OpeningASavedDocumentRecordsItThroughTheOpenEvent) {
  const std::wstring name = L"report" + DocumentExtension(GetParam());
  SimDocument* document = host_.Open(name);
  ASSERT_NE(document, nullptr);
  const std::string path = Narrow(document->fullName());
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{document->fullName()});
  EXPECT_TRUE(host_.EventIsSet());
  // The open event makes the record; the activate event right after it finds it cached.
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{std::string(IdsOf(GetParam()).word) +
                                                             " open/activate/save - " + path,
                                                         "file info stored in cache - " + path}));
}

TEST_P(HostEventSink, MapsEachOfItsDispidsToItsHandlerWithTheDocumentAsFirstArgument) {
  const HostEventIds ids = IdsOf(GetParam());
  SimDocument* first = host_.Open(L"first" + DocumentExtension(GetParam()));
  SimDocument* second = host_.Open(L"second" + DocumentExtension(GetParam()));
  host_.ForgetAllRecords();

  // Activation with the window as the second argument records the document, not the window.
  EXPECT_EQ(Fire(ids.activate, first, ids.activateArgs), S_OK);
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{first->fullName()});
  EXPECT_EQ(Fire(ids.open, second, ids.openArgs), S_OK);
  EXPECT_EQ(host_.CachedPaths(), (std::vector<std::wstring>{first->fullName(), second->fullName()}));

  // The close event drops the record of the document it names.
  VARIANT_BOOL cancel = VARIANT_FALSE;
  EXPECT_EQ(Fire(ids.close, first, ids.closeArgs, ids.closeArgs == 2 ? &cancel : nullptr), S_OK);
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{second->fullName()});
  EXPECT_TRUE(ContainsInOrder(host_.Messages(), {"close file - " + Narrow(first->fullName()),
                                                 "file info removed from cache - " + Narrow(first->fullName())}));
}

TEST_P(HostEventSink, IgnoresDispidsOfOtherHostsAndEventsItDoesNotHandle) {
  SimDocument* document = host_.Open(L"quiet" + DocumentExtension(GetParam()));
  host_.ForgetAllRecords();
  host_.ClearLog();
  for (const SimHost other : {SimHost::Word, SimHost::Excel, SimHost::PowerPoint}) {
    if (other == GetParam()) continue;
    const HostEventIds ids = IdsOf(other);
    EXPECT_EQ(Fire(ids.open, document, ids.openArgs), S_OK);
    EXPECT_EQ(Fire(ids.activate, document, ids.activateArgs), S_OK);
  }
  EXPECT_EQ(Fire(5, document, 1), S_OK);  // Word's Quit-like events and the like
  EXPECT_TRUE(host_.CachedPaths().empty());
  EXPECT_TRUE(host_.Messages().empty());
}

TEST_P(HostEventSink, ActivatingACachedDocumentDoesNothing) {
  SimDocument* document = host_.Open(L"cached" + DocumentExtension(GetParam()));
  host_.ResetEvent();
  const size_t linesBefore = host_.Messages().size();
  document->MarkEdited();
  host_.app().ActivateDocument(document);
  EXPECT_FALSE(host_.EventIsSet());
  EXPECT_EQ(host_.Messages().size(), linesBefore);
  EXPECT_EQ(host_.Record(document->fullName()).isEditing, 0u);
}

TEST_P(HostEventSink, EveryHandlerLogsAStdExceptionAndReturnsSOk) {
  const HostEventIds ids = IdsOf(GetParam());
  SimDispatch* document = FailingDocument(GetParam());
  VARIANT_BOOL cancel = VARIANT_FALSE;
  EXPECT_EQ(Fire(ids.open, document, ids.openArgs), S_OK);
  EXPECT_EQ(Fire(ids.activate, document, ids.activateArgs), S_OK);
  EXPECT_EQ(Fire(ids.close, document, ids.closeArgs, ids.closeArgs == 2 ? &cancel : nullptr), S_OK);
  const std::string failure = " - object model call FullName failed with 0x80020009";
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{
                                  std::string("std exception occurred while ") + ids.openActivity + failure,
                                  std::string("std exception occurred while ") + ids.activateActivity + failure,
                                  std::string("std exception occurred while ") + ids.closeActivity + failure}));
  EXPECT_EQ(host_.LevelOf(std::string("std exception occurred while ") + ids.openActivity + failure), "E");
  EXPECT_EQ(document->references(), 1);
  document->Release();
}

TEST_P(HostEventSink, EveryHandlerLogsAnUnknownExceptionAndReturnsSOk) {
  const HostEventIds ids = IdsOf(GetParam());
  SimDispatch* document = ThrowingDocument(GetParam());
  VARIANT_BOOL cancel = VARIANT_FALSE;
  EXPECT_EQ(Fire(ids.open, document, ids.openArgs), S_OK);
  EXPECT_EQ(Fire(ids.activate, document, ids.activateArgs), S_OK);
  EXPECT_EQ(Fire(ids.close, document, ids.closeArgs, ids.closeArgs == 2 ? &cancel : nullptr), S_OK);
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{
                                  std::string("unknown exception occurred while ") + ids.openActivity,
                                  std::string("unknown exception occurred while ") + ids.activateActivity,
                                  std::string("unknown exception occurred while ") + ids.closeActivity}));
  EXPECT_EQ(document->references(), 1);
  document->Release();
}

TEST_P(HostEventSink, AFailedQueryForTheDocumentStillCallsTheRoutineWithAnEmptyReference) {
  const HostEventIds ids = IdsOf(GetParam());
  // An object that is not this host's document (it answers IDispatch only).
  auto* stranger = new SimDispatch(L"Window");
  int reads = 0;
  stranger->AddMember(L"FullName", 0x0, [&reads](WORD, const std::vector<VARIANT*>&, VARIANT* r) {
    ++reads;
    return ReturnString(r, L"C:\\must\\not\\be\\read.docx");
  });
  EXPECT_EQ(Fire(ids.open, stranger, ids.openArgs), S_OK);
  EXPECT_TRUE(host_.CachedPaths().empty());
  // The routine ran with nothing to read: its first read fails on the empty reference.
  EXPECT_EQ(host_.Messages(), std::vector<std::string>{std::string("std exception occurred while ") +
                                                       ids.openActivity +
                                                       " - object model call FullName failed with 0x80004003"});
  EXPECT_EQ(reads, 0);
  EXPECT_EQ(stranger->references(), 1);
  stranger->Release();
}

TEST_P(HostEventSink, ANullDocumentArgumentIsToleratedToo) {
  const HostEventIds ids = IdsOf(GetParam());
  EXPECT_EQ(Fire(ids.open, nullptr, ids.openArgs), S_OK);
  EXPECT_TRUE(host_.CachedPaths().empty());
}

TEST_P(HostEventSink, ArgumentsWithoutTheirArrayAreToleratedToo) {
  const HostEventIds ids = IdsOf(GetParam());
  DISPPARAMS params{nullptr, nullptr, ids.openArgs, 0};
  VARIANT result;
  VariantInit(&result);
  EXPECT_EQ(sink_->Invoke(ids.open, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result, nullptr, nullptr),
            S_OK);
  EXPECT_TRUE(host_.CachedPaths().empty());
}

TEST_P(HostEventSink, OnlyTheRunningHostsSinkFindsAConnectionPoint) {
  // Advised in SetUp; a second subscription of another host's sink finds no connection point.
  for (const SimHost other : {SimHost::Word, SimHost::Excel, SimHost::PowerPoint}) {
    if (other == GetParam()) continue;
    EXPECT_EQ(sinks_.Subscribe(AddinHostOf(other), &host_.app()), CONNECT_E_NOCONNECTION);
  }
  EXPECT_EQ(host_.app().events().sinkCount(), 1u);
  sinks_.Unsubscribe(AddinHostOf(GetParam()), &host_.app());
  EXPECT_EQ(host_.app().events().sinkCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(EveryHost, HostEventSink,
                         testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint), HostParamName);

// Word's and Excel's before-close events carry Cancel; PowerPoint's
// PresentationClose has none.
class BeforeCloseEvent : public HostEventSink {};

TEST_P(BeforeCloseEvent, LeavesCancelUntouched) {
  SimDocument* document = host_.Open(L"closing" + DocumentExtension(GetParam()));
  // A value no handler would write: any write shows. First the user's
  // close of a modified file (the record stays), then a clean close.
  VARIANT_BOOL cancel = static_cast<VARIANT_BOOL>(0x5A5A);
  document->MarkEdited();
  EXPECT_EQ(Fire(IdsOf(GetParam()).close, document, 2, &cancel), S_OK);
  EXPECT_EQ(cancel, static_cast<VARIANT_BOOL>(0x5A5A));
  EXPECT_EQ(host_.CachedPaths(), std::vector<std::wstring>{document->fullName()});
  ASSERT_TRUE(document->Save());
  EXPECT_EQ(Fire(IdsOf(GetParam()).close, document, 2, &cancel), S_OK);
  EXPECT_EQ(cancel, static_cast<VARIANT_BOOL>(0x5A5A));
  EXPECT_TRUE(host_.CachedPaths().empty());
}

TEST_P(BeforeCloseEvent, TheUsersCloseProceedsThroughTheHost) {
  SimDocument* document = host_.Open(L"closing" + DocumentExtension(GetParam()));
  EXPECT_TRUE(host_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
  EXPECT_EQ(host_.app().openDocumentCount(), 0u);
  EXPECT_TRUE(host_.CachedPaths().empty());
}

INSTANTIATE_TEST_SUITE_P(WordAndExcel, BeforeCloseEvent, testing::Values(SimHost::Word, SimHost::Excel),
                         HostParamName);

// The simulated host refuses what Office refuses.
TEST(SimulatedConnectionPoint, RefusesASinkThatAnswersOnlyIDispatch) {
  for (const SimHost host : {SimHost::Word, SimHost::Excel, SimHost::PowerPoint}) {
    InProcessHost office(host);
    auto* plain = new SimDispatch(L"Sink");
    DWORD cookie = 0xdeadbeef;
    EXPECT_EQ(office.app().events().Advise(plain, &cookie), CONNECT_E_CANNOTCONNECT) << HostName(host);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(plain->references(), 1);
    plain->Release();
  }
}
}  // namespace
