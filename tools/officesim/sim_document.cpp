#include "tools/officesim/sim_document.h"

#include <cstdio>

#include "common/text.h"
#include "tools/officesim/sim_application.h"

namespace {
// Each host's document interface, answered besides IDispatch.
const IID kWordDocument = {0x0002096B, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelWorkbook = {0x000208DA, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointPresentation = {0x9149349D, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};

bool WriteWholeFile(const std::wstring& path, const std::string& content) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  DWORD written = 0;
  const bool ok = WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) != FALSE;
  CloseHandle(file);
  return ok;
}

long LongArgument(const VARIANT* argument, long fallback) {
  if (IsMissing(argument)) return fallback;
  VARIANT copy;
  VariantInit(&copy);
  const VARIANT* source = argument;
  if (VariantChangeType(&copy, const_cast<VARIANT*>(source), 0, VT_I4) != S_OK) return fallback;
  return copy.lVal;
}

std::wstring StringArgument(const VARIANT* argument) {
  VARIANT copy;
  VariantInit(&copy);
  if (VariantChangeType(&copy, const_cast<VARIANT*>(argument), 0, VT_BSTR) != S_OK) return {};
  std::wstring text(copy.bstrVal, SysStringLen(copy.bstrVal));
  VariantClear(&copy);
  return text;
}
}  // namespace

bool IsMissing(const VARIANT* argument) {
  const VARIANT* value = argument;
  if (value != nullptr && value->vt == (VT_BYREF | VT_VARIANT)) value = value->pvarVal;
  return value == nullptr || (value->vt == VT_ERROR && value->scode == DISP_E_PARAMNOTFOUND) || value->vt == VT_EMPTY;
}

SimDocument::SimDocument(SimApplication& application, SimHost host, const std::wstring& fullPath, bool neverSaved)
    : SimDispatch(host == SimHost::Word ? L"Document" : host == SimHost::Excel ? L"Workbook" : L"Presentation"),
      application_(application),
      host_(host) {
  if (neverSaved) {
    fullName_ = name_ = fullPath;  // "Document1": no folder yet
  } else {
    fullName_ = fullPath;
    const size_t slash = fullPath.find_last_of(L'\\');
    name_ = fullPath.substr(slash + 1);
    folder_ = fullPath.substr(0, slash);
  }
  AddInterface(host == SimHost::Word ? kWordDocument : host == SimHost::Excel ? kExcelWorkbook
                                                                              : kPowerPointPresentation);
  AddMember(L"FullName", 0x0, [this](WORD, const std::vector<VARIANT*>&, VARIANT* r) { return ReturnString(r, fullName_); });
  AddMember(L"Name", 0x1, [this](WORD, const std::vector<VARIANT*>&, VARIANT* r) { return ReturnString(r, name_); });
  AddMember(L"Path", 0x2, [this](WORD, const std::vector<VARIANT*>&, VARIANT* r) { return ReturnString(r, folder_); });
  AddMember(L"ReadOnly", 0x3, [this](WORD, const std::vector<VARIANT*>&, VARIANT* r) { return ReturnBool(r, readOnly_); });
  AddMember(L"Saved", 0x4, [this](WORD flags, const std::vector<VARIANT*>& args, VARIANT* r) {
    if (flags & DISPATCH_PROPERTYPUT) {
      const long value = args.empty() ? 0 : LongArgument(args.back(), 0);
      saved_ = value != 0;
      savedTriState_ = saved_ ? -1 : 0;
      if (host_ == SimHost::PowerPoint) SetSavedTriState(value);
      return S_OK;
    }
    // PowerPoint answers with an MsoTriState, the others with a VARIANT_BOOL.
    if (host_ == SimHost::PowerPoint) return ReturnLong(r, savedTriState_);
    return ReturnBool(r, saved_);
  });
  // Word's Save takes two optional arguments; Excel's and PowerPoint's none.
  AddMethod(L"Save", 0x5, [this](WORD, const std::vector<VARIANT*>& args, VARIANT*) {
    if (args.size() > (host_ == SimHost::Word ? 2u : 0u)) return DISP_E_BADPARAMCOUNT;
    return Save() ? S_OK : DISP_E_EXCEPTION;
  });
  AddMethod(L"Close", 0x6, [this](WORD, const std::vector<VARIANT*>& args, VARIANT*) { return CloseMember(args); });
  if (host == SimHost::Word) {
    // Word has no SaveCopyAs. SaveAs2 (Word 2010 on: the file name and
    // sixteen optional arguments) and SaveAs (the file name and fifteen)
    // write the document to the new file and attach it to that file.
    AddMethod(L"SaveAs2", 0x1BF,
              [this](WORD, const std::vector<VARIANT*>& args, VARIANT*) { return WordSaveAsMember(args, 17); });
    AddMethod(L"SaveAs", 0x178,
              [this](WORD, const std::vector<VARIANT*>& args, VARIANT*) { return WordSaveAsMember(args, 16); });
  } else {
    AddMethod(L"SaveCopyAs", 0x7,
              [this](WORD, const std::vector<VARIANT*>& args, VARIANT*) { return SaveCopyAsMember(args); });
  }
  if (host == SimHost::Word) {
    window_ = new SimDispatch(L"Window");
    windowHandle_ = application.mainWindow();
    window_->AddMember(L"Hwnd", 0x8, [this](WORD, const std::vector<VARIANT*>&, VARIANT* r) {
      return ReturnLong(r, static_cast<long>(reinterpret_cast<INT_PTR>(windowHandle_)));
    });
    AddMember(L"ActiveWindow", 0x8, [this](WORD, const std::vector<VARIANT*>&, VARIANT* r) {
      return ReturnObject(r, window_);
    });
  }
}

