// The add-in inside the simulated Office: connection and disconnection as
// Word, Excel, PowerPoint and Outlook drive them, read back from the log.
#include <gtest/gtest.h>

#include <regex>

#include "addin/extensibility.h"
#include "common/com_ptr.h"
#include "common/unique_resource.h"
#include "tests/caller.h"
#include "tests/windows/in_process_host.h"
#include "tests/windows/sync_sim_process.h"
#include "tests/windows/wine_test_support.h"

namespace {
class Connection : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(InstallAddinForUser(true), S_OK); }
  static void TearDownTestSuite() { InstallAddinForUser(false); }
  void SetUp() override { DeleteLogFiles(); }

  // Runs the simulated host with the given program name and arguments.
  static ProcessResult RunHost(const wchar_t* exeName, const std::wstring& arguments = L"") {
    return RunProcess(L"\"" + OfficeExecutable(exeName) + L"\" " + arguments, 120000);
  }

  static std::vector<std::string> ConnectionPrefix(const std::string& version = "16.0") {
    return {"Add-in version = 1.0.0.4",
            "office app connects",
            "VEH added",
            "office app connected",
            "MS Office version = " + version,
            "win GDI+ initialized",
            "progress common controls initialized",
            "hyperlink common controls initialized",
            "badge visibility = 0 (default)",
            "custom ui update timer added",
            "office app startup completed",
            "office app begins to shut down",
            "office app disconnects"};
  }
  static std::vector<std::string> DisconnectionTail() {
    return {"win GDI+ uninitialized", "VEH removed", "stopped event update thread", "custom ui update timer removed",
            "office app disconnected"};
  }

  void ExpectServedHostSequence(const wchar_t* exeName, const std::string& hostTag, Caller caller = {}) {
    TRACE_CALLER(caller);
    const ProcessResult run = RunHost(exeName);
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    EXPECT_NE(run.output.find("application references at exit = 1"), std::string::npos) << run.output;
    const auto lines = ReadLog(LogFilePath());
    ASSERT_FALSE(lines.empty()) << run.output;
    const auto main = MessagesOfThread(lines, "MainThread");
    const auto prefix = ConnectionPrefix();
    ASSERT_GE(main.size(), prefix.size());
    EXPECT_EQ(std::vector<std::string>(main.begin(), main.begin() + prefix.size()), prefix);
    EXPECT_TRUE(ContainsInOrder(main, DisconnectionTail()));
    EXPECT_EQ(main.back(), "office app disconnected");
    EXPECT_EQ(MessagesOfThread(lines, "EvntUpdate").at(0), "event update thread starts");
    // The update thread is named before it runs, so none of its lines go unnamed.
    EXPECT_TRUE(MessagesOfThread(lines, "THREAD_NAME").empty());
    // The host column is blank until the host is known, then the host's tag.
    EXPECT_EQ(lines[0].host, "-----");
    EXPECT_EQ(lines.back().host, hostTag);
  }
};
}  // namespace

TEST_F(Connection, WordConnectsRunsAndDisconnects) { ExpectServedHostSequence(L"WINWORD.EXE", "Word "); }

TEST_F(Connection, ExcelConnectsRunsAndDisconnects) { ExpectServedHostSequence(L"EXCEL.EXE", "Excel"); }

TEST_F(Connection, PowerPointConnectsRunsAndDisconnects) { ExpectServedHostSequence(L"POWERPNT.EXE", "PPT  "); }

TEST_F(Connection, OutlookLeavesTheAddinIdle) {
  // Registration lists the add-in for Word, Excel and PowerPoint only; here
  // somebody has listed it for Outlook by hand.
  const wchar_t* outlookKey = L"Software\\Microsoft\\Office\\Outlook\\Addins\\QelvoFilewellSync.OfficeAddin";
  {
    UniqueHkey key;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, outlookKey, 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr),
              ERROR_SUCCESS);
    const DWORD loadBehavior = 3;
    RegSetValueExW(key.get(), L"LoadBehavior", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&loadBehavior),
                   sizeof(loadBehavior));
  }
  const ProcessResult run = RunHost(L"OUTLOOK.EXE");
  RegDeleteTreeW(HKEY_CURRENT_USER, outlookKey);
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  const auto lines = ReadLog(LogFilePath());
  const auto main = MessagesOfThread(lines, "MainThread");
  EXPECT_TRUE(ContainsInOrder(main, {"Add-in version = 1.0.0.4", "office app connects", "VEH added",
                                     "office app connects (but not Word/Excel/PPT)", "office app startup completed",
                                     "office app begins to shut down"}));
  EXPECT_TRUE(ContainsInOrder(
      main, {"office app disconnects", "office app disconnects, but unknown exception occurred when office app connected",
             "win GDI+ uninitialized", "VEH removed", "event update thread not available to stop",
             "custom ui update timer not available to remove", "office app disconnected"}));
  EXPECT_TRUE(MessagesOfThread(lines, "EvntUpdate").empty());
  for (const LogLine& line : lines) EXPECT_EQ(line.host, "-----") << line.message;
  for (const std::string& message : main) {
    EXPECT_NE(message, "office app connected");
    EXPECT_NE(message, "custom ui update timer added");
  }
}

