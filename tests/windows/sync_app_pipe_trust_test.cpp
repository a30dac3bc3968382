// The pipe client against servers it must not believe, and answers meant to
// hurt it: only the user's own sync app, in the user's own session, is
// sent a request; the server may learn who the user is but never act as
// the user; an answer past the size cap or with a NUL inside cannot grow
// or splice the text the add-in reads.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "common/office_app.h"
#include "common/text.h"
#include "common/unique_resource.h"
#include "log/log_folder.h"
#include "synclink/answer_assembly.h"
#include "synclink/pipe_server_check.h"
#include "synclink/sync_app_pipe.h"
#include "tests/caller.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"
#include "tools/officesim/resource_counts.h"

namespace {
const std::wstring kRequest = L"{\"files\":[]}";

bool RunningUnderWine() {
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

// One instance of the user's sync-app pipe served by a thread of the test:
// it reads the request, may impersonate the client, then writes `answer`
// exactly as given (raw bytes) and waits for the client to hang up.
class RawPipeServer {
 public:
  RawPipeServer(std::string answer, bool impersonate) : answer_(std::move(answer)), impersonate_(impersonate) {
    pipe_.reset(CreateNamedPipeW(SyncAppPipeNameFor(WindowsUserName()).c_str(),
                                 PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                 PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_WAIT, 1, 65536, 65536, 0, nullptr));
    if (pipe_) thread_ = std::thread([this] { Serve(); });
  }
  ~RawPipeServer() {
    if (thread_.joinable()) thread_.join();
  }
  bool serving() const { return static_cast<bool>(pipe_); }
  // Waits for the connection to be over; what the client wrote.
  std::string Request() {
    if (thread_.joinable()) thread_.join();
    return request_;
  }
  SECURITY_IMPERSONATION_LEVEL level() const { return level_; }

 private:
  // One overlapped operation, waited for up to ten seconds: a test never
  // hangs on a client that does not come.
  bool Wait(BOOL started, DWORD& bytes) {
    if (!started && GetLastError() != ERROR_IO_PENDING && GetLastError() != ERROR_MORE_DATA) return false;
    if (WaitForSingleObject(event_.get(), 10000) != WAIT_OBJECT_0) CancelIoEx(pipe_.get(), &overlapped_);
    return GetOverlappedResult(pipe_.get(), &overlapped_, &bytes, TRUE) || GetLastError() == ERROR_MORE_DATA;
  }
  void Reset() {
    overlapped_ = OVERLAPPED{};
    overlapped_.hEvent = event_.get();
  }
  void Serve() {
    DWORD bytes = 0;
    Reset();
    const BOOL connected = ConnectNamedPipe(pipe_.get(), &overlapped_);
    if (!connected && GetLastError() != ERROR_PIPE_CONNECTED && !Wait(connected, bytes)) return;
    char buffer[4096];
    for (;;) {
      Reset();
      const BOOL read = ReadFile(pipe_.get(), buffer, sizeof(buffer), nullptr, &overlapped_);
      const bool more = !read && GetLastError() == ERROR_MORE_DATA;
      if (!Wait(read, bytes)) return;  // the client hung up without a request
      request_.append(buffer, bytes);
      if (!more && GetLastError() != ERROR_MORE_DATA) break;
      DWORD left = 0;
      if (!PeekNamedPipe(pipe_.get(), nullptr, 0, nullptr, nullptr, &left) || left == 0) break;
    }
    if (impersonate_ && ImpersonateNamedPipeClient(pipe_.get())) {
      HANDLE token = nullptr;
      if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) {
        DWORD size = 0;
        GetTokenInformation(token, TokenImpersonationLevel, &level_, sizeof(level_), &size);
        CloseHandle(token);
      }
      RevertToSelf();
    }
    Reset();
    Wait(WriteFile(pipe_.get(), answer_.data(), static_cast<DWORD>(answer_.size()), nullptr, &overlapped_), bytes);
    Reset();
    Wait(ReadFile(pipe_.get(), buffer, sizeof(buffer), nullptr, &overlapped_), bytes);  // until it hangs up
    DisconnectNamedPipe(pipe_.get());
  }

  std::string answer_;
  bool impersonate_;
  UniqueHandle pipe_;
  UniqueHandle event_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  OVERLAPPED overlapped_ = {};
  std::thread thread_;
  std::string request_;
  SECURITY_IMPERSONATION_LEVEL level_ = static_cast<SECURITY_IMPERSONATION_LEVEL>(0xdead);
};

// The bytes of an answer as the sync app writes them: U+FEFF, then the text.
std::string AnswerBytes(const std::wstring& text) {
  std::wstring units = L"\xFEFF" + text;
  return std::string(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(wchar_t));
}

// An answer message of exactly `bytes` bytes that passes the frame check.
std::string AnswerMessageOfBytes(size_t bytes) {
  const std::wstring head = L"{\"resp\":[{\"file_path\":\"";
  const std::wstring tail = L"\"}]}";
  const size_t units = bytes / 2 - 1;  // without the lead unit
  std::string message = AnswerBytes(head + std::wstring(units - head.size() - tail.size(), L'x') + tail);
  if (bytes % 2) message.push_back('y');
  return message;
}

class SyncAppPipeTrust : public testing::Test {
 protected:
  void SetUp() override {
    OfficeApp = OfficeHost::Word;
    StartFreshLog();
  }
  void TearDown() override {
    ReplacePipeServerFactsReader(nullptr);
    InitLogFolder();
    DeleteLogFiles();
  }
  static std::vector<std::string> Logged() { return LogMessages(LogFilePath()); }

