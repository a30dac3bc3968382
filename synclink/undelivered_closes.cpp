#include "synclink/undelivered_closes.h"

#include <algorithm>
#include <utility>

std::uint64_t UndeliveredCloses::Keep(const std::wstring& path, std::wstring fileObject,
                                      std::vector<std::wstring>& forgotten) {
  Forget(path);
  if (closes_.size() >= kMaxCloses) {
    forgotten.push_back(closes_.front().path);
    closes_.erase(closes_.begin());
  }
  const std::uint64_t id = nextId_++;
  closes_.push_back(Close{id, path, std::move(fileObject), true});
  return id;
}

bool UndeliveredCloses::Forget(const std::wstring& path) {
  const auto end = std::remove_if(closes_.begin(), closes_.end(), [&](const Close& c) { return c.path == path; });
  const bool found = end != closes_.end();
  closes_.erase(end, closes_.end());
  return found;
}

void UndeliveredCloses::AppendTo(std::wstring& request, size_t objectsBefore,
                                 std::vector<std::uint64_t>& carried) const {
  for (const Close& close : closes_) {
    if (close.ownExchangePending) continue;
    if (objectsBefore++ != 0) request += L',';
    request += close.fileObject;
    carried.push_back(close.id);
  }
}

size_t UndeliveredCloses::AppendedLength() const {
  size_t length = 0;
  for (const Close& close : closes_) length += close.fileObject.size() + 1;
  return length;
}

void UndeliveredCloses::Settle(const std::vector<std::uint64_t>& ids, bool answered,
                               std::vector<std::wstring>& delivered) {
  if (!answered) {
    for (Close& close : closes_) {
      if (std::find(ids.begin(), ids.end(), close.id) != ids.end()) close.ownExchangePending = false;
    }
    return;
  }
  const auto end = std::remove_if(closes_.begin(), closes_.end(), [&](const Close& c) {
    if (std::find(ids.begin(), ids.end(), c.id) == ids.end()) return false;
    delivered.push_back(c.path);
    return true;
  });
  closes_.erase(end, closes_.end());
}

bool UndeliveredCloses::Holds(const std::wstring& path) const {
  return std::any_of(closes_.begin(), closes_.end(), [&](const Close& c) { return c.path == path; });
}

bool AnswerConfirmsRequest(std::wstring_view answer) {
  constexpr std::wstring_view kFrameStart = L"{\"resp\":[";
  return answer.size() > kFrameStart.size() && answer.compare(0, kFrameStart.size(), kFrameStart) == 0 &&
         answer.back() == L'}';
}
