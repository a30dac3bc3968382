#include "docactions/read_only.h"

#include "common/dispatch.h"

bool IsReadOnly(const ComPtr<IDispatch>& document) {
  static DispatchName readOnly(L"ReadOnly");
  // VARIANT_TRUE and msoTrue are both -1; anything but 0 counts as read-only.
  return GetLongProperty(document.get(), readOnly, 0) != 0;
}
