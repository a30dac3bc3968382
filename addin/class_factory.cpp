#include "addin/class_factory.h"

#include <atomic>
#include <new>

#include "addin/connect.h"
#include "addin/module.h"

namespace {
using CreateFunction = HRESULT (*)(REFIID iid, void** object);

struct CreatableClass {
  const CLSID* clsid;
  CreateFunction create;
};

const CreatableClass kCreatableClasses[] = {
    {&CLSID_Connect, &CConnect::Create},
};

// One generic factory serves every class of the table.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(CreateFunction create) : create_(create) { ModuleAddRef(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
      *object = static_cast<IClassFactory*>(this);
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
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return create_(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock) {
      ModuleAddRef();
    } else {
      ModuleRelease();
    }
    return S_OK;
  }

 private:
  ~ClassFactory() { ModuleRelease(); }
  CreateFunction create_;
  std::atomic<ULONG> references_{1};
};
}  // namespace

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  for (const CreatableClass& entry : kCreatableClasses) {
    if (!IsEqualCLSID(clsid, *entry.clsid)) continue;
    auto* factory = new (std::nothrow) ClassFactory(entry.create);
    if (factory == nullptr) return E_OUTOFMEMORY;
    const HRESULT hr = factory->QueryInterface(iid, object);
    factory->Release();
    return hr;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}
