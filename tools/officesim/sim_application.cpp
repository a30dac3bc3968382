#include "tools/officesim/sim_application.h"

namespace {
// Each host's _Application interface, from its type library.
const IID kWordApplication = {0x00020970, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kExcelApplication = {0x000208D5, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kPowerPointApplication = {0x91493442, 0x5A91, 0x11CF, {0x87, 0x00, 0x00, 0xAA, 0x00, 0x60, 0x26, 0x3B}};
}  // namespace

SimApplication::SimApplication(SimHost host, HWND mainWindow)
    : SimDispatch(L"Application"), host_(host), mainWindow_(mainWindow) {
  switch (host) {
    case SimHost::Word: AddInterface(kWordApplication); break;
    case SimHost::Excel: AddInterface(kExcelApplication); break;
    case SimHost::PowerPoint: AddInterface(kPowerPointApplication); break;
    default: break;
  }
  AddMember(L"Version", 0x18, [](WORD flags, const std::vector<VARIANT*>&, VARIANT* result) {
    if (!(flags & DISPATCH_PROPERTYGET)) return DISP_E_MEMBERNOTFOUND;
    return ReturnString(result, L"16.0");
  });
  AddMember(L"Name", 0x0, [host](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
    return ReturnString(result, host == SimHost::Word         ? L"Microsoft Word"
                                : host == SimHost::Excel      ? L"Microsoft Excel"
                                : host == SimHost::PowerPoint ? L"Microsoft PowerPoint"
                                                              : L"Outlook");
  });
  // Word's Application has no Hwnd; its windows do.
  if (host == SimHost::Excel || host == SimHost::PowerPoint) {
    AddMember(host == SimHost::Excel ? L"Hwnd" : L"HWND", 0x7E2,
              [this](WORD, const std::vector<VARIANT*>&, VARIANT* result) {
                return ReturnLong(result, static_cast<long>(reinterpret_cast<INT_PTR>(mainWindow_)));
              });
  }
}
