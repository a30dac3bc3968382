#pragma once
// The few Windows types that the platform-independent code carries around
// (window handles and COM references it stores but never calls into
// beyond AddRef/Release). On Windows they are the real ones; elsewhere
// minimal stand-ins with the same layout for the methods used.
#ifdef _WIN32
#include <windows.h>
#include <oaidl.h>
#else
#include <cstdint>
struct HWND__;
typedef HWND__* HWND;
typedef long HRESULT;
struct GUID_;
struct IUnknown {
  virtual HRESULT QueryInterface(const GUID_& iid, void** out) = 0;
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;
};
struct IDispatch : IUnknown {};
#endif
