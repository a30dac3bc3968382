#include "overlay/images/image_loading.h"

// GDI+'s headers expect min and max, which NOMINMAX takes away.
#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <objidl.h>
#include <gdiplus.h>
#include <shlwapi.h>

#include <memory>
#include <vector>

#include "common/com_ptr.h"
#include "common/unique_resource.h"
#include "log/exception_barrier.h"
#include "log/write_log.h"
#include "overlay/images/png_header.h"
#include "overlay/layouts/dpi_scaling.h"

namespace {
// The whole file, or nothing: a missing file then fails in GDI+ like a
// corrupt one, with its status in the log.
std::vector<BYTE> ReadWholeFile(const std::wstring& path) {
  std::vector<BYTE> bytes;
  UniqueFileHandle file(
      CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return bytes;
  LARGE_INTEGER size{};
  if (!GetFileSizeEx(file.get(), &size) || size.QuadPart <= 0 || size.QuadPart > 64 * 1024 * 1024) return bytes;
  bytes.resize(static_cast<size_t>(size.QuadPart));
  DWORD read = 0;
  if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) read = 0;
  bytes.resize(read);
  return bytes;
}

bool FileExists(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

// The picture redrawn at its size for this DPI: bicubic on premultiplied
// pixels, so transparent pixels do not bleed grey into the edges, and the
// edge pixels mirrored rather than faded. Null status on success.
Gdiplus::Status DrawScaled(Gdiplus::Bitmap& source, bool fromDoubleSize, int dpi,
                           std::unique_ptr<Gdiplus::Bitmap>& scaled) {
  const int width = ScaledImageSide(static_cast<int>(source.GetWidth()), fromDoubleSize, dpi);
  const int height = ScaledImageSide(static_cast<int>(source.GetHeight()), fromDoubleSize, dpi);
  scaled.reset(new Gdiplus::Bitmap(width, height, PixelFormat32bppPARGB));
  if (scaled->GetLastStatus() != Gdiplus::Ok) return scaled->GetLastStatus();
  Gdiplus::Graphics graphics(scaled.get());
  graphics.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
  graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
  graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHighQuality);
  Gdiplus::ImageAttributes edges;
  edges.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
  return graphics.DrawImage(&source, Gdiplus::Rect(0, 0, width, height), 0, 0,
                            static_cast<INT>(source.GetWidth()), static_cast<INT>(source.GetHeight()),
                            Gdiplus::UnitPixel, &edges);
}
}  // namespace

HBITMAP LoadImageBitmap(std::wstring path, COLORREF background, int dpi) {
  return Guarded(L"loading image", static_cast<HBITMAP>(nullptr), [&]() -> HBITMAP {
    dpi = UsableDpi(dpi);
    // A twin drawn for 192 DPI is sharper than the plain picture enlarged.
    bool fromDoubleSize = false;
    if (WantsDoubleSizeImage(dpi)) {
      const std::wstring twin = DoubleSizeFileName(path);
      if (FileExists(twin)) {
        path = twin;
        fromDoubleSize = true;
      }
    }
    const std::vector<BYTE> bytes = ReadWholeFile(path);
    // Only a small PNG reaches the decoder. A file that could not be read
    // at all goes on to fail in GDI+ as an empty stream, decoding nothing.
    if (!bytes.empty()) {
      if (const wchar_t* refusal = PngHeaderRefusal(bytes.data(), bytes.size())) {
        WriteLog(LogLevel::Error, L"couldn't load bitmap (" + path + L") - " + refusal);
        return nullptr;
      }
    }
    ComPtr<IStream> stream =
        ComPtr<IStream>::Attach(SHCreateMemStream(bytes.empty() ? nullptr : bytes.data(), static_cast<UINT>(bytes.size())));
    Gdiplus::Bitmap bitmap(stream.get(), FALSE);  // embedded colour management off
    const Gdiplus::Status loaded = bitmap.GetLastStatus();
    if (loaded != Gdiplus::Ok) {
      WriteLog(LogLevel::Error,
               L"couldn't load bitmap (" + path + L") - gdi status=" + std::to_wstring(static_cast<int>(loaded)));
      return nullptr;
    }
    WriteLog(LogLevel::Debug, L"loaded bitmap");
    std::unique_ptr<Gdiplus::Bitmap> scaled;
    if (dpi != kDesignDpi) {
      const Gdiplus::Status drawn = DrawScaled(bitmap, fromDoubleSize, dpi, scaled);
      if (drawn != Gdiplus::Ok) {
        WriteLog(LogLevel::Error, L"couldn't scale bitmap (" + path + L") to " + std::to_wstring(dpi) +
                                      L" dpi - gdi status=" + std::to_wstring(static_cast<int>(drawn)));
        return nullptr;
      }
    }
    Gdiplus::Bitmap& shown = scaled ? *scaled : bitmap;
    HBITMAP handle = nullptr;
    const Gdiplus::Status converted = shown.GetHBITMAP(
        Gdiplus::Color(0xFF, GetRValue(background), GetGValue(background), GetBValue(background)), &handle);
    if (converted != Gdiplus::Ok || handle == nullptr) {
      WriteLog(LogLevel::Error,
               L"couldn't load hbitmap (" + path + L") - gdi status=" + std::to_wstring(static_cast<int>(converted)));
      if (handle) DeleteObject(handle);
      return nullptr;
    }
    WriteLog(LogLevel::Debug, L"loaded hbitmap");
    return handle;
  });
}