TEST_F(Connection, ReadsTheBadgeSettingFromThePolicyBeforeTheUsersOwn) {
  const wchar_t* policyKey = L"Software\\Policies\\QelvoFilewell\\OfficeAddin";
  const wchar_t* userKey = L"Software\\QelvoFilewell\\OfficeAddin";
  const DWORD never = 2;
  const DWORD whenNeeded = 1;
  ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, policyKey, L"BadgeVisibility", REG_DWORD, &never, sizeof(never)),
            ERROR_SUCCESS);
  ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, userKey, L"BadgeVisibility", REG_DWORD, &whenNeeded,
                            sizeof(whenNeeded)),
            ERROR_SUCCESS);
  const ProcessResult run = RunHost(L"WINWORD.EXE");
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, policyKey, L"BadgeVisibility");
  RegDeleteKeyValueW(HKEY_CURRENT_USER, userKey, L"BadgeVisibility");
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  const auto main = MessagesOfThread(ReadLog(LogFilePath()), "MainThread");
  EXPECT_TRUE(ContainsInOrder(main, {"hyperlink common controls initialized", "badge visibility = 2 (policy)",
                                     "custom ui update timer added"}));
}

TEST_F(Connection, GoesOnWithoutTheImmediateUpdateEvent) {
  // Another kind of object already holds the event's name.
  UniqueHandle squatter(CreateMutexW(nullptr, FALSE, L"immediatelyUpdateEvent"));
  ASSERT_TRUE(squatter);
  const ProcessResult run = RunHost(L"WINWORD.EXE");
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  const auto lines = ReadLog(LogFilePath());
  const auto main = MessagesOfThread(lines, "MainThread");
  EXPECT_TRUE(ContainsInOrder(main, {"office app connected", "couldn't create ms office immediately update event - 6",
                                     "win GDI+ initialized", "custom ui update timer added",
                                     "stopped event update thread"}));
  EXPECT_EQ(MessagesOfThread(lines, "EvntUpdate").at(0), "event update thread starts");
}

namespace {
// Office flags an add-in whose shutdown takes longer, and one whose
// start-up takes more than a second.
constexpr double kShutdownLimitMs = 500;
constexpr double kStartupLimitMs = 1000;

// How long the simulated host says one of the add-in's methods took, or -1.
double MethodMs(const ProcessResult& run, const std::string& method) {
  std::smatch took;
  if (!std::regex_search(run.output, took, std::regex(method + " returned 0x00000000 in ([0-9.]+) ms"))) return -1;
  std::printf("%s took %s ms\n", method.c_str(), took[1].str().c_str());
  return std::stod(took[1].str());
}

// Word with no document, running long enough for the update thread's
// first exchange to be under way (or over) when Word exits.
ProcessResult RunWordBriefly() {
  const std::wstring script = FreshTempPath(L"connection-brief-script.txt");
  WriteUtf8File(script, L"wait 1500\n");
  return RunProcess(L"\"" + OfficeExecutable(L"WINWORD.EXE") + L"\" --script " + Quoted(script), 120000);
}

// A sync app that misbehaves as `arguments` say (recording what it gets
// in `requests`), or none: Office's start-up and shutdown stay within its
// limits, the update thread leaves without being terminated, and the last
// request was tried.
void ExpectWithinOfficesLimits(const std::wstring& arguments, const std::wstring& requests,
                               const std::string& lastRequestFailure, Caller caller = {}) {
  TRACE_CALLER(caller);
  SyncSimProcess syncApp;
  if (!arguments.empty()) {
    ASSERT_TRUE(syncApp.Start(arguments + L" --record " + Quoted(requests)));
  }
  const ProcessResult run = RunWordBriefly();
  syncApp.Stop();
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  const double connection = MethodMs(run, "OnConnection");
  const double disconnection = MethodMs(run, "OnDisconnection");
  ASSERT_GE(connection, 0) << run.output;
  ASSERT_GE(disconnection, 0) << run.output;
  EXPECT_LT(connection, kStartupLimitMs) << run.output;
  EXPECT_LT(disconnection, kShutdownLimitMs) << run.output;
  const auto lines = ReadLog(LogFilePath());
  const auto main = MessagesOfThread(lines, "MainThread");
  // `lastRequestFailure` may be the start of the line only.
  std::string failure = lastRequestFailure;
  for (const std::string& message : main) {
    if (message.rfind(lastRequestFailure, 0) == 0) failure = message;
  }
  EXPECT_TRUE(ContainsInOrder(main, {"office app disconnects", failure, "all file info removed from cache",
                                     "win GDI+ uninitialized", "VEH removed", "stopped event update thread",
                                     "custom ui update timer removed", "office app disconnected"}));
  for (const std::string& message : main) EXPECT_EQ(message.rfind("couldn't stop", 0), std::string::npos) << message;
}
}  // namespace

