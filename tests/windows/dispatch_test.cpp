// Calls into the object model by name: the member numbers learnt from one
// host stay with that host, and the simulated Office refuses a member
// invoked the wrong way, as Office's type-library dispatch does.
#include <gtest/gtest.h>

#include "common/dispatch.h"
#include "tests/windows/in_process_host.h"

namespace {
// A document whose FullName has the number `id` and answers `text`.
SimDispatch* DocumentNumbering(DISPID id, const wchar_t* text) {
  auto* document = new SimDispatch(L"Document");
  document->AddMember(L"FullName", id, [text](WORD, const std::vector<VARIANT*>&, VARIANT* r) {
    return ReturnString(r, text);
  });
  return document;
}

// Restores the host the process had before the test.
class RunningHost {
 public:
  RunningHost() : saved_(OfficeApp) {}
  ~RunningHost() { OfficeApp = saved_; }
  void Set(OfficeHost host) { OfficeApp = host; }

 private:
  OfficeHost saved_;
};

TEST(DispatchName, KeepsTheMemberNumberLearntFromOneHostAwayFromTheOthers) {
  // Word and Excel number FullName differently; a process that played Word
  // first must still reach Excel's FullName.
  SimDispatch* wordDocument = DocumentNumbering(0x9, L"C:\\docs\\letter.docx");
  SimDispatch* excelWorkbook = DocumentNumbering(0x121, L"C:\\docs\\sheet.xlsx");
  DispatchName fullName(L"FullName");
  RunningHost host;
  host.Set(OfficeHost::Word);
  EXPECT_EQ(GetStringProperty(wordDocument, fullName), L"C:\\docs\\letter.docx");
  host.Set(OfficeHost::Excel);
  EXPECT_EQ(GetStringProperty(excelWorkbook, fullName), L"C:\\docs\\sheet.xlsx");
  host.Set(OfficeHost::Word);
  EXPECT_EQ(GetStringProperty(wordDocument, fullName), L"C:\\docs\\letter.docx");
  EXPECT_EQ(wordDocument->references(), 1);
  EXPECT_EQ(excelWorkbook->references(), 1);
  wordDocument->Release();
  excelWorkbook->Release();
}

TEST(DispatchName, WithinOneHostResolvesOnTheFirstObjectThatKnowsTheName) {
  RunningHost host;
  host.Set(OfficeHost::PowerPoint);
  auto* stranger = new SimDispatch(L"Window");
  SimDispatch* presentation = DocumentNumbering(0x7D3, L"C:\\docs\\deck.pptx");
  DispatchName fullName(L"FullName");
  VARIANT result;
  VariantInit(&result);
  // An object without the member does not fix the number for later calls.
  EXPECT_EQ(InvokeByName(stranger, fullName, DISPATCH_PROPERTYGET, {}, &result), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(GetStringProperty(presentation, fullName), L"C:\\docs\\deck.pptx");
  stranger->Release();
  presentation->Release();
}

class SimulatedDispatch : public testing::TestWithParam<SimHost> {
 protected:
  HRESULT Invoke(IDispatch* object, const wchar_t* member, WORD flags, std::initializer_list<const VARIANT*> args) {
    DispatchName name(member);
    UniqueVariant result;
    return InvokeByName(object, name, flags, args, result.put());
  }
  InProcessHost host_{GetParam()};
};

TEST_P(SimulatedDispatch, RefusesAPropertyReadAsAMethodCall) {
  SimDocument* document = host_.Open(L"strict" + DocumentExtension(GetParam()));
  EXPECT_EQ(Invoke(document, L"FullName", DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(Invoke(document, L"FullName", DISPATCH_PROPERTYGET, {}), S_OK);
  // Automation clients that ask for either are served.
  EXPECT_EQ(Invoke(document, L"FullName", DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}), S_OK);
  // Only the call that was served reached the member.
  EXPECT_EQ(document->methodCalls(), std::vector<std::wstring>{L"FullName()"});
}

TEST_P(SimulatedDispatch, RefusesAMethodCalledAsAPropertyRead) {
  SimDocument* document = host_.Open(L"strict" + DocumentExtension(GetParam()));
  document->MarkEdited();
  EXPECT_EQ(Invoke(document, L"Save", DISPATCH_PROPERTYGET, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_FALSE(document->saved());
  EXPECT_EQ(Invoke(&host_.app(), L"Quit", DISPATCH_PROPERTYGET, {}), DISP_E_MEMBERNOTFOUND);
  EXPECT_FALSE(host_.app().quitRequested());
  EXPECT_EQ(Invoke(document, L"Save", DISPATCH_METHOD, {}), S_OK);
  EXPECT_TRUE(document->saved());
}

TEST_P(SimulatedDispatch, RefusesAPropertyReadWithArguments) {
  SimDocument* document = host_.Open(L"strict" + DocumentExtension(GetParam()));
  UniqueVariant extra = UniqueVariant::Int32(1);
  EXPECT_EQ(Invoke(document, L"Saved", DISPATCH_PROPERTYGET, {extra.get()}), DISP_E_BADPARAMCOUNT);
}

TEST_P(SimulatedDispatch, TakesAPutOnlyWithItsValueNamedPropertyPut) {
  SimDocument* document = host_.Open(L"put" + DocumentExtension(GetParam()));
  document->MarkEdited();
  DispatchName saved(L"Saved");
  UniqueVariant value = UniqueVariant::Bool(true);
  VARIANTARG arguments[1] = {*value.get()};
  DISPPARAMS unnamed{arguments, nullptr, 1, 0};
  DISPID id = DISPID_UNKNOWN;
  ASSERT_EQ(saved.Resolve(document, &id), S_OK);
  EXPECT_EQ(document->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &unnamed, nullptr, nullptr, nullptr),
            DISP_E_PARAMNOTFOUND);
  EXPECT_FALSE(document->saved());
  // InvokeByName names the value as a put requires.
  EXPECT_EQ(InvokeByName(document, saved, DISPATCH_PROPERTYPUT, {value.get()}, nullptr), S_OK);
  EXPECT_TRUE(document->saved());
}

TEST_P(SimulatedDispatch, ServesACollectionsItemAsMethodOrProperty) {
  SimDocument* document = host_.Open(L"listed" + DocumentExtension(GetParam()));
  UniqueVariant index = UniqueVariant::Int32(1);
  DispatchName item(L"Item");
  for (const WORD flags : {WORD(DISPATCH_METHOD), WORD(DISPATCH_PROPERTYGET)}) {
    UniqueVariant result;
    EXPECT_EQ(InvokeByName(host_.app().collection(), item, flags, {index.get()}, result.put()), S_OK) << flags;
    ASSERT_EQ(result.type(), VT_DISPATCH);
    EXPECT_EQ(result.get()->pdispVal, static_cast<IDispatch*>(document));
  }
}

INSTANTIATE_TEST_SUITE_P(EveryHost, SimulatedDispatch,
                         testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint), HostParamName);
}  // namespace
