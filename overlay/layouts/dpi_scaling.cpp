#include "overlay/layouts/dpi_scaling.h"

#include <cstdint>

namespace {
constexpr int kLargestDpi = 960;
}  // namespace

int UsableDpi(int dpi) {
  if (dpi < kDesignDpi) return kDesignDpi;
  if (dpi > kLargestDpi) return kLargestDpi;
  return dpi;
}

int ScaleForDpi(int value, int dpi) {
  const int usable = UsableDpi(dpi);
  if (usable == kDesignDpi) return value;
  const std::int64_t product = static_cast<std::int64_t>(value) * usable;
  const std::int64_t half = kDesignDpi / 2;
  const std::int64_t scaled = product >= 0 ? (product + half) / kDesignDpi : -((-product + half) / kDesignDpi);
  return static_cast<int>(scaled);
}

Rect ScaleRectForDpi(const Rect& rect, int dpi) {
  return {ScaleForDpi(rect.left, dpi), ScaleForDpi(rect.top, dpi), ScaleForDpi(rect.right, dpi),
          ScaleForDpi(rect.bottom, dpi)};
}

FontSpec ScaleFontForDpi(const FontSpec& font, int dpi, int defaultCellHeight) {
  FontSpec scaled = font;
  if (UsableDpi(dpi) == kDesignDpi) return scaled;
  scaled.height = ScaleForDpi(font.height != 0 ? font.height : defaultCellHeight, dpi);
  return scaled;
}

LayoutStep ScaleStepForDpi(const LayoutStep& step, int dpi) {
  LayoutStep scaled = step;
  scaled.x = ScaleForDpi(step.x, dpi);
  scaled.y = ScaleForDpi(step.y, dpi);
  scaled.width = ScaleForDpi(step.width, dpi);
  scaled.height = ScaleForDpi(step.height, dpi);
  return scaled;
}

PanelLayout ScaleLayoutForDpi(const PanelLayout& layout, int dpi) {
  PanelLayout scaled = layout;
  scaled.width = ScaleForDpi(layout.width, dpi);
  scaled.height = ScaleForDpi(layout.height, dpi);
  scaled.createHeight = ScaleForDpi(layout.createHeight, dpi);
  for (LayoutStep& step : scaled.steps) step = ScaleStepForDpi(step, dpi);
  return scaled;
}

int ScaledImageSide(int fileSize, bool fromDoubleSize, int dpi) {
  const int usable = UsableDpi(dpi);
  const std::int64_t divisor = fromDoubleSize ? 2 * kDesignDpi : kDesignDpi;
  const std::int64_t side = (static_cast<std::int64_t>(fileSize) * usable + divisor / 2) / divisor;
  return side < 1 ? 1 : static_cast<int>(side);
}

std::wstring DoubleSizeFileName(const std::wstring& fileName) {
  const std::wstring::size_type dot = fileName.find_last_of(L'.');
  const std::wstring::size_type slash = fileName.find_last_of(L"\\/");
  if (dot == std::wstring::npos || (slash != std::wstring::npos && dot < slash)) return fileName + L"@2x";
  return fileName.substr(0, dot) + L"@2x" + fileName.substr(dot);
}

bool WantsDoubleSizeImage(int dpi) { return UsableDpi(dpi) > kDesignDpi; }