TEST_F(Connection, StaysWithinOfficesLimitsWhileTheSyncAppNeverAnswers) {
  const std::wstring requests = FreshTempPath(L"connection-unanswered-requests.txt");
  ExpectWithinOfficesLimits(L"--never-answer", requests, "read msg failed. errcode=995");
  // Asked to stop, the thread gave up its exchange at once and the last
  // request went out, its answer waited for only briefly.
  EXPECT_EQ(MessagesOfThread(ReadLog(LogFilePath()), "EvntUpdate"),
            (std::vector<std::string>{"event update thread starts", "read msg failed. errcode=995"}));
  EXPECT_EQ(ReadLines(requests), (std::vector<std::string>{"{\"files\":[]}", "{\"files\":[]}"}));
}

TEST_F(Connection, StaysWithinOfficesLimitsWhileTheSyncAppIsSlow) {
  const std::wstring requests = FreshTempPath(L"connection-slow-requests.txt");
  ExpectWithinOfficesLimits(L"--delay 3000", requests, "read msg failed. errcode=995");
  EXPECT_EQ(ReadLines(requests), (std::vector<std::string>{"{\"files\":[]}", "{\"files\":[]}"}));
}

TEST_F(Connection, StaysWithinOfficesLimitsWithoutASyncApp) {
  ExpectWithinOfficesLimits(L"", L"", "Could not open pipe. errcode=2");
}

TEST_F(Connection, StaysWithinOfficesLimitsWhenTheSyncAppDiesWhileAnsweringTheLastRequest) {
  // An answer far larger than the pipe's buffers: the sync app is still
  // writing it when it dies.
  const std::wstring answer = FreshTempPath(L"connection-dying-answer.txt");
  WriteUtf8File(answer, L"{\"resp\":[{\"file_path\":\"" + std::wstring(300000, L'x') + L"\"}]}");
  const std::wstring requests = FreshTempPath(L"connection-dying-requests.txt");
  ExpectWithinOfficesLimits(L"--die-mid-answer 2 --answer-file " + Quoted(answer), requests,
                            "read msg failed. errcode=");
  EXPECT_EQ(ReadLines(requests), (std::vector<std::string>{"{\"files\":[]}", "{\"files\":[]}"}));
}

TEST_F(Connection, TheLastRequestStillReachesAHealthySyncAppUnchanged) {
  InProcessHost scratch(SimHost::Word);  // only for its folder
  const std::wstring document = scratch.CreateFileNamed(L"plan.docx");
  const std::wstring script = scratch.folder() + L"\\script.txt";
  WriteUtf8File(script, L"open " + document + L"\nwait 1000\n");
  const std::wstring raw = FreshTempPath(L"connection-healthy-requests.bin");
  SyncSimProcess syncApp;
  ASSERT_TRUE(syncApp.Start(L"--record-raw " + Quoted(raw)));
  const ProcessResult run = RunHost(L"WINWORD.EXE", L"--script " + Quoted(script));
  syncApp.Stop();
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  EXPECT_LT(MethodMs(run, "OnDisconnection"), kShutdownLimitMs) << run.output;

  // The last request lists the open document, as every request did.
  const std::wstring last = L"{\"files\":[{\"filepath\":\"" + document +
                            L"\",\"isOpen\":true,\"isEditing\":false,\"resolveConflict\":false,\"retryModify\":false,"
                            L"\"retryRenameOrMove\":false,\"retryDelete\":false,\"file_combo_id\":\"\",\"officeApp\":\"1\"}]}";
  const std::string bytes(reinterpret_cast<const char*>(last.c_str()), (last.size() + 1) * sizeof(wchar_t));
  const std::string recorded = ReadFileBytes(raw);
  ASSERT_GE(recorded.size(), bytes.size());
  EXPECT_EQ(recorded.substr(recorded.size() - bytes.size()), bytes);
  for (const std::string& message : MessagesOfThread(ReadLog(LogFilePath()), "MainThread")) {
    EXPECT_EQ(message.find("errcode"), std::string::npos) << message;
  }
}

