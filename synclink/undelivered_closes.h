#pragma once
// Closes the sync app has not yet confirmed hearing. A document that closes
// while the sync app hangs or is away must still be reported closed once
// it answers again, or it would go on believing the file is open here.
// Each close is kept as the request's file object that says
// "isOpen":false, until an exchange that carried it is answered. Plain
// data: the cache keeps one under its own lock.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class UndeliveredCloses {
 public:
  // Enough for every document a user closes while the sync app is away;
  // beyond it the oldest close is forgotten (and logged by the caller), so
  // the next request cannot grow without end.
  static constexpr size_t kMaxCloses = 256;

  // Keeps the close of `path` (`fileObject`, without separators), replacing
  // a close of the same path kept earlier. Its id, for Settle. `forgotten`
  // gets the path of the oldest close when the list was full. Until its own
  // exchange has been settled, no other request carries it: the sync app
  // would hear of it twice.
  std::uint64_t Keep(const std::wstring& path, std::wstring fileObject, std::vector<std::wstring>& forgotten);
  // The document was opened again: its close is no longer news, and
  // carrying it later would tell the sync app an open file is closed.
  bool Forget(const std::wstring& path);

  // Appends every close kept (oldest first), but those still waiting for
  // their own exchange, as further file objects of a
  // request whose list already holds `objectsBefore` objects; the ids of
  // those carried go to `carried`.
  void AppendTo(std::wstring& request, size_t objectsBefore, std::vector<std::uint64_t>& carried) const;
  // At least the length AppendTo adds, to reserve room beforehand.
  size_t AppendedLength() const;

  // An exchange that carried `ids` ended: answered, they are done and their
  // paths go to `delivered`; otherwise they stay, and from now on every
  // request carries them.
  void Settle(const std::vector<std::uint64_t>& ids, bool answered, std::vector<std::wstring>& delivered);

  bool Holds(const std::wstring& path) const;
  size_t size() const { return closes_.size(); }

 private:
  struct Close {
    std::uint64_t id;
    std::wstring path;
    std::wstring fileObject;
    bool ownExchangePending;
  };
  std::vector<Close> closes_;  // oldest first
  std::uint64_t nextId_ = 1;
};

// Whether an answer shows that the sync app took the request it answers:
// it has the answer's frame. "ERROR", a cut answer or garbage does not.
bool AnswerConfirmsRequest(std::wstring_view answer);
