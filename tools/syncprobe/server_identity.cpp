#include "tools/syncprobe/server_identity.h"

#include <vector>

#include "common/unique_resource.h"

namespace {
// The user SID of a process's token; empty when it cannot be read.
std::vector<BYTE> TokenUserOf(HANDLE process, DWORD& error) {
  HANDLE rawToken = nullptr;
  if (!OpenProcessToken(process, TOKEN_QUERY, &rawToken)) {
    error = GetLastError();
    return {};
  }
  UniqueHandle token(rawToken);
  DWORD size = 0;
  GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
  std::vector<BYTE> buffer(size);
  if (size == 0 || !GetTokenInformation(token.get(), TokenUser, buffer.data(), size, &size)) {
    error = GetLastError();
    return {};
  }
  return buffer;
}

std::wstring Code(DWORD error) { return L"error " + std::to_wstring(error); }
}  // namespace

IdentityCheck CheckServerUser(HANDLE pipe) {
  IdentityCheck check;
  ULONG pid = 0;
  if (!GetNamedPipeServerProcessId(pipe, &pid)) {
    check.seen = L"the server's process could not be named (GetNamedPipeServerProcessId: " + Code(GetLastError()) + L")";
    return check;
  }
  DWORD error = 0;
  UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid));
  if (!process) {
    check.seen = L"server process " + std::to_wstring(pid) + L" could not be opened (" + Code(GetLastError()) + L")";
    return check;
  }
  const std::vector<BYTE> theirs = TokenUserOf(process.get(), error);
  if (theirs.empty()) {
    check.seen = L"server process " + std::to_wstring(pid) + L": its token could not be read (" + Code(error) + L")";
    return check;
  }
  const std::vector<BYTE> ours = TokenUserOf(GetCurrentProcess(), error);
  if (ours.empty()) {
    check.seen = L"this process's own token could not be read (" + Code(error) + L")";
    return check;
  }
  const bool same = EqualSid(reinterpret_cast<const TOKEN_USER*>(theirs.data())->User.Sid,
                             reinterpret_cast<const TOKEN_USER*>(ours.data())->User.Sid) != FALSE;
  check.outcome = same ? IdentityCheck::Outcome::Same : IdentityCheck::Outcome::Different;
  check.seen = L"server process " + std::to_wstring(pid) +
               (same ? L" runs as this user" : L" runs as ANOTHER user: the add-in must not trust it");
  return check;
}

IdentityCheck CheckServerSession(HANDLE pipe) {
  IdentityCheck check;
  ULONG theirs = 0;
  if (!GetNamedPipeServerSessionId(pipe, &theirs)) {
    check.seen = L"the server's session could not be named (GetNamedPipeServerSessionId: " + Code(GetLastError()) + L")";
    return check;
  }
  DWORD ours = 0;
  if (!ProcessIdToSessionId(GetCurrentProcessId(), &ours)) {
    check.seen = L"this process's session could not be read (" + Code(GetLastError()) + L")";
    return check;
  }
  check.outcome = theirs == ours ? IdentityCheck::Outcome::Same : IdentityCheck::Outcome::Different;
  check.seen = L"server in session " + std::to_wstring(theirs) + L", this process in session " + std::to_wstring(ours);
  return check;
}
