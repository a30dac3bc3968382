#include "synclink/request_message.h"

#include <iterator>

namespace {
// The fixed fragments of one file object with every flag at its longest
// ("false") and uiHide present, and room for any host number.
constexpr wchar_t kLongestFixedFragments[] =
    L"{\"filepath\":\"\",\"isOpen\":false,\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,"
    L"\"retryRenameOrMove\":false,\"retryDelete\":false,\"uiHide\":false,\"file_combo_id\":\"\",\"officeApp\":\"\"}";
constexpr size_t kHostNumberDigits = 10;

void AppendFlag(std::wstring& out, const wchar_t* key, std::uint32_t value) {
  out += L'"';
  out += key;
  out += value != 0 ? L"\":true," : L"\":false,";
}
}  // namespace

size_t MaxRequestObjectLength(const std::wstring& path, const FileStatusRecord& record) {
  return std::size(kLongestFixedFragments) - 1 + kHostNumberDigits + path.size() + record.sync.file_combo_id.size();
}

void AppendRequestObject(std::wstring& out, const std::wstring& path, const FileStatusRecord& record,
                         bool includeUiHide, OfficeHost host) {
  out += L"{\"filepath\":\"";
  out += path;
  out += L"\",";
  AppendFlag(out, L"isOpen", record.isOpen);
  AppendFlag(out, L"isEditing", record.isEditing);
  AppendFlag(out, L"resolveConflict", record.choices.Has(UserChoice::resolveConflict));
  AppendFlag(out, L"retryModify", record.choices.Has(UserChoice::retryModify));
  AppendFlag(out, L"retryRenameOrMove", record.choices.Has(UserChoice::retryRenameOrMove));
  AppendFlag(out, L"retryDelete", record.choices.Has(UserChoice::retryDelete));
  if (includeUiHide) AppendFlag(out, L"uiHide", record.choices.Has(UserChoice::uiHide));
  out += L"\"file_combo_id\":\"";
  out += record.sync.file_combo_id;
  out += L"\",\"officeApp\":\"";
  out += std::to_wstring(static_cast<unsigned>(host));
  out += L"\"}";
}
