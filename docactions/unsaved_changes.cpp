#include "docactions/unsaved_changes.h"

#include "common/dispatch.h"
#include "common/host_profile.h"

bool HasUnsavedChanges(ComPtr<IDispatch> document) {
  static DispatchName saved(L"Saved");
  const HostProfile* profile = CurrentHostProfile();
  if (profile == nullptr) return false;
  if (profile->savedForm == SavedForm::TriState) {
    // An MsoTriState: only msoTrue (-1) means saved.
    return GetLongProperty(document.get(), saved) != -1;
  }
  // A VARIANT_BOOL: anything below VARIANT_TRUE (0xFFFF) is unsaved.
  UniqueVariant value = GetProperty(document.get(), saved, 0);
  if (value.type() != VT_BOOL) {
    const HRESULT hr = VariantChangeType(value.get(), value.get(), 0, VT_BOOL);
    if (FAILED(hr)) throw ComError(L"Saved", hr);
  }
  return static_cast<unsigned short>(value.get()->boolVal) < 0xFFFF;
}