  // The system's own facts, with one of them changed as if another user's
  // process (or the user's process in another session) served the pipe.
  void PretendServer(std::function<void(PipeServerFacts&)> change) {
    ReplacePipeServerFactsReader([this, change](HANDLE pipe, PipeServerFacts& facts) {
      if (!ReadPipeServerFacts(pipe, facts)) return false;
      change(facts);
      seen_ = facts;
      return true;
    });
  }

  SyncAppPipe pipe_;
  PipeServerFacts seen_;
};

// Another user's SID: S-1-5-21-111-222-333-1002.
SidBytes AnotherUser() {
  SidBytes sid = {1, 5, 0, 0, 0, 0, 0, 5};
  for (unsigned long sub : {21ul, 111ul, 222ul, 333ul, 1002ul}) {
    for (int i = 0; i < 4; ++i) sid.push_back(static_cast<unsigned char>(sub >> (8 * i)));
  }
  return sid;
}

// CreateFileW as the pipe client calls it, recorded: the test program's
// import of it is pointed here for one test.
DWORD g_openFlags = 0xdeadbeef;
decltype(&CreateFileW) g_realCreateFileW = nullptr;
HANDLE WINAPI RecordingCreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                   DWORD disposition, DWORD flags, HANDLE templateFile) {
  if (name != nullptr && wcsncmp(name, L"\\\\.\\pipe\\FilewellSync-", 22) == 0) g_openFlags = flags;
  return g_realCreateFileW(name, access, share, security, disposition, flags, templateFile);
}

// Points this program's import of kernel32's CreateFileW at `target`;
// the previous address.
void* PatchCreateFileWImport(void* target) {
  auto* base = reinterpret_cast<unsigned char*>(GetModuleHandleW(nullptr));
  auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
  auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* descriptor = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
       descriptor->Name != 0; ++descriptor) {
    auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + descriptor->OriginalFirstThunk);
    auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA*>(base + descriptor->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
      if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
      auto* byName = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (strcmp(reinterpret_cast<const char*>(byName->Name), "CreateFileW") != 0) continue;
      DWORD old = 0;
      VirtualProtect(&addresses->u1.Function, sizeof(void*), PAGE_READWRITE, &old);
      void* previous = reinterpret_cast<void*>(addresses->u1.Function);
      addresses->u1.Function = reinterpret_cast<ULONG_PTR>(target);
      VirtualProtect(&addresses->u1.Function, sizeof(void*), old, &old);
      return previous;
    }
  }
  return nullptr;
}
}  // namespace

