#pragma once
// Scoped device contexts and selections for painting and layering: each
// gives back what it took on every road out, so a failed paint or a layering
// that stops half-way leaks no DC and leaves no object selected.
#include <windows.h>

#include <utility>

#include "common/unique_resource.h"

// GetDC / ReleaseDC; a null window gives the screen's DC.
class WindowDc {
 public:
  explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
  ~WindowDc() {
    if (dc_) ReleaseDC(window_, dc_);
  }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;
  HDC get() const { return dc_; }

 private:
  HWND window_;
  HDC dc_;
};

// BeginPaint / EndPaint.
class PaintDc {
 public:
  explicit PaintDc(HWND window) : window_(window), dc_(BeginPaint(window, &paint_)) {}
  ~PaintDc() { EndPaint(window_, &paint_); }
  PaintDc(const PaintDc&) = delete;
  PaintDc& operator=(const PaintDc&) = delete;
  HDC get() const { return dc_; }
  const RECT& area() const { return paint_.rcPaint; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
  HDC dc_;
};

struct MemoryDcTraits {
  using Type = HDC;
  static Type Invalid() { return nullptr; }
  static bool IsValid(Type h) { return h != nullptr; }
  static void Close(Type h) { DeleteDC(h); }
};
using UniqueMemoryDc = UniqueResource<MemoryDcTraits>;
using UniqueHrgn = UniqueResource<GdiObjectTraits<HRGN>>;

// SelectObject, and the previous object put back at the end.
class SelectedObject {
 public:
  SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), previous_(dc ? SelectObject(dc, object) : nullptr) {}
  ~SelectedObject() {
    if (ok()) SelectObject(dc_, previous_);
  }
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;
  bool ok() const { return previous_ != nullptr && previous_ != HGDI_ERROR; }

 private:
  HDC dc_;
  HGDIOBJ previous_;
};
