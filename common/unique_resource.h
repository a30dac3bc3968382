#pragma once
// Move-only owners of Win32 handles and GDI objects. Each kind is a traits
// struct naming its invalid value and its close function; closing keeps
// GetLastError() so a failure logged after cleanup still reports its code.
#include <windows.h>

#include <utility>

template <class Traits>
class UniqueResource {
 public:
  using Type = typename Traits::Type;

  UniqueResource() noexcept = default;
  explicit UniqueResource(Type value) noexcept : value_(value) {}
  UniqueResource(UniqueResource&& other) noexcept : value_(other.release()) {}
  UniqueResource& operator=(UniqueResource&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  UniqueResource(const UniqueResource&) = delete;
  UniqueResource& operator=(const UniqueResource&) = delete;
  ~UniqueResource() { reset(); }

  void reset(Type value = Traits::Invalid()) noexcept {
    Type old = std::exchange(value_, value);
    if (Traits::IsValid(old)) {
      const DWORD savedError = GetLastError();
      Traits::Close(old);
      SetLastError(savedError);
    }
  }
  Type release() noexcept { return std::exchange(value_, Traits::Invalid()); }
  Type get() const noexcept { return value_; }
  Type* put() noexcept {
    reset();
    return &value_;
  }
  explicit operator bool() const noexcept { return Traits::IsValid(value_); }

 private:
  Type value_ = Traits::Invalid();
};

struct HandleTraits {  // kernel objects whose invalid value is null
  using Type = HANDLE;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr && h != INVALID_HANDLE_VALUE; }
  static void Close(Type h) { CloseHandle(h); }
};
struct FileHandleTraits : HandleTraits {  // CreateFile's invalid value
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
};
struct HkeyTraits {
  using Type = HKEY;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { RegCloseKey(h); }
};
template <class T>
struct GdiObjectTraits {
  using Type = T;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { DeleteObject(h); }
};
struct ModuleTraits {
  using Type = HMODULE;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { FreeLibrary(h); }
};

using UniqueHandle = UniqueResource<HandleTraits>;
using UniqueFileHandle = UniqueResource<FileHandleTraits>;
using UniqueHkey = UniqueResource<HkeyTraits>;
using UniqueHbrush = UniqueResource<GdiObjectTraits<HBRUSH>>;
using UniqueHfont = UniqueResource<GdiObjectTraits<HFONT>>;
using UniqueHbitmap = UniqueResource<GdiObjectTraits<HBITMAP>>;
using UniqueModule = UniqueResource<ModuleTraits>;
