#include "docactions/unsaved_changes.h"

#include "common/dispatch.h"
#include "common/office_app.h"

bool HasUnsavedChanges(ComPtr<IDispatch> wordDocument, ComPtr<IDispatch> excelWorkbook,
                       ComPtr<IDispatch> powerPointPresentation) {
  static DispatchName wordSaved(L"Saved");
  static DispatchName excelSaved(L"Saved");
  static DispatchName powerPointSaved(L"Saved");
  switch (OfficeApp) {
    case OfficeHost::Word:
    case OfficeHost::Excel: {
      // A VARIANT_BOOL: anything below VARIANT_TRUE (0xFFFF) is unsaved.
      const bool word = OfficeApp == OfficeHost::Word;
      UniqueVariant saved = word ? GetProperty(wordDocument.get(), wordSaved)
                                 : GetProperty(excelWorkbook.get(), excelSaved, 0);
      if (saved.type() != VT_BOOL) {
        const HRESULT hr = VariantChangeType(saved.get(), saved.get(), 0, VT_BOOL);
        if (FAILED(hr)) throw ComError(L"Saved", hr);
      }
      return static_cast<unsigned short>(saved.get()->boolVal) < 0xFFFF;
    }
    case OfficeHost::PowerPoint:
      // An MsoTriState: only msoTrue (-1) means saved.
      return GetLongProperty(powerPointPresentation.get(), powerPointSaved) != -1;
    default:
      return false;
  }
}
