#pragma once
#include <utility>

#include "common/platform_types.h"

// An owned COM reference: copying adds a reference, destruction and
// reassignment release the one held. put() releases the old value first
// and gives the address for an out-parameter.
template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}
  // Takes a new reference on a borrowed pointer.
  explicit ComPtr(T* borrowed) noexcept : ptr_(borrowed) {
    if (ptr_) ptr_->AddRef();
  }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.ptr_) {}
  ComPtr(ComPtr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
  ~ComPtr() { reset(); }

  ComPtr& operator=(const ComPtr& other) noexcept {
    if (this != &other) {
      T* old = ptr_;
      ptr_ = other.ptr_;
      if (ptr_) ptr_->AddRef();
      if (old) old->Release();
    }
    return *this;
  }
  ComPtr& operator=(ComPtr&& other) noexcept {
    if (this != &other) {
      reset();
      ptr_ = std::exchange(other.ptr_, nullptr);
    }
    return *this;
  }
  ComPtr& operator=(std::nullptr_t) noexcept {
    reset();
    return *this;
  }

  // Adopts a reference that the caller already owns (no AddRef).
  static ComPtr Attach(T* owned) noexcept {
    ComPtr p;
    p.ptr_ = owned;
    return p;
  }
  T* Detach() noexcept { return std::exchange(ptr_, nullptr); }

  void reset() noexcept {
    if (T* old = std::exchange(ptr_, nullptr)) old->Release();
  }
  T** put() noexcept {
    reset();
    return &ptr_;
  }
  void** put_void() noexcept { return reinterpret_cast<void**>(put()); }

  T* get() const noexcept { return ptr_; }
  T* operator->() const noexcept { return ptr_; }
  explicit operator bool() const noexcept { return ptr_ != nullptr; }
  bool operator==(const ComPtr& other) const noexcept { return ptr_ == other.ptr_; }
  bool operator!=(const ComPtr& other) const noexcept { return ptr_ != other.ptr_; }

 private:
  T* ptr_ = nullptr;
};