// What the heap may still commit for its own bookkeeping: four pages.
constexpr unsigned long long kPrivateBytesJitter = 4 * 4096;

TEST_F(Connection, HundredConnectionsLeaveNoHandlesGdiObjectsOrMemoryBehind) {
  const ProcessResult run = RunHost(L"WINWORD.EXE", L"--cycles 100");
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  const std::regex counts("resources after cycle (\\d+): handles=(\\d+) gdi=(\\d+) user=(\\d+) private=(\\d+)");
  std::vector<int> cycles;
  std::vector<std::vector<unsigned long long>> values;
  for (auto it = std::sregex_iterator(run.output.begin(), run.output.end(), counts); it != std::sregex_iterator();
       ++it) {
    cycles.push_back(std::stoi((*it)[1]));
    values.push_back({std::stoull((*it)[2]), std::stoull((*it)[3]), std::stoull((*it)[4]), std::stoull((*it)[5])});
  }
  ASSERT_EQ(cycles, (std::vector<int>{1, 2, 100})) << run.output;
  EXPECT_NE(run.output.find("application references at exit = 1"), std::string::npos);
  // Every cycle wrote its full connection and disconnection.
  size_t disconnected = 0;
  for (const std::string& message : MessagesOfThread(ReadLog(LogFilePath()), "MainThread")) {
    disconnected += message == "office app disconnected";
  }
  EXPECT_EQ(disconnected, 100u);
  // Every figure is read (under Wine by probing), never a 0 that would hide a leak.
  for (const auto& figure : values[0]) EXPECT_GT(figure, 0u) << run.output;
  const auto& first = values[0];
  const auto& second = values[1];
  const auto& last = values[2];
  EXPECT_EQ(last[0], first[0]) << "handles\n" << run.output;
  EXPECT_EQ(last[1], first[1]) << "GDI objects\n" << run.output;
  EXPECT_EQ(last[2], first[2]) << "USER objects\n" << run.output;
  // Memory from the second cycle on: the first connections grow the heap
  // to what they need at their busiest, and it keeps that. Over the 98
  // cycles that follow, 170 bytes a cycle already pass the jitter once the
  // heap must grow for them (Wine's heap grows 64 KiB at a time, so a leak
  // far smaller may first fill the free space it has).
  EXPECT_LE(last[3], second[3] + kPrivateBytesJitter) << "private bytes\n" << run.output;
}

namespace {
constexpr DWORD kHeapCorruption = 0xC0000374;
int g_heapCorruptionsSeenLast = 0;

// Installed after the add-in's handler, which logs a heap corruption and
// passes it on to this one.
LONG CALLBACK SeeHeapCorruptionLast(EXCEPTION_POINTERS* exception) {
  if (exception->ExceptionRecord->ExceptionCode != kHeapCorruption) return EXCEPTION_CONTINUE_SEARCH;
  ++g_heapCorruptionsSeenLast;
  return EXCEPTION_CONTINUE_EXECUTION;
}

size_t HeapCorruptionLines() {
  size_t count = 0;
  for (const std::string& message : LogMessages(LogFilePath())) {
    count += message == "STATUS_HEAP_CORRUPTION - passed on, the process cannot safely go on";
  }
  return count;
}

// The add-in's DLL loaded into this test program, which is no Office host:
// its connections take the idle road.
class ConnectionInProcess : public testing::Test {
 protected:
  void SetUp() override {
    StartFreshLog();
    module_.reset(LoadLibraryW(AddinDllPath().c_str()));
    ASSERT_TRUE(module_);
    getClassObject_ = reinterpret_cast<GetClassObjectFunction>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "DllGetClassObject")));
    canUnloadNow_ = reinterpret_cast<CanUnloadNowFunction>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "DllCanUnloadNow")));
    ASSERT_TRUE(getClassObject_ && canUnloadNow_);
  }
  // As COM does before it lets a DLL go.
  void TearDown() override {
    if (canUnloadNow_) canUnloadNow_();
  }

  // A fresh add-in object, as Office creates it through the class factory.
  _IDTExtensibility2* CreateAddin() {
    CLSID clsid;
    CLSIDFromString(L"{A1763C80-EE08-402F-9099-AF98401AA069}", &clsid);
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(getClassObject_(clsid, IID_IClassFactory, factory.put_void()), S_OK);
    _IDTExtensibility2* addin = nullptr;
    if (factory) factory->CreateInstance(nullptr, IID__IDTExtensibility2, reinterpret_cast<void**>(&addin));
    return addin;
  }

  using GetClassObjectFunction = HRESULT(__stdcall*)(REFCLSID, REFIID, void**);
  using CanUnloadNowFunction = HRESULT(__stdcall*)();
  UniqueModule module_;
  GetClassObjectFunction getClassObject_ = nullptr;
  CanUnloadNowFunction canUnloadNow_ = nullptr;
};
}  // namespace

