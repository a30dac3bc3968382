#include "tools/officesim/sim_application.h"

#include <cstdio>

#include "common/text.h"
#include "tools/officesim/sim_document.h"

namespace {
// Each host's _Application interface and application-events interface.
const IID kWordApplication = {0x00020970, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelApplication = {0x000208D5, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointApplication = {0x91493442, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};
const IID kWordEvents = {0x00020A01, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelEvents = {0x00024413, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointEvents = {0x914934C2, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};

const IID& EventsOf(SimHost host) {
  return host == SimHost::Excel ? kExcelEvents : host == SimHost::PowerPoint ? kPowerPointEvents : kWordEvents;
}

// The events' DISPIDs in each host's type library.
struct HostEvents {
  DISPID open, beforeClose, activate;
  bool activateHasWindow;
};
HostEvents EventIds(SimHost host) {
  if (host == SimHost::Excel) return {0x61F, 0x622, 0x620, false};  // WorkbookOpen/BeforeClose/Activate
  if (host == SimHost::PowerPoint) return {2006, 2004, 2009, true};  // PresentationOpen/Close, WindowActivate
  return {4, 6, 10, true};                                            // DocumentOpen/BeforeClose, WindowActivate
}

const wchar_t* CollectionName(SimHost host) {
  return host == SimHost::Excel ? L"Workbooks" : host == SimHost::PowerPoint ? L"Presentations" : L"Documents";
}
const wchar_t* ActiveName(SimHost host) {
  return host == SimHost::Excel ? L"ActiveWorkbook"
         : host == SimHost::PowerPoint ? L"ActivePresentation"
                                       : L"ActiveDocument";
}
}  // namespace

SimApplication::SimApplication(SimHost host, HWND mainWindow)
    : SimDispatch(L"Application"), host_(host), mainWindow_(mainWindow),
      events_(static_cast<IDispatch*>(this), EventsOf(host)) {
  if (host == SimHost::Word) AddInterface(kWordApplication);
  if (host == SimHost::Excel) AddInterface(kExcelApplication);
  if (host == SimHost::PowerPoint) AddInterface(kPowerPointApplication);

  AddMember(L"Version", 0x18, [](WORD flags, const std::vector<VARIANT*>&, VARIANT* result) {
    if (!(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    return ReturnString(result, L"16.0");
  });
  AddMember(L"Name", 0x0, [host](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnString(result, host == SimHost::Word         ? L"Microsoft Word"
                                : host == SimHost::Excel      ? L"Microsoft Excel"
                                : host == SimHost::PowerPoint ? L"Microsoft PowerPoint"
                                                              : L"Outlook");
  });
  AddMember(L"PathSeparator", 0x19, [](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnString(result, L"\\");
  });
  // Word's Quit takes three optional arguments; Excel's and PowerPoint's none.
  AddMethod(L"Quit", 0x451, [this](WORD, const std::vector<VARIANT*>& args, VARIANT*) {
    if (args.size() > (host_ == SimHost::Word ? 3u : 0u)) return DISP_E_BADPARAMCOUNT;
    std::printf("officesim: Quit called\n");
    quitRequested_ = true;
    return S_OK;
  });
  // Word's Application has no window handle; its windows have.
  if (host == SimHost::Excel || host == SimHost::PowerPoint) {
    AddMember(host == SimHost::Excel ? L"Hwnd" : L"HWND", 0x7E2,
              [this](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
                return ReturnLong(result, static_cast<long>(reinterpret_cast<INT_PTR>(mainWindow_)));
              });
  }
  // With no document open, Word and PowerPoint raise an error; Excel
  // answers Nothing.
  AddMember(ActiveName(host), 0x3, [this](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    if (active_ == nullptr) {
      if (host_ == SimHost::Excel) return ReturnObject(result, nullptr);
      return DISP_E_EXCEPTION;
    }
    return ReturnObject(result, active_);
  });
  AddCollection(CollectionName(host), 0x6);
}

SimApplication::~SimApplication() {
  for (SimDocument* document : documents_) document->Release();
  for (SimDocument* document : everOpened_) document->Release();
  if (collection_) collection_->Release();
}

HRESULT SimApplication::QueryInterface(REFIID iid, void** object) {
  if (object != nullptr && (IsEqualIID(iid, IID_IConnectionPointContainer))) {
    *object = static_cast<IConnectionPointContainer*>(&events_);
    AddRef();
    return S_OK;
  }
  return SimDispatch::QueryInterface(iid, object);
}

void SimApplication::AddCollection(const wchar_t* name, DISPID id) {
  collection_ = new SimDispatch(name);
  collection_->AddMember(L"Count", 0x2, [this](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnLong(result, static_cast<long>(documents_.size()));
  });
  collection_->AddMember(L"Item", 0x0, [this](WORD, const std::vector<VARIANT*>& args, VARIANT* result) {
    if (args.empty()) return DISP_E_BADPARAMCOUNT;
    VARIANT index;
    VariantInit(&index);
    if (VariantChangeType(&index, args[0], 0, VT_I4) == S_OK) {
      if (index.lVal < 1 || index.lVal > static_cast<long>(documents_.size())) return DISP_E_BADINDEX;
      return ReturnObject(result, documents_[index.lVal - 1]);
    }
    VariantChangeType(&index, args[0], 0, VT_BSTR);
    SimDocument* found = index.vt == VT_BSTR ? FindDocument(index.bstrVal) : nullptr;
    VariantClear(&index);
    return found ? ReturnObject(result, found) : DISP_E_BADINDEX;
  }, Kind::Indexed);
  AddMember(name, id, [this](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnObject(result, collection_);
  });
}

void SimApplication::FireDocumentEvent(DISPID dispid, SimDocument* document, bool withWindow) {
  IDispatch* documentPointer = document;
  IDispatch* windowPointer = document->window() ? document->window() : document;
  std::vector<VARIANT> arguments(withWindow ? 2 : 1);
  arguments[0].vt = VT_BYREF | VT_DISPATCH;
  arguments[0].ppdispVal = &documentPointer;
  if (withWindow) {
    arguments[1].vt = VT_BYREF | VT_DISPATCH;
    arguments[1].ppdispVal = &windowPointer;
  }
  events_.Fire(dispid, arguments);
}

bool SimApplication::FireBeforeClose(SimDocument* document) {
  const HostEvents ids = EventIds(host_);
  if (host_ == SimHost::PowerPoint && document->closeCancelledElsewhere()) {
    // PresentationBeforeClose, which another add-in may cancel, comes
    // before PresentationClose.
    std::printf("officesim: another add-in cancelled the close of %s\n", ToUtf8(document->name()).c_str());
    return false;
  }
  IDispatch* documentPointer = document;
  VARIANT_BOOL cancel = VARIANT_FALSE;
  std::vector<VARIANT> arguments(host_ == SimHost::PowerPoint ? 1 : 2);
  arguments[0].vt = VT_BYREF | VT_DISPATCH;
  arguments[0].ppdispVal = &documentPointer;
  if (host_ != SimHost::PowerPoint) {
    arguments[1].vt = VT_BYREF | VT_BOOL;
    arguments[1].pboolVal = &cancel;
  }
  events_.Fire(ids.beforeClose, arguments);
  if (cancel == VARIANT_FALSE && document->closeCancelledElsewhere()) {
    std::printf("officesim: another add-in cancelled the close of %s\n", ToUtf8(document->name()).c_str());
    return false;
  }
  if (cancel != VARIANT_FALSE) {
    std::printf("officesim: an add-in cancelled the close of %s\n", ToUtf8(document->name()).c_str());
    return false;
  }
  return true;
}

SimDocument* SimApplication::OpenDocument(const std::wstring& path, bool readOnly) {
  if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
    std::printf("officesim: cannot open %s: no such file\n", ToUtf8(path).c_str());
    return nullptr;
  }
  auto* document = new SimDocument(*this, host_, path, false);
  document->SetReadOnly(readOnly);
  documents_.push_back(document);
  document->AddRef();
  everOpened_.push_back(document);
  active_ = document;
  ShowActiveInTitle();
  std::printf("officesim: opened %s\n", ToUtf8(document->fullName()).c_str());
  const HostEvents ids = EventIds(host_);
  FireDocumentEvent(ids.open, document, false);
  FireDocumentEvent(ids.activate, document, ids.activateHasWindow);
  return document;
}

SimDocument* SimApplication::NewDocument() {
  ++newDocuments_;
  const std::wstring name = (host_ == SimHost::Excel ? L"Book" : host_ == SimHost::PowerPoint ? L"Presentation"
                                                                                                : L"Document") +
                            std::to_wstring(newDocuments_);
  auto* document = new SimDocument(*this, host_, name, true);
  documents_.push_back(document);
  document->AddRef();
  everOpened_.push_back(document);
  active_ = document;
  ShowActiveInTitle();
  std::printf("officesim: new %s\n", ToUtf8(name).c_str());
  const HostEvents ids = EventIds(host_);
  FireDocumentEvent(ids.activate, document, ids.activateHasWindow);
  return document;
}

void SimApplication::ActivateDocument(SimDocument* document) {
  active_ = document;
  ShowActiveInTitle();
  const HostEvents ids = EventIds(host_);
  FireDocumentEvent(ids.activate, document, ids.activateHasWindow);
}

bool SimApplication::CloseDocument(SimDocument* document, SaveChoice choice) {
  if (host_ != SimHost::PowerPoint && !FireBeforeClose(document)) return false;
  if (!document->saved()) {
    SaveChoice decided = choice;
    if (choice == SaveChoice::Prompt) {
      decided = promptAnswer_ == PromptAnswer::Save      ? SaveChoice::Save
                : promptAnswer_ == PromptAnswer::Discard ? SaveChoice::Discard
                                                         : SaveChoice::Prompt;
      if (decided == SaveChoice::Prompt) {
        std::printf("officesim: the user cancelled closing %s\n", ToUtf8(document->name()).c_str());
        return false;
      }
    }
    if (decided == SaveChoice::Save && !document->Save()) return false;
  }
  if (host_ == SimHost::PowerPoint && !FireBeforeClose(document)) return false;  // PresentationClose, inside Close
  document->RunSlowCall();
  for (auto it = documents_.begin(); it != documents_.end(); ++it) {
    if (*it != document) continue;
    documents_.erase(it);
    break;
  }
  if (active_ == document) active_ = documents_.empty() ? nullptr : documents_.back();
  ShowActiveInTitle();
  std::printf("officesim: closed %s\n", ToUtf8(document->name()).c_str());
  document->Release();
  return true;
}

SimDocument* SimApplication::FindDocument(const std::wstring& nameOrPath) const {
  for (SimDocument* document : documents_) {
    if (lstrcmpiW(document->name().c_str(), nameOrPath.c_str()) == 0 ||
        lstrcmpiW(document->fullName().c_str(), nameOrPath.c_str()) == 0) {
      return document;
    }
  }
  return nullptr;
}

void SimApplication::ReleaseDocumentsAtExit() {
  for (SimDocument* document : documents_) document->Release();
  documents_.clear();
  active_ = nullptr;
}

void SimApplication::PrintReferences() const {
  // Our own bookkeeping reference is not counted: what is printed is what
  // the host and add-ins hold.
  for (SimDocument* document : everOpened_) {
    const bool open = FindDocument(document->fullName()) == document;
    std::printf("officesim: references held by add-ins on %s %s = %ld\n", ToUtf8(document->typeName()).c_str(),
                ToUtf8(document->name()).c_str(), document->references() - 1 - (open ? 1 : 0));
  }
}

// The main window's title names the active document, as Office's does.
void SimApplication::ShowActiveInTitle() {
  if (mainWindow_ == nullptr) return;
  const wchar_t* hostName = host_ == SimHost::Excel ? L"Excel" : host_ == SimHost::PowerPoint ? L"PowerPoint"
                                                                                               : L"Word";
  const std::wstring title = active_ != nullptr ? active_->name() + L" - " + hostName : std::wstring(hostName);
  SetWindowTextW(mainWindow_, title.c_str());
}