TEST_F(SyncAppPipeTrust, OpensThePipeForIdentificationOnly) {
  g_realCreateFileW = reinterpret_cast<decltype(&CreateFileW)>(
      PatchCreateFileWImport(reinterpret_cast<void*>(&RecordingCreateFileW)));
  ASSERT_NE(g_realCreateFileW, nullptr);
  RawPipeServer server(AnswerBytes(L"{\"resp\":[]}"), false);
  ASSERT_TRUE(server.serving());
  g_openFlags = 0xdeadbeef;
  const std::wstring answer = pipe_.Exchange(kRequest);
  PatchCreateFileWImport(reinterpret_cast<void*>(g_realCreateFileW));
  EXPECT_EQ(Narrow(answer), "{\"resp\":[]}");
  EXPECT_EQ(g_openFlags, static_cast<DWORD>(FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION));
}

TEST_F(SyncAppPipeTrust, AServerThatImpersonatesTheClientGetsOnlyAnIdentificationToken) {
  RawPipeServer server(AnswerBytes(L"{\"resp\":[]}"), true);
  ASSERT_TRUE(server.serving());
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "{\"resp\":[]}");
  server.Request();
  if (RunningUnderWine()) {
    // Wine 8 ignores the client's quality of service: its token is always
    // SecurityImpersonation. What reaches CreateFileW is checked above.
    EXPECT_EQ(server.level(), SecurityImpersonation);
    GTEST_SKIP() << "Wine hands every pipe server an impersonation token";
  }
  EXPECT_EQ(server.level(), SecurityIdentification);
}

TEST_F(SyncAppPipeTrust, ReadsTheServerProcessUserAndSessionOfARealConnection) {
  RawPipeServer server(AnswerBytes(L"{\"resp\":[]}"), false);
  ASSERT_TRUE(server.serving());
  PipeServerFacts facts;
  facts.serverProcessId = 0xdeadbeef;
  facts.serverSession = 0xdeadbeef;
  ReplacePipeServerFactsReader([&](HANDLE pipe, PipeServerFacts& out) {
    const bool read = ReadPipeServerFacts(pipe, out);
    facts = out;
    return read;
  });
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "{\"resp\":[]}");
  EXPECT_EQ(facts.serverProcessId, GetCurrentProcessId());  // the test's own thread serves
  DWORD session = 0xdeadbeef;
  ASSERT_TRUE(ProcessIdToSessionId(GetCurrentProcessId(), &session));
  EXPECT_EQ(facts.serverSession, session);
  EXPECT_EQ(facts.ourSession, session);
  EXPECT_FALSE(facts.ourUser.empty());
  EXPECT_EQ(facts.serverUser, facts.ourUser);
  // Windows names the pipe's owner; Wine names none.
  if (!facts.pipeOwner.empty()) EXPECT_EQ(facts.pipeOwner, facts.ourUser);
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTrust, RefusesAServerRunningAsAnotherUserAndWritesItNothing) {
  RawPipeServer server(AnswerBytes(L"{\"resp\":[{\"file_path\":\"C:\\\\x.docx\"}]}"), false);
  ASSERT_TRUE(server.serving());
  PretendServer([](PipeServerFacts& facts) { facts.serverUser = AnotherUser(); });
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "ERROR");
  EXPECT_EQ(server.Request().size(), 0u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{
                          "couldn't trust the sync app's pipe: its server runs as another user - "
                          "S-1-5-21-111-222-333-1002, process " + std::to_string(GetCurrentProcessId())}));
}

TEST_F(SyncAppPipeTrust, RefusesTheUsersOwnProcessInAnotherSessionAndWritesItNothing) {
  RawPipeServer server(AnswerBytes(L"{\"resp\":[]}"), false);
  ASSERT_TRUE(server.serving());
  PretendServer([](PipeServerFacts& facts) { facts.serverSession = facts.ourSession + 1; });
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "ERROR");
  EXPECT_EQ(server.Request().size(), 0u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{
                          "couldn't trust the sync app's pipe: its server runs in another session - session " +
                          std::to_string(seen_.ourSession + 1) + ", process " +
                          std::to_string(GetCurrentProcessId()) + ", ours is " + std::to_string(seen_.ourSession)}));
}

