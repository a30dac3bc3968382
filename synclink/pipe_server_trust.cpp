#include "synclink/pipe_server_trust.h"

PipeServerVerdict JudgePipeServer(const PipeServerFacts& facts) {
  if (facts.ourUser.empty() || facts.serverUser != facts.ourUser) return PipeServerVerdict::ServerIsAnotherUser;
  if (facts.serverSession != facts.ourSession) return PipeServerVerdict::ServerInAnotherSession;
  if (!facts.pipeOwner.empty() && facts.pipeOwner != facts.ourUser) return PipeServerVerdict::OwnedByAnotherUser;
  return PipeServerVerdict::Trusted;
}

std::wstring DistrustText(PipeServerVerdict verdict, const PipeServerFacts& facts) {
  const std::wstring process = L"process " + std::to_wstring(facts.serverProcessId);
  switch (verdict) {
    case PipeServerVerdict::ServerIsAnotherUser:
      return L"couldn't trust the sync app's pipe: its server runs as another user - " + SidText(facts.serverUser) +
             L", " + process;
    case PipeServerVerdict::ServerInAnotherSession:
      return L"couldn't trust the sync app's pipe: its server runs in another session - session " +
             std::to_wstring(facts.serverSession) + L", " + process + L", ours is " +
             std::to_wstring(facts.ourSession);
    case PipeServerVerdict::OwnedByAnotherUser:
      return L"couldn't trust the sync app's pipe: it is owned by another user - " + SidText(facts.pipeOwner) +
             L", " + process;
    case PipeServerVerdict::Trusted:
      break;
  }
  return std::wstring();
}

std::wstring SidText(const SidBytes& sid) {
  // Revision (1), count of sub-authorities, 6-byte big-endian authority,
  // then that many 32-bit little-endian sub-authorities.
  if (sid.size() < 8 || sid[0] != 1 || sid.size() != 8 + 4 * static_cast<size_t>(sid[1])) {
    return L"(malformed SID)";
  }
  unsigned long long authority = 0;
  for (int i = 2; i < 8; ++i) authority = (authority << 8) | sid[i];
  std::wstring text = L"S-1-" + std::to_wstring(authority);
  for (size_t i = 0; i < sid[1]; ++i) {
    const size_t at = 8 + 4 * i;
    const unsigned long sub = static_cast<unsigned long>(sid[at]) | (static_cast<unsigned long>(sid[at + 1]) << 8) |
                              (static_cast<unsigned long>(sid[at + 2]) << 16) |
                              (static_cast<unsigned long>(sid[at + 3]) << 24);
    text += L"-" + std::to_wstring(sub);
  }
  return text;
}

std::wstring SyncAppPipeNameFor(const std::wstring& userName) {
  if (userName.empty()) return std::wstring();
  return L"\\\\.\\pipe\\FilewellSync-MSOfficeIntegration-" + userName;
}
