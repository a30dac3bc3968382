#pragma once
#include <windows.h>
#include <oleauto.h>

#include <string_view>

// An owned VARIANT, cleared on destruction.
class UniqueVariant {
 public:
  UniqueVariant() noexcept { VariantInit(&value_); }
  UniqueVariant(UniqueVariant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  UniqueVariant& operator=(UniqueVariant&& other) noexcept {
    if (this != &other) {
      reset();
      value_ = other.value_;
      VariantInit(&other.value_);
    }
    return *this;
  }
  UniqueVariant(const UniqueVariant&) = delete;
  UniqueVariant& operator=(const UniqueVariant&) = delete;
  ~UniqueVariant() { reset(); }

  static UniqueVariant Int32(long v) {
    UniqueVariant r;
    r.value_.vt = VT_I4;
    r.value_.lVal = v;
    return r;
  }
  static UniqueVariant Bool(bool v) {
    UniqueVariant r;
    r.value_.vt = VT_BOOL;
    r.value_.boolVal = v ? VARIANT_TRUE : VARIANT_FALSE;
    return r;
  }
  static UniqueVariant String(std::wstring_view text) {
    UniqueVariant r;
    r.value_.vt = VT_BSTR;
    r.value_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return r;
  }
  // An optional argument left out by the caller.
  static UniqueVariant Missing() {
    UniqueVariant r;
    r.value_.vt = VT_ERROR;
    r.value_.scode = DISP_E_PARAMNOTFOUND;
    return r;
  }

  void reset() noexcept { VariantClear(&value_); }
  VARIANT* put() noexcept {
    reset();
    return &value_;
  }
  VARIANT* get() noexcept { return &value_; }
  const VARIANT* get() const noexcept { return &value_; }
  VARTYPE type() const noexcept { return value_.vt; }

 private:
  VARIANT value_;
};
