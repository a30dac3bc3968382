#include "synclink/pipe_server_check.h"

#include <aclapi.h>

#include <string>

#include "common/unique_resource.h"
#include "log/write_log.h"

namespace {
std::function<bool(HANDLE, PipeServerFacts&)>& ReplacedReader() {
  static auto* reader = new std::function<bool(HANDLE, PipeServerFacts&)>();
  return *reader;
}

bool CouldNotCheck(const wchar_t* what, DWORD error) {
  WriteLog(LogLevel::Error,
           std::wstring(L"couldn't check the sync app's pipe: ") + what + L" - " + std::to_wstring(error));
  return false;
}

SidBytes CopySid(PSID sid) {
  if (sid == nullptr || !IsValidSid(sid)) return SidBytes();
  const auto* bytes = static_cast<const unsigned char*>(sid);
  return SidBytes(bytes, bytes + GetLengthSid(sid));
}

// The user a process runs as; GetLastError tells why when empty.
SidBytes ProcessUser(HANDLE process) {
  HANDLE rawToken = nullptr;
  if (!OpenProcessToken(process, TOKEN_QUERY, &rawToken)) return SidBytes();
  UniqueHandle token(rawToken);
  // TOKEN_USER and the SID it points to, which follows it.
  alignas(TOKEN_USER) unsigned char buffer[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
  DWORD size = 0;
  if (!GetTokenInformation(token.get(), TokenUser, buffer, sizeof(buffer), &size)) return SidBytes();
  return CopySid(reinterpret_cast<TOKEN_USER*>(buffer)->User.Sid);
}
}  // namespace

bool ReadPipeServerFacts(HANDLE pipe, PipeServerFacts& facts) {
  facts.ourUser = ProcessUser(GetCurrentProcess());
  if (facts.ourUser.empty()) return CouldNotCheck(L"our own user", GetLastError());
  DWORD ourSession = 0;
  if (!ProcessIdToSessionId(GetCurrentProcessId(), &ourSession)) return CouldNotCheck(L"our own session", GetLastError());
  facts.ourSession = ourSession;

  ULONG serverProcessId = 0;
  if (!GetNamedPipeServerProcessId(pipe, &serverProcessId)) {
    return CouldNotCheck(L"its server's process id", GetLastError());
  }
  facts.serverProcessId = serverProcessId;
  ULONG serverSession = 0;
  if (!GetNamedPipeServerSessionId(pipe, &serverSession)) return CouldNotCheck(L"its server's session", GetLastError());
  facts.serverSession = serverSession;
  // The least right that names a process's token; granted across integrity
  // levels, so an elevated sync app of the same user still answers.
  UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, serverProcessId));
  if (!process) return CouldNotCheck(L"its server process", GetLastError());
  facts.serverUser = ProcessUser(process.get());
  if (facts.serverUser.empty()) return CouldNotCheck(L"its server's user", GetLastError());

  PSID owner = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error = GetSecurityInfo(pipe, SE_KERNEL_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                                      nullptr, &descriptor);
  if (error != ERROR_SUCCESS) return CouldNotCheck(L"its owner", error);
  facts.pipeOwner = CopySid(owner);  // Wine names no owner: empty
  LocalFree(descriptor);
  return true;
}

bool PipeServerIsTrusted(HANDLE pipe) {
  PipeServerFacts facts;
  const auto& replaced = ReplacedReader();
  if (!(replaced ? replaced(pipe, facts) : ReadPipeServerFacts(pipe, facts))) return false;
  const PipeServerVerdict verdict = JudgePipeServer(facts);
  if (verdict == PipeServerVerdict::Trusted) return true;
  WriteLog(LogLevel::Error, DistrustText(verdict, facts));
  return false;
}

void ReplacePipeServerFactsReader(std::function<bool(HANDLE, PipeServerFacts&)> reader) {
  ReplacedReader() = std::move(reader);
}
