#include "addin/event_sinks.h"

#include <ocidl.h>

#include <atomic>

#include "addin/document_handlers.h"
#include "addin/file_closing.h"
#include "common/host_profile.h"
#include "log/exception_barrier.h"

namespace {
enum class EventKind { OpenOrActivate, BeforeClose };

struct EventEntry {
  OfficeHost host;
  DISPID dispid;
  UINT parameterCount;
  EventKind kind;
  const wchar_t* activity;  // for the exception barrier's log line
};

// The nine events, in the order of their handlers.
const EventEntry kEventTable[] = {
    {OfficeHost::Word, 4, 1, EventKind::OpenOrActivate, L"document opens"},                // DocumentOpen(Doc)
    {OfficeHost::Word, 6, 2, EventKind::BeforeClose, L"document before close"},            // DocumentBeforeClose(Doc, Cancel)
    {OfficeHost::Word, 10, 2, EventKind::OpenOrActivate, L"document activates"},           // WindowActivate(Doc, Wn)
    {OfficeHost::Excel, 0x61F, 1, EventKind::OpenOrActivate, L"workbook opens"},           // WorkbookOpen(Wb)
    {OfficeHost::Excel, 0x622, 2, EventKind::BeforeClose, L"workbook before close"},       // WorkbookBeforeClose(Wb, Cancel)
    {OfficeHost::Excel, 0x620, 1, EventKind::OpenOrActivate, L"workbook activates"},       // WorkbookActivate(Wb)
    {OfficeHost::PowerPoint, 2006, 1, EventKind::OpenOrActivate, L"presentation opens"},   // PresentationOpen(Pres)
    {OfficeHost::PowerPoint, 2004, 1, EventKind::BeforeClose, L"presentation before close"},  // PresentationClose(Pres)
    {OfficeHost::PowerPoint, 2009, 2, EventKind::OpenOrActivate, L"presentation activates"},  // WindowActivate(Pres, Wn)
};

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
  if (documentArgument != nullptr) {
    documentArgument->QueryInterface(ProfileOf(entry.host)->documentInterface, document.put_void());
  }
  if (entry.kind == EventKind::OpenOrActivate) {
    RecordDocument(document);
  } else {
    OnFileClosing(document);  // Cancel is never touched
  }
}
}  // namespace

// A dispatch-only event receiver for one host's application events.
class HostEventSink final : public IDispatch {
 public:
  explicit HostEventSink(OfficeHost host) : host_(host), eventInterface_(ProfileOf(host)->applicationEvents) {}

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
      if (entry.host != host_ || entry.dispid != dispid) continue;
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
  OfficeHost host_;
  IID eventInterface_;
  DWORD cookie_ = 0;
  std::atomic<ULONG> references_{1};
};

HostEventSinks::HostEventSinks()
    : word_(new HostEventSink(OfficeHost::Word)),
      excel_(new HostEventSink(OfficeHost::Excel)),
      powerPoint_(new HostEventSink(OfficeHost::PowerPoint)) {}

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
