#pragma once
// A stand-in document that counts its references, so tests can prove the
// cache takes and gives back exactly what it should.
#include "common/platform_types.h"

struct CountingDispatch : IDispatch {
  long references = 1;
  HRESULT QueryInterface(const GUID_&, void** out) override {
    *out = nullptr;
    return -1;
  }
  unsigned long AddRef() override { return static_cast<unsigned long>(++references); }
  unsigned long Release() override { return static_cast<unsigned long>(--references); }
};