TEST_F(ConnectionInProcess, AnObjectReleasedWithoutDisconnectionRemovesItsExceptionHandler) {
  // Office releases an add-in whose connection failed without disconnecting
  // it and may unload the DLL next: a handler left behind would be called
  // into unmapped code at the next exception anywhere in Office.
  _IDTExtensibility2* addin = CreateAddin();
  ASSERT_NE(addin, nullptr);
  ASSERT_EQ(addin->OnConnection(nullptr, 3, nullptr, nullptr), S_OK);
  g_heapCorruptionsSeenLast = 0;
  PVOID last = AddVectoredExceptionHandler(0, SeeHeapCorruptionLast);
  ASSERT_NE(last, nullptr);

  RaiseException(kHeapCorruption, 0, 0, nullptr);
  EXPECT_EQ(g_heapCorruptionsSeenLast, 1);  // passed on by the add-in's handler
  EXPECT_EQ(HeapCorruptionLines(), 1u);     // which logged it

  addin->Release();
  RaiseException(kHeapCorruption, 0, 0, nullptr);
  EXPECT_EQ(g_heapCorruptionsSeenLast, 2);
  EXPECT_EQ(HeapCorruptionLines(), 1u);  // no handler of ours any more
  RemoveVectoredExceptionHandler(last);
  // Nothing is logged for the release: no disconnection took place.
  EXPECT_EQ(LogMessages(LogFilePath()).back(), "STATUS_HEAP_CORRUPTION - passed on, the process cannot safely go on");
}

TEST_F(ConnectionInProcess, AModuleThatMayUnloadHoldsTheLogFileNoLonger) {
  // Another Office process rotates the log by renaming it; a handle left
  // open by an unloaded copy of the DLL would make that fail for good.
  _IDTExtensibility2* addin = CreateAddin();
  ASSERT_NE(addin, nullptr);
  addin->OnConnection(nullptr, 3, nullptr, nullptr);
  addin->OnDisconnection(0, nullptr);
  addin->Release();
  ASSERT_EQ(canUnloadNow_(), S_OK);

  const std::wstring moved = LogFilePath() + L".moved";
  ASSERT_TRUE(MoveFileW(LogFilePath().c_str(), moved.c_str())) << GetLastError();
  const std::vector<std::string> messages = LogMessages(moved);
  ASSERT_FALSE(messages.empty());
  EXPECT_EQ(messages.back(), "office app disconnected");
  DeleteFileW(moved.c_str());
}

TEST_F(ConnectionInProcess, AModuleThatConnectedOnceStaysLoadedAfterItsLastRelease) {
  // What a connection sets up for the life of the process (named mutexes,
  // the runtime's record of this thread) cannot be given back by an
  // unloading DLL; reloaded a hundred times, it would pile up.
  _IDTExtensibility2* addin = CreateAddin();
  ASSERT_NE(addin, nullptr);
  addin->OnConnection(nullptr, 3, nullptr, nullptr);
  addin->OnDisconnection(0, nullptr);
  addin->Release();
  ASSERT_EQ(canUnloadNow_(), S_OK);
  const HMODULE mapped = module_.get();
  module_.reset();
  HMODULE stillThere = nullptr;
  EXPECT_TRUE(GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, AddinDllPath().c_str(), &stillThere));
  EXPECT_EQ(stillThere, mapped);
}
