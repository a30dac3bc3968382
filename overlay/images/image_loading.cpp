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

#include <vector>

#include "common/com_ptr.h"
#include "common/unique_resource.h"
#include "log/exception_barrier.h"
#include "log/write_log.h"
#include "overlay/images/png_header.h"

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
}  // namespace

HBITMAP LoadImageBitmap(std::wstring path, COLORREF background) {
  return Guarded(L"loading image", static_cast<HBITMAP>(nullptr), [&]() -> HBITMAP {
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
    HBITMAP handle = nullptr;
    const Gdiplus::Status converted = bitmap.GetHBITMAP(
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
