#pragma once
#include <windows.h>
#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

// An owned BSTR.
class UniqueBstr {
 public:
  UniqueBstr() noexcept = default;
  explicit UniqueBstr(std::wstring_view text)
      : value_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  UniqueBstr(UniqueBstr&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
  UniqueBstr& operator=(UniqueBstr&& other) noexcept {
    if (this != &other) {
      reset();
      value_ = std::exchange(other.value_, nullptr);
    }
    return *this;
  }
  UniqueBstr(const UniqueBstr&) = delete;
  UniqueBstr& operator=(const UniqueBstr&) = delete;
  ~UniqueBstr() { reset(); }

  void reset() noexcept {
    if (value_) SysFreeString(std::exchange(value_, nullptr));
  }
  BSTR* put() noexcept {
    reset();
    return &value_;
  }
  BSTR get() const noexcept { return value_; }
  BSTR release() noexcept { return std::exchange(value_, nullptr); }
  // Copied by its length, so embedded NULs survive.
  std::wstring str() const { return value_ ? std::wstring(value_, SysStringLen(value_)) : std::wstring(); }

 private:
  BSTR value_ = nullptr;
};
