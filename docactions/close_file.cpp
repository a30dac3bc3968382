#include "docactions/close_file.h"

#include <vector>

#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "docactions/unsaved_changes.h"
#include "log/write_log.h"

namespace {
// Calls whose outcome shows in the next unsaved-changes check or in the
// cache rather than in their HRESULT.
HRESULT CallIgnoringResult(IDispatch* object, DispatchName& member, std::initializer_list<const VARIANT*> args,
                           LCID lcid = 0) {
  UniqueVariant result;
  return InvokeByName(object, member, DISPATCH_METHOD, args, result.put(), lcid);
}

// After the add-in's own close: the last document's close ends the host.
void QuitWhenNoDocumentIsLeft(const HostProfile& profile) {
  if (profile.quitArguments < 0) return;
  static DispatchName count(L"Count");
  static DispatchName quit(L"Quit");
  ComPtr<IDispatch> collection = GetObjectProperty(HostApplication.get(), DispatchNameFor(profile.documentsMember));
  if (!collection || GetLongProperty(collection.get(), count) != 0) return;
  if (profile.quitArguments == 3) {
    UniqueVariant missing1 = UniqueVariant::Missing(), missing2 = UniqueVariant::Missing(),
                  missing3 = UniqueVariant::Missing();
    CallIgnoringResult(HostApplication.get(), quit, {missing1.get(), missing2.get(), missing3.get()});
  } else {
    CallIgnoringResult(HostApplication.get(), quit, {});
  }
}

// Saves for mode 0; false (logged) when the document is still modified
// afterwards, for example because the user cancelled a save dialog.
bool SaveBeforeClosing(const ComPtr<IDispatch>& document, const wchar_t* stillModifiedText) {
  static DispatchName save(L"Save");
  CallIgnoringResult(document.get(), save, {}, 0);
  if (!HasUnsavedChanges(document)) return true;
  WriteLog(LogLevel::Error, stillModifiedText);
  return false;
}

// The SaveChanges argument of Word's and Excel's Close for a mode.
UniqueVariant SaveChangesArgument(CloseForm form, CloseMode mode) {
  if (form == CloseForm::WordSaveChanges) {
    // wdSaveChanges, wdDoNotSaveChanges, wdPromptToSaveChanges
    return UniqueVariant::Int32(mode == CloseMode::SaveThenClose ? -1 : mode == CloseMode::CloseWithoutSaving ? 0 : -2);
  }
  if (mode == CloseMode::CloseLettingTheHostAsk) return UniqueVariant::Missing();  // Excel asks the user itself
  return UniqueVariant::Bool(mode == CloseMode::SaveThenClose);
}
}  // namespace

bool CloseFile(ComPtr<IDispatch> document, CloseMode mode) {
  static DispatchName close(L"Close");
  WriteLog(LogLevel::Info, L"going to close file");
  const HostProfile* profile = CurrentHostProfile();
  if (profile == nullptr) return false;

  if (profile->closeForm == CloseForm::NoArguments) {
    // PowerPoint's Close cannot ask the user, so a modified presentation
    // that was to be closed with a prompt stays open.
    if (mode == CloseMode::SaveThenClose &&
        !SaveBeforeClosing(document, L"we didn't close file since file has unsaved changes (during SaveChanges)")) {
      return false;
    }
    if (mode == CloseMode::CloseLettingTheHostAsk && HasUnsavedChanges(document)) {
      WriteLog(LogLevel::Error, L"we didn't close file since file has unsaved changes (during PromptToSaveChanges)");
      return false;
    }
    return SUCCEEDED(CallIgnoringResult(document.get(), close, {}));
  }

  if (mode == CloseMode::SaveThenClose &&
      !SaveBeforeClosing(document, L"we didn't close file since file has unsaved changes")) {
    return false;
  }
  UniqueVariant changes = SaveChangesArgument(profile->closeForm, mode);
  UniqueVariant second = UniqueVariant::Missing(), third = UniqueVariant::Missing();
  const HRESULT closed = CallIgnoringResult(document.get(), close, {changes.get(), second.get(), third.get()}, 0);
  QuitWhenNoDocumentIsLeft(*profile);
  return SUCCEEDED(closed);
}
