#include "overlay/layouts/scroll_metrics.h"

namespace {
// A font without a size must not divide by zero; it simply has no lines or
// characters to scroll.
int Per(int pixels, int unit) { return unit > 0 ? pixels / unit : 0; }
}  // namespace

int CapitalWidth(int averageCharWidth, unsigned pitchAndFamily) {
  return averageCharWidth * ((pitchAndFamily & 1u) != 0 ? 3 : 2) / 2;
}

int LineHeight(int height, int externalLeading) { return height + externalLeading; }

bool operator==(const ScrollRange& a, const ScrollRange& b) { return a.minimum == b.minimum && a.maximum == b.maximum; }

int HorizontalPage(int clientWidth, int charWidth) { return Per(clientWidth, charWidth); }

int TextWidth(int length, int charWidth, int capitalWidth) { return length * charWidth + (length / 4) * capitalWidth; }

ScrollRange HorizontalRange(int textWidth, int charWidth) { return {0, Per(textWidth, charWidth) + 2}; }

int HorizontalTextX(int position, int charWidth) { return (1 - position) * charWidth; }

int RequestedHorizontalPosition(HorizontalScrollRequest request, const ScrollBarState& bar) {
  switch (request) {
    case HorizontalScrollRequest::LineLeft: return bar.position - 1;
    case HorizontalScrollRequest::LineRight: return bar.position + 1;
    case HorizontalScrollRequest::PageLeft: return bar.position - bar.page;
    case HorizontalScrollRequest::PageRight: return bar.position + bar.page;
    case HorizontalScrollRequest::ThumbTrack: return bar.trackPosition;
  }
  return bar.position;
}

const wchar_t* HorizontalRequestLogText(HorizontalScrollRequest request) {
  switch (request) {
    case HorizontalScrollRequest::LineLeft: return L"WM_HSCROLL - SB_LINELEFT";
    case HorizontalScrollRequest::LineRight: return L"WM_HSCROLL - SB_LINERIGHT";
    case HorizontalScrollRequest::PageLeft: return L"WM_HSCROLL - SB_PAGELEFT";
    case HorizontalScrollRequest::PageRight: return L"WM_HSCROLL - SB_PAGERIGHT";
    case HorizontalScrollRequest::ThumbTrack: return L"WM_HSCROLL - SB_THUMBTRACK";
  }
  return nullptr;
}

ScrollRange VerticalRange(int clientHeight, int lineHeight) { return {0, Per(clientHeight, lineHeight) + 20}; }

int VerticalPage(int clientHeight, int lineHeight) { return Per(clientHeight, lineHeight); }

int RequestedVerticalPosition(VerticalScrollRequest request, const ScrollBarState& bar) {
  switch (request) {
    case VerticalScrollRequest::LineUp: return bar.position - 1;
    case VerticalScrollRequest::LineDown: return bar.position + 1;
    case VerticalScrollRequest::PageUp: return bar.position - bar.page;
    case VerticalScrollRequest::PageDown: return bar.position + bar.page;
    case VerticalScrollRequest::ThumbTrack: return bar.trackPosition;
    case VerticalScrollRequest::Top: return bar.minimum;
    case VerticalScrollRequest::Bottom: return bar.maximum;
  }
  return bar.position;
}

const wchar_t* VerticalRequestLogText(VerticalScrollRequest request) {
  switch (request) {
    case VerticalScrollRequest::LineUp: return L"WM_VSCROLL - SB_LINEUP";
    case VerticalScrollRequest::LineDown: return L"WM_VSCROLL - SB_LINEDOWN";
    case VerticalScrollRequest::PageUp: return L"WM_VSCROLL - SB_PAGEUP";
    case VerticalScrollRequest::PageDown: return L"WM_VSCROLL - SB_PAGEDOWN";
    case VerticalScrollRequest::ThumbTrack: return L"WM_VSCROLL - SB_THUMBTRACK";
    case VerticalScrollRequest::Top: return L"WM_VSCROLL - SB_TOP";
    case VerticalScrollRequest::Bottom: return L"WM_VSCROLL - SB_BOTTOM";
  }
  return nullptr;
}

int ScrollPixels(int oldPosition, int newPosition, int unit) { return unit * (oldPosition - newPosition); }
