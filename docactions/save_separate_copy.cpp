#include "docactions/save_separate_copy.h"

#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "docactions/copy_name.h"
#include "log/exception_barrier.h"
#include "log/write_log.h"
#include "synclink/sync_app_pipe.h"

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

// The host's own save-a-copy; its HRESULT is not the judge: whether the
// file exists afterwards is.
void SaveCopyThroughHost(IDispatch* document, const std::wstring& fullPath) {
  // Word's SaveCopyAs writes the copy and leaves the document attached to
  // its own file, unlike SaveAs, which would re-attach it to the copy.
  static DispatchName wordSaveCopy(L"SaveCopyAs");
  static DispatchName excelSaveCopy(L"SaveCopyAs");
  static DispatchName powerPointSaveCopy(L"SaveCopyAs");
  UniqueVariant fileName = UniqueVariant::String(fullPath);
  UniqueVariant result;
  switch (OfficeApp) {
    case OfficeHost::Word: {
      UniqueVariant missing[15];
      for (auto& argument : missing) argument = UniqueVariant::Missing();
      InvokeByName(document, wordSaveCopy, DISPATCH_METHOD,
                   {fileName.get(), missing[0].get(), missing[1].get(), missing[2].get(), missing[3].get(),
                    missing[4].get(), missing[5].get(), missing[6].get(), missing[7].get(), missing[8].get(),
                    missing[9].get(), missing[10].get(), missing[11].get(), missing[12].get(), missing[13].get(),
                    missing[14].get()},
                   result.put());
      break;
    }
    case OfficeHost::Excel:
      InvokeByName(document, excelSaveCopy, DISPATCH_METHOD, {fileName.get()}, result.put(), 0);
      break;
    case OfficeHost::PowerPoint: {
      UniqueVariant format = UniqueVariant::Int32(11);  // ppSaveAsDefault
      UniqueVariant embedFonts = UniqueVariant::Int32(0);  // msoFalse
      InvokeByName(document, powerPointSaveCopy, DISPATCH_METHOD, {fileName.get(), format.get(), embedFonts.get()},
                   result.put());
      break;
    }
    default:
      break;
  }
}

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

    const std::wstring fullPath = place.folder + place.separator + newName;
    SaveCopyThroughHost(document.get(), fullPath);
    if (GetFileAttributesW(fullPath.c_str()) != INVALID_FILE_ATTRIBUTES) {
      WriteLog(LogLevel::Info, L"separate copy saved successfully: " + fullPath);
      return 1;
    }
    WriteLog(LogLevel::Error, L"couldn't save separate copy: " + fullPath);
    return 0;
  });
}
