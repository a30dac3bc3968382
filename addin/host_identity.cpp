#include "addin/host_identity.h"

OfficeHost IdentifyHost(std::wstring_view lowerCasePath) {
  if (lowerCasePath.find(L"word") != std::wstring_view::npos) return OfficeHost::Word;
  if (lowerCasePath.find(L"excel") != std::wstring_view::npos) return OfficeHost::Excel;
  if (lowerCasePath.find(L"powerpnt") != std::wstring_view::npos) return OfficeHost::PowerPoint;
  return OfficeHost::None;
}
