#include "docactions/close_file.h"

#include <vector>

#include "common/dispatch.h"
#include "common/host_application.h"
#include "common/host_profile.h"
#include "docactions/unsaved_changes.h"
#include "log/exception_barrier.h"
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

// PowerPoint's Close never asks; marking the presentation saved first
// (msoTrue) makes sure no version of it asks about changes the user chose
// to let go.
void SetSavedState(IDispatch* presentation, long msoTriState) {
  static DispatchName saved(L"Saved");
  UniqueVariant value = UniqueVariant::Int32(msoTriState);
  UniqueVariant result;
  InvokeByName(presentation, saved, DISPATCH_PROPERTYPUT, {value.get()}, result.put());
}

// After the host's Close: done when the document has left its list.
bool Finish(IDispatch* document, const HostProfile& profile, const std::function<void()>& whenClosed) {
  if (IsStillOpenInHost(document)) {
    WriteLog(LogLevel::Info, L"file stayed open after close");
    return false;
  }
  if (whenClosed) whenClosed();
  QuitWhenNoDocumentIsLeft(profile);
  return true;
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

// Whether the host's collection of open documents holds this one.
bool IsListedByHost(IDispatch* document) {
  static DispatchName count(L"Count");
  static DispatchName item(L"Item");
  const HostProfile* profile = CurrentHostProfile();
  if (profile == nullptr || document == nullptr) return false;
  ComPtr<IUnknown> identity;
  if (FAILED(document->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.put())))) return false;
  const ComPtr<IDispatch> documents =
      GetObjectProperty(HostApplication.get(), DispatchNameFor(profile->documentsMember));
  if (!documents) return false;
  const long open = GetLongProperty(documents.get(), count);
  for (long i = 1; i <= open; ++i) {
    UniqueVariant index = UniqueVariant::Int32(i);
    UniqueVariant listed;
    if (FAILED(InvokeByName(documents.get(), item, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {index.get()},
                            listed.put()))) {
      continue;
    }
    if (listed.type() != VT_DISPATCH || listed.get()->pdispVal == nullptr) continue;
    ComPtr<IUnknown> other;
    if (SUCCEEDED(listed.get()->pdispVal->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(other.put()))) &&
        other.get() == identity.get()) {
      return true;
    }
  }
  return false;
}
}  // namespace

bool IsStillOpenInHost(IDispatch* document) {
  // A list that cannot be read says nothing: the document counts as open,
  // so that no close is reported that may not have happened.
  return Guarded(L"checking whether the file is still open", true, [&] { return IsListedByHost(document); });
}

bool CloseFile(ComPtr<IDispatch> document, CloseMode mode, const std::function<void()>& whenClosed) {
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
    const bool markedSaved = mode == CloseMode::CloseWithoutSaving && HasUnsavedChanges(document);
    if (markedSaved) SetSavedState(document.get(), -1);  // msoTrue
    CallIgnoringResult(document.get(), close, {});
    if (Finish(document.get(), *profile, whenClosed)) return true;
    // Still open: its changes must not pass for saved, or PowerPoint would
    // let them go without a word at the user's own close.
    if (markedSaved) SetSavedState(document.get(), 0);  // msoFalse
    return false;
  }

  if (mode == CloseMode::SaveThenClose &&
      !SaveBeforeClosing(document, L"we didn't close file since file has unsaved changes")) {
    return false;
  }
  UniqueVariant changes = SaveChangesArgument(profile->closeForm, mode);
  UniqueVariant second = UniqueVariant::Missing(), third = UniqueVariant::Missing();
  CallIgnoringResult(document.get(), close, {changes.get(), second.get(), third.get()}, 0);
  return Finish(document.get(), *profile, whenClosed);
}