SimDocument::~SimDocument() {
  if (window_) window_->Release();
}

void SimDocument::RemoveSaveAs2() { RemoveMember(L"SaveAs2"); }

bool SimDocument::Save() {
  RunSlowCall();  // a save that fails takes its time too
  if (readOnly_ || failSaves_ || folder_.empty()) {
    std::printf("officesim: save of %s failed\n", ToUtf8(name_).c_str());
    return false;
  }
  ++saveCount_;
  if (!WriteWholeFile(fullName_, "saved " + std::to_string(saveCount_) + " times\n")) return false;
  saved_ = true;
  savedTriState_ = -1;
  return true;
}

HRESULT SimDocument::SaveCopyAsMember(const std::vector<VARIANT*>& args) {
  if (args.empty()) return DISP_E_BADPARAMCOUNT;
  // Excel's takes the file name, PowerPoint's up to three arguments.
  const size_t allowed = host_ == SimHost::Excel ? 1 : 3;
  if (args.size() > allowed) return DISP_E_BADPARAMCOUNT;
  const std::wstring target = StringArgument(args[0]);
  RunSlowCall();
  if (failSaveCopies_) {
    std::printf("officesim: %s could not save a copy as %s\n", ToUtf8(name_).c_str(), ToUtf8(target).c_str());
    return DISP_E_EXCEPTION;
  }
  if (target.empty() || !CopyFileW(fullName_.c_str(), target.c_str(), FALSE)) {
    // A never-saved document has nothing on disk yet: write what it holds.
    if (target.empty() || !WriteWholeFile(target, "copy\n")) return DISP_E_EXCEPTION;
  }
  std::printf("officesim: %s saved a copy as %s\n", ToUtf8(name_).c_str(), ToUtf8(target).c_str());
  return S_OK;  // the document stays attached to its own file
}

HRESULT SimDocument::CloseMember(const std::vector<VARIANT*>& args) {
  // Word: SaveChanges -1 save, 0 don't, -2 prompt; Excel: True, False or
  // missing (prompt); PowerPoint closes without asking.
  // Word's and Excel's Close take three optional arguments, PowerPoint's none.
  if (args.size() > (host_ == SimHost::PowerPoint ? 0u : 3u)) return DISP_E_BADPARAMCOUNT;
  if (refuseClose_) {
    std::printf("officesim: closing %s refused\n", ToUtf8(name_).c_str());
    return DISP_E_EXCEPTION;
  }
  SimApplication::SaveChoice choice = SimApplication::SaveChoice::Prompt;
  if (host_ == SimHost::PowerPoint) {
    choice = SimApplication::SaveChoice::Discard;
  } else if (!args.empty() && !IsMissing(args[0])) {
    const long value = LongArgument(args[0], -2);
    if (host_ == SimHost::Word) {
      choice = value == -1 ? SimApplication::SaveChoice::Save
               : value == 0 ? SimApplication::SaveChoice::Discard
                            : SimApplication::SaveChoice::Prompt;
    } else {
      choice = value != 0 ? SimApplication::SaveChoice::Save : SimApplication::SaveChoice::Discard;
    }
  }
  return application_.CloseDocument(this, choice) ? S_OK : DISP_E_EXCEPTION;
}

HRESULT SimDocument::WordSaveAsMember(const std::vector<VARIANT*>& args, size_t allowed) {
  if (args.size() > allowed) return DISP_E_BADPARAMCOUNT;
  // Without a name Word would save under the current one; the add-in always
  // gives one.
  const std::wstring target = args.empty() || IsMissing(args[0]) ? fullName_ : StringArgument(args[0]);
  RunSlowCall();
  if (failSaveCopies_ || target.empty() || !WriteWholeFile(target, "copy\n")) {
    std::printf("officesim: %s could not be saved as %s\n", ToUtf8(name_).c_str(), ToUtf8(target).c_str());
    return DISP_E_EXCEPTION;
  }
  std::printf("officesim: %s saved as %s\n", ToUtf8(name_).c_str(), ToUtf8(target).c_str());
  // The document now is the new file, saved.
  fullName_ = target;
  const size_t slash = target.find_last_of(L'\\');
  name_ = target.substr(slash + 1);
  folder_ = slash == std::wstring::npos ? std::wstring() : target.substr(0, slash);
  saved_ = true;
  savedTriState_ = -1;
  return S_OK;
}
