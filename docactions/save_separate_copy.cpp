#include "docactions/save_separate_copy.h"

#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "common/windows_user_name.h"
#include "docactions/copy_name.h"
#include "log/exception_barrier.h"
#include "log/write_log.h"

namespace {
struct DocumentPlace {
  std::wstring name;
  std::wstring folder;
  std::wstring separator;
};

DocumentPlace ReadPlace(IDispatch* document, IDispatch* application, bool fixedSeparator) {
  static DispatchName name(L"Name");
  static DispatchName path(L"Path");
  static DispatchName pathSeparator(L"PathSeparator");
  DocumentPlace place;
  place.name = GetStringProperty(document, name, 0);
  place.folder = GetStringProperty(document, path, 0);
  place.separator = fixedSeparator ? L"\\" : GetStringProperty(application, pathSeparator, 0);
  return place;
}

// Word has no SaveCopyAs: its save under a new name, SaveAs2 (Word 2010
// on) or SaveAs (Word 2003 and 2007, the same file name and fifteen
// optional arguments), writes the copy and attaches the document to it.
// The document is closed right after the copy (the reload), so nothing is
// written to the original file and the user's changes live on in the copy.
HRESULT WordSaveAs(IDispatch* document, const VARIANT* fileName, VARIANT* result) {
  static DispatchName saveAs2(L"SaveAs2");
  static DispatchName saveAs(L"SaveAs");
  UniqueVariant missing[15];
  for (auto& argument : missing) argument = UniqueVariant::Missing();
  const std::initializer_list<const VARIANT*> args = {
      fileName,          missing[0].get(),  missing[1].get(),  missing[2].get(),  missing[3].get(), missing[4].get(),
      missing[5].get(),  missing[6].get(),  missing[7].get(),  missing[8].get(),  missing[9].get(), missing[10].get(),
      missing[11].get(), missing[12].get(), missing[13].get(), missing[14].get()};
  const HRESULT hr = InvokeByName(document, saveAs2, DISPATCH_METHOD, args, result);
  if (hr != DISP_E_UNKNOWNNAME && hr != DISP_E_MEMBERNOTFOUND) return hr;
  return InvokeByName(document, saveAs, DISPATCH_METHOD, args, result);
}

// The host's own save-a-copy, and its HRESULT.
HRESULT SaveCopyThroughHost(IDispatch* document, const std::wstring& fullPath) {
  static DispatchName excelSaveCopy(L"SaveCopyAs");
  static DispatchName powerPointSaveCopy(L"SaveCopyAs");
  UniqueVariant fileName = UniqueVariant::String(fullPath);
  UniqueVariant result;
  switch (OfficeApp) {
    case OfficeHost::Word:
      return WordSaveAs(document, fileName.get(), result.put());
    case OfficeHost::Excel:
      return InvokeByName(document, excelSaveCopy, DISPATCH_METHOD, {fileName.get()}, result.put(), 0);
    case OfficeHost::PowerPoint: {
      UniqueVariant format = UniqueVariant::Int32(11);  // ppSaveAsDefault
      UniqueVariant embedFonts = UniqueVariant::Int32(0);  // msoFalse
      return InvokeByName(document, powerPointSaveCopy, DISPATCH_METHOD,
                          {fileName.get(), format.get(), embedFonts.get()}, result.put());
    }
    default:
      return E_NOTIMPL;
  }
}

bool Exists(const std::wstring& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

std::wstring LocalCopyStamp() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return FormatCopyStamp({now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds});
}
}  // namespace

int SaveSeparateCopy(ComPtr<IDispatch> document) {
  return Guarded(L"saving copy of file", 0, [&] {
    const HostProfile* profile = CurrentHostProfile();
    if (profile == nullptr) return 0;
    WriteLog(LogLevel::Info, L"separate copy saving");
    const DocumentPlace place = ReadPlace(document.get(), HostApplication.get(), !profile->askPathSeparator);
    WriteLog(LogLevel::Debug, L"filename: " + place.name);
    WriteLog(LogLevel::Debug, L"parentPath: " + place.folder);
    WriteLog(LogLevel::Debug, L"path sep: " + place.separator);

    const SplitFileName split = SplitAtLastDot(place.name);
    WriteLog(LogLevel::Debug, L"filename without extension: " + split.base);
    WriteLog(LogLevel::Debug, L"extension: " + split.extension);
    const std::wstring stamp = LocalCopyStamp();
    WriteLog(LogLevel::Debug, stamp);
    const std::wstring newName = SeparateCopyName(split, WindowsUserName(), stamp);
    WriteLog(LogLevel::Debug, L"new filename: " + newName);

    // A never-saved document has no folder, one opened from the web an
    // address: a copy there is not a file next to the user's document.
    if (!IsFolderOnDisk(place.folder)) {
      WriteLog(LogLevel::Error, L"couldn't save separate copy - not in a folder on disk: " + place.name +
                                    L", folder=\"" + place.folder + L"\"");
      return 0;
    }
    const std::wstring fullPath = place.folder + place.separator + newName;
    // Only a file that this save brought into being is the user's copy; one
    // that was there already would be overwritten, and tells nothing.
    const bool existedBefore = Exists(fullPath);
    if (existedBefore) {
      WriteLog(LogLevel::Error, L"couldn't save separate copy - the file exists already: " + fullPath);
      return 0;
    }
    const HRESULT saved = SaveCopyThroughHost(document.get(), fullPath);
    if (IsNewSeparateCopy(existedBefore, SUCCEEDED(saved), Exists(fullPath))) {
      WriteLog(LogLevel::Info, L"separate copy saved successfully: " + fullPath);
      return 1;
    }
    WriteLog(LogLevel::Error, L"couldn't save separate copy: " + fullPath);
    return 0;
  });
}