TEST_F(SyncAppPipeTrust, RefusesAPipeOwnedByAnotherUserAndWritesItNothing) {
  RawPipeServer server(AnswerBytes(L"{\"resp\":[]}"), false);
  ASSERT_TRUE(server.serving());
  PretendServer([](PipeServerFacts& facts) { facts.pipeOwner = AnotherUser(); });
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "ERROR");
  EXPECT_EQ(server.Request().size(), 0u);
  EXPECT_EQ(Logged(), (std::vector<std::string>{"couldn't trust the sync app's pipe: it is owned by another user - "
                                                "S-1-5-21-111-222-333-1002, process " +
                                                std::to_string(GetCurrentProcessId())}));
}

TEST_F(SyncAppPipeTrust, RefusesAServerItCannotIdentify) {
  RawPipeServer server(AnswerBytes(L"{\"resp\":[]}"), false);
  ASSERT_TRUE(server.serving());
  ReplacePipeServerFactsReader([](HANDLE, PipeServerFacts& facts) {
    // As the real reader does for a process it may not open.
    facts = PipeServerFacts{};
    SetLastError(ERROR_ACCESS_DENIED);
    return ReadPipeServerFacts(INVALID_HANDLE_VALUE, facts);
  });
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "ERROR");
  EXPECT_EQ(server.Request().size(), 0u);
  const std::vector<std::string> logged = Logged();
  ASSERT_EQ(logged.size(), 1u);
  EXPECT_EQ(logged[0].rfind("couldn't check the sync app's pipe: its server's process id - ", 0), 0u) << logged[0];
}

TEST_F(SyncAppPipeTrust, TakesAnAnswerOfExactlyTheCap) {
  RawPipeServer server(AnswerMessageOfBytes(kMaxAnswerBytes), false);
  ASSERT_TRUE(server.serving());
  const std::wstring answer = pipe_.Exchange(kRequest);
  EXPECT_EQ(answer.size(), kMaxAnswerBytes / 2 - 1);
  EXPECT_EQ(Narrow(answer.substr(answer.size() - 6)), "xx\"}]}");
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTrust, AbandonsAnAnswerOneByteOverTheCapAndGivesItsMemoryBack) {
  std::string message = AnswerMessageOfBytes(kMaxAnswerBytes + 1);
  ASSERT_EQ(message.size(), kMaxAnswerBytes + 1);
  const unsigned long long before = CurrentResourceCounts().privateBytes;
  {
    RawPipeServer server(std::move(message), false);
    ASSERT_TRUE(server.serving());
    EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "ERROR");
  }
  const unsigned long long after = CurrentResourceCounts().privateBytes;
  EXPECT_EQ(Logged(), (std::vector<std::string>{
                          "couldn't read the sync app's answer - longer than 24117248 bytes, abandoned"}));
  // The 23 MiB read was given back (a little slack for the heap's own use).
  EXPECT_LT(after, before + 1024 * 1024) << before << " before, " << after << " after";
}

TEST_F(SyncAppPipeTrust, EndsTheAnswerAtANulAndSplicesNothingAfterIt) {
  RawPipeServer server(AnswerBytes(std::wstring(L"{\"resp\":[]}\0{\"resp\":[{\"file_path\":\"C:\\\\x.docx\"}]}", 43)),
                       false);
  ASSERT_TRUE(server.serving());
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), "{\"resp\":[]}");
  EXPECT_TRUE(Logged().empty());
}

TEST_F(SyncAppPipeTrust, EndsTheAnswerAtANulInALaterChunk) {
  const std::wstring head = L"{\"resp\":[{\"file_path\":\"" + std::wstring(5000, L'a') + L"\"}]}";
  std::wstring text = head;
  text.push_back(L'\0');
  text += L"{\"resp\":[{\"file_path\":\"C:\\\\spliced.docx\"}]}" + std::wstring(9000, L'b');
  RawPipeServer server(AnswerBytes(text), false);
  ASSERT_TRUE(server.serving());
  EXPECT_EQ(Narrow(pipe_.Exchange(kRequest)), Narrow(head));
}
