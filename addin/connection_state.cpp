#include "addin/connection_state.h"

#include "common/office_app.h"

ComPtr<IDispatch> WordApplication;
ComPtr<IDispatch> ExcelApplication;
ComPtr<IDispatch> PowerPointApplication;
UniqueHandle ImmediateUpdateEvent;
PVOID VectoredHandlerHandle = nullptr;
std::wstring ImagesFolder;
ULONG_PTR GdiplusToken = 0;
std::wstring OfficeAppPath;

IDispatch* CurrentHostApplication() {
  switch (OfficeApp) {
    case OfficeHost::Word:
      return WordApplication.get();
    case OfficeHost::Excel:
      return ExcelApplication.get();
    case OfficeHost::PowerPoint:
      return PowerPointApplication.get();
    default:
      return nullptr;
  }
}
