#include "addin/event_sinks.h"

#include <ocidl.h>

#include <atomic>

#include "addin/document_handlers.h"
#include "common/exception_barrier.h"
#include "docactions/close_file.h"

namespace {
// Each host's application-events interface, from its type library.
const IID kWordApplicationEvents = {0x00020A01, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelApplicationEvents = {0x00024413, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointApplicationEvents = {0x914934C2, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};

// Each host's document interface.
const IID kWordDocument = {0x0002096B, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelWorkbook = {0x000208DA, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointPresentation = {0x9149349D, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};

enum class EventKind { OpenOrActivate, BeforeClose };

struct EventEntry {
  int sinkId;  // 1 Word, 2 Excel, 3 PowerPoint
  DISPID dispid;
  UINT parameterCount;
  EventKind kind;
  const wchar_t* activity;  // for the exception barrier's log line
};

// The nine events, in the order of their handlers.
const EventEntry kEventTable[] = {
    {1, 4, 1, EventKind::OpenOrActivate, L"document opens"},            // DocumentOpen(Doc)
    {1, 6, 2, EventKind::BeforeClose, L"document before close"},        // DocumentBeforeClose(Doc, Cancel)
    {1, 10, 2, EventKind::OpenOrActivate, L"document activates"},       // WindowActivate(Doc, Wn)
    {2, 0x61F, 1, EventKind::OpenOrActivate, L"workbook opens"},        // WorkbookOpen(Wb)
    {2, 0x622, 2, EventKind::BeforeClose, L"workbook before close"},    // WorkbookBeforeClose(Wb, Cancel)
    {2, 0x620, 1, EventKind::OpenOrActivate, L"workbook activates"},    // WorkbookActivate(Wb)
    {3, 2006, 1, EventKind::OpenOrActivate, L"presentation opens"},     // PresentationOpen(Pres)
    {3, 2004, 1, EventKind::BeforeClose, L"presentation before close"}, // PresentationClose(Pres)
    {3, 2009, 2, EventKind::OpenOrActivate, L"presentation activates"}, // WindowActivate(Pres, Wn)
};

const IID& DocumentInterface(int sinkId) {
  return sinkId == 1 ? kWordDocument : sinkId == 2 ? kExcelWorkbook : kPowerPointPresentation;
}

// The document argument comes by reference (VT_BYREF|VT_DISPATCH); a plain
// VT_DISPATCH is taken too.
IDispatch* DocumentArgument(const DISPPARAMS* params) {
  if (params == nullptr || params->cArgs == 0 || params->rgvarg == nullptr) return nullptr;
  const VARIANT& first = params->rgvarg[params->cArgs - 1];  // arguments arrive in reverse order
  if (first.vt == (VT_BYREF | VT_DISPATCH)) return first.ppdispVal ? *first.ppdispVal : nullptr;
  if (first.vt == VT_DISPATCH) return first.pdispVal;
  return nullptr;
}

void HandleEvent(const EventEntry& entry, IDispatch* documentArgument) {
  // A failed query still reaches the routine, with an empty reference.
  ComPtr<IDispatch> document;
  if (documentArgument != nullptr) documentArgument->QueryInterface(DocumentInterface(entry.sinkId), document.put_void());
  if (entry.kind == EventKind::OpenOrActivate) {
    if (entry.sinkId == 1) RecordWordDocument(document);
    if (entry.sinkId == 2) RecordExcelWorkbook(document);
    if (entry.sinkId == 3) RecordPowerPointPresentation(document);
  } else {
    // The host's own slot holds the document; Cancel is never touched.
    OnFileClosing(entry.sinkId == 1 ? document : nullptr, entry.sinkId == 2 ? document : nullptr,
                  entry.sinkId == 3 ? document : nullptr);
  }
}
}  // namespace

// A dispatch-only event receiver for one host's application events.
class HostEventSink final : public IDispatch {
 public:
  HostEventSink(int sinkId, const IID& eventInterface) : sinkId_(sinkId), eventInterface_(eventInterface) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, eventInterface_)) {
      *object = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info) *info = nullptr;
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

  // Every event gets S_OK, whatever happened inside: an exception must
  // never travel back into the host.
  HRESULT STDMETHODCALLTYPE Invoke(DISPID dispid, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    for (const EventEntry& entry : kEventTable) {
      if (entry.sinkId != sinkId_ || entry.dispid != dispid) continue;
      if (params == nullptr || params->cArgs != entry.parameterCount) return S_OK;
      IDispatch* document = DocumentArgument(params);
      GuardedVoid(entry.activity, [&] { HandleEvent(entry, document); });
      return S_OK;
    }
    return S_OK;  // events this sink does not handle
  }

  HRESULT Advise(IDispatch* application) {
    if (application == nullptr) return E_POINTER;
    ComPtr<IConnectionPointContainer> container;
    HRESULT hr = application->QueryInterface(IID_IConnectionPointContainer, container.put_void());
    if (FAILED(hr)) return hr;
    ComPtr<IConnectionPoint> point;
    hr = container->FindConnectionPoint(eventInterface_, point.put());
    if (FAILED(hr)) return hr;
    return point->Advise(static_cast<IDispatch*>(this), &cookie_);
  }

  void Unadvise(IDispatch* application) {
    if (application == nullptr || cookie_ == 0) return;
    ComPtr<IConnectionPointContainer> container;
    if (FAILED(application->QueryInterface(IID_IConnectionPointContainer, container.put_void()))) return;
    ComPtr<IConnectionPoint> point;
    if (FAILED(container->FindConnectionPoint(eventInterface_, point.put()))) return;
    point->Unadvise(cookie_);
    cookie_ = 0;
  }

 private:
  ~HostEventSink() = default;
  int sinkId_;
  IID eventInterface_;
  DWORD cookie_ = 0;
  std::atomic<ULONG> references_{1};
};

HostEventSinks::HostEventSinks()
    : word_(new HostEventSink(1, kWordApplicationEvents)),
      excel_(new HostEventSink(2, kExcelApplicationEvents)),
      powerPoint_(new HostEventSink(3, kPowerPointApplicationEvents)) {}

HostEventSinks::~HostEventSinks() {
  word_->Release();
  excel_->Release();
  powerPoint_->Release();
}

HostEventSink* HostEventSinks::SinkOf(OfficeHost host) const {
  switch (host) {
    case OfficeHost::Word: return word_;
    case OfficeHost::Excel: return excel_;
    case OfficeHost::PowerPoint: return powerPoint_;
    default: return nullptr;
  }
}

HRESULT HostEventSinks::Subscribe(OfficeHost host, IDispatch* application) {
  HostEventSink* sink = SinkOf(host);
  return sink ? sink->Advise(application) : S_OK;
}

void HostEventSinks::Unsubscribe(OfficeHost host, IDispatch* application) {
  if (HostEventSink* sink = SinkOf(host)) sink->Unadvise(application);
}
