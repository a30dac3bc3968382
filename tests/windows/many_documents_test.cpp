// Two hundred documents opened and closed, in-process against each
// simulated host and through the simulated Word with the add-in loaded as
// Office loads it: every reference the add-in took comes back.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>

#include "addin/event_sinks.h"
#include "tests/windows/in_process_host.h"

namespace {
constexpr int kDocuments = 200;

class ManyDocuments : public testing::TestWithParam<SimHost> {
 protected:
  InProcessHost host_{GetParam()};
};

TEST_P(ManyDocuments, OpeningAndClosingTwoHundredGivesBackEveryReference) {
  HostEventSinks sinks;
  ASSERT_EQ(sinks.Subscribe(AddinHostOf(GetParam()), &host_.app()), S_OK);
  const long applicationBefore = host_.app().references();
  const long collectionBefore = host_.app().collection()->references();
  std::vector<SimDocument*> documents;
  for (int i = 0; i < kDocuments; ++i) {
    SimDocument* document = host_.Open(L"many" + std::to_wstring(i) + DocumentExtension(GetParam()));
    ASSERT_NE(document, nullptr);
    document->AddRef();  // the test's own, to read the count after the close
    EXPECT_EQ(host_.CachedPaths().size(), 1u);
    ASSERT_TRUE(host_.app().CloseDocument(document, SimApplication::SaveChoice::Prompt));
    documents.push_back(document);
  }
  EXPECT_TRUE(host_.CachedPaths().empty());
  for (SimDocument* document : documents) {
    // Left: the simulated host's bookkeeping reference and the test's.
    EXPECT_EQ(document->references(), 2) << Narrow(document->name());
    document->Release();
  }
  EXPECT_EQ(host_.app().references(), applicationBefore);
  EXPECT_EQ(host_.app().collection()->references(), collectionBefore);
  size_t stored = 0, removed = 0;
  for (const std::string& message : host_.Messages()) {
    stored += message.rfind("file info stored in cache - ", 0) == 0;
    removed += message.rfind("file info removed from cache - ", 0) == 0;
  }
  EXPECT_EQ(stored, static_cast<size_t>(kDocuments));
  EXPECT_EQ(removed, static_cast<size_t>(kDocuments));
  sinks.Unsubscribe(AddinHostOf(GetParam()), &host_.app());
  EXPECT_EQ(host_.app().events().sinkCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(EveryHost, ManyDocuments, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);

// The add-in loaded by the simulated host from its registration.
class ManyDocumentsInTheHost : public testing::TestWithParam<const wchar_t*> {
 protected:
  static void SetUpTestSuite() { ASSERT_EQ(InstallAddinForUser(true), S_OK); }
  static void TearDownTestSuite() { EXPECT_EQ(InstallAddinForUser(false), S_OK); }
};

TEST_P(ManyDocumentsInTheHost, LeaveNoReferenceBehindAndDisconnectionReleasesTheApplication) {
  DeleteLogFiles();
  InProcessHost scratch(SimHost::Word);  // only for its temporary folder
  const std::wstring script = scratch.folder() + L"\\many.txt";
  {
    std::ofstream out(script.c_str());
    out << "open-close-many " << Narrow(scratch.folder()) << " " << kDocuments << "\nreport\n";
  }
  const ProcessResult run =
      RunProcess(L"\"" + OfficeExecutable(GetParam()) + L"\" --script \"" + script + L"\"", 300000);
  ASSERT_EQ(run.exitCode, 0u) << run.output;
  const std::regex held("references held by add-ins on \\w+ many\\d+\\.docx = (-?\\d+)");
  int reported = 0;
  for (auto it = std::sregex_iterator(run.output.begin(), run.output.end(), held); it != std::sregex_iterator();
       ++it) {
    ++reported;
    EXPECT_EQ((*it)[1].str(), "0") << (*it)[0].str();
  }
  // Reported once by the script and once more at exit.
  EXPECT_EQ(reported, 2 * kDocuments);
  EXPECT_NE(run.output.find("application references at exit = 1"), std::string::npos) << run.output;
  size_t stored = 0, removed = 0;
  for (const std::string& message : MessagesOfThread(ReadLog(LogFilePath()), "MainThread")) {
    stored += message.rfind("file info stored in cache - ", 0) == 0;
    removed += message.rfind("file info removed from cache - ", 0) == 0;
  }
  EXPECT_EQ(stored, static_cast<size_t>(kDocuments));
  EXPECT_EQ(removed, static_cast<size_t>(kDocuments));
}

INSTANTIATE_TEST_SUITE_P(EveryHost, ManyDocumentsInTheHost,
                         testing::Values(L"WINWORD.EXE", L"EXCEL.EXE", L"POWERPNT.EXE"),
                         [](const testing::TestParamInfo<const wchar_t*>& info) {
                           return Narrow(std::wstring(info.param).substr(0, std::wstring(info.param).find(L'.')));
                         });
}  // namespace
