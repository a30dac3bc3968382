#pragma once
// CConnect: the object Office creates through the ProgID and drives through
// _IDTExtensibility2. Its connection brings the add-in to life on the host's
// UI thread; its disconnection undoes that in its own order.
#include <windows.h>
#include <oaidl.h>

#include <atomic>

#include "addin/QSyncMSOfficeAddin.h"
#include "addin/event_sinks.h"
#include "addin/extensibility.h"
#include "common/unique_resource.h"

class CConnect final : public IConnect, public _IDTExtensibility2 {
 public:
  static HRESULT Create(REFIID iid, void** object);

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  // IDispatch, shared by IConnect and _IDTExtensibility2: late-bound callers
  // reach the five extensibility methods by name.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO* exception, UINT* badArgument) override;

  // _IDTExtensibility2
  HRESULT STDMETHODCALLTYPE OnConnection(IDispatch* application, int connectMode, IDispatch* addInInstance,
                                         SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnDisconnection(int removeMode, SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnAddInsUpdate(SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnStartupComplete(SAFEARRAY** custom) override;
  HRESULT STDMETHODCALLTYPE OnBeginShutdown(SAFEARRAY** custom) override;

 private:
  CConnect();
  ~CConnect();
  CConnect(const CConnect&) = delete;
  CConnect& operator=(const CConnect&) = delete;

  HRESULT ConnectToHost(IDispatch* application, HRESULT& result);
  void StartRunningParts();
  void DisconnectFromHost();
  void StopRunningParts();
  void ReleaseWhatConnectionLeft();

  std::atomic<ULONG> references_{1};
  HostEventSinks sinks_;
  UniqueHandle EventUpdateThreadHandle;
  UINT_PTR CustomUiTimerId = 0;
  // Set from the connection until the disconnection: a host that drops us
  // after a failed connection never calls OnDisconnection, and what the
  // connection set up must not outlive the object (nor the DLL).
  bool connected_ = false;
  // When OnDisconnection began: the wait for the update thread gets what
  // is left of Office's 500 ms.
  ULONGLONG disconnectionStart_ = 0;
};
