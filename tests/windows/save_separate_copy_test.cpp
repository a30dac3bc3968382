// Saving a separate copy of the open document through each simulated
// host: the copy's name and place, the host call, what becomes of the open
// document (Excel and PowerPoint leave it attached to its own file; Word,
// which has no save-a-copy, attaches it to the copy), and the copies that
// are refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "docactions/save_separate_copy.h"
#include "synclink/sync_app_pipe.h"
#include "tests/windows/in_process_host.h"

namespace {
std::vector<std::wstring> FilesIn(const std::wstring& folder) {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW found;
  HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const std::wstring name = found.cFileName;
    if (name != L"." && name != L"..") names.push_back(name);
  } while (FindNextFileW(search, &found));
  FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

std::string LocalStampNow() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  snprintf(text, sizeof(text), "%04u-%02u-%02u %02u.%02u.%02u.%03u", now.wYear, now.wMonth, now.wDay, now.wHour,
           now.wMinute, now.wSecond, now.wMilliseconds);
  return text;
}

std::string RegexEscaped(const std::string& text) {
  static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
  return std::regex_replace(text, special, R"(\$&)");
}

class SeparateCopy : public testing::TestWithParam<SimHost> {
 protected:
  int Save(IDispatch* document) {
    return SaveSeparateCopy(ComPtr<IDispatch>(document));
  }
  // The host call that writes the copy, as the simulated host recorded it.
  std::wstring ExpectedCall(const std::wstring& target) const {
    const std::wstring name = L"VT_BSTR \"" + target + L"\"";
    if (GetParam() == SimHost::Excel) return L"SaveCopyAs(" + name + L")";
    if (GetParam() == SimHost::PowerPoint) return L"SaveCopyAs(" + name + L", VT_I4 11, VT_I4 0)";
    return WordCall(L"SaveAs2", target);
  }
  static std::wstring WordCall(const wchar_t* member, const std::wstring& target) {
    std::wstring call = std::wstring(member) + L"(VT_BSTR \"" + target + L"\"";
    for (int i = 0; i < 15; ++i) call += L", missing";
    return call + L")";
  }

  // Saves a copy of a document named `fileName` and checks the copy is
  // "<base> (<user> <stamp>)<dot and extension>" next to it; returns its name.
  std::wstring ExpectCopyNamed(const std::wstring& fileName, const std::string& base, const std::string& dotExtension,
                               bool edited) {
    SimDocument* document = host_.Open(fileName);
    if (edited) document->MarkEdited();
    const std::wstring fullName = document->fullName();
    const long references = document->references();
    const std::string before = LocalStampNow();
    EXPECT_EQ(Save(document), 1);
    const std::string after = LocalStampNow();

    std::vector<std::wstring> files = FilesIn(host_.folder());
    files.erase(std::remove(files.begin(), files.end(), fileName), files.end());
    EXPECT_EQ(files.size(), 1u);
    if (files.size() != 1) return L"";
    const std::string copy = Narrow(files[0]);
    const std::string user = Narrow(WindowsUserName());
    const std::regex shape(RegexEscaped(base) + " \\(" + (user.empty() ? "" : RegexEscaped(user) + " ") +
                           R"((\d{4}-\d{2}-\d{2} \d{2}\.\d{2}\.\d{2}\.\d{3})\))" + RegexEscaped(dotExtension));
    std::smatch match;
    EXPECT_TRUE(std::regex_match(copy, match, shape)) << copy;
    if (match.size() == 2) {
      EXPECT_LE(before, match[1].str());
      EXPECT_GE(after, match[1].str());
    }
    const std::wstring target = host_.folder() + L"\\" + files[0];
    EXPECT_EQ(document->methodCalls(), std::vector<std::wstring>{ExpectedCall(target)});
    if (GetParam() == SimHost::Word) {
      // Word's save under a new name attaches the document to the copy,
      // saved; its own file is left as it was.
      EXPECT_EQ(document->fullName(), target);
      EXPECT_TRUE(document->saved());
    } else {
      // The open document stays what it was: its own file, its own saved state.
      EXPECT_EQ(document->fullName(), fullName);
      EXPECT_EQ(document->saved(), !edited);
    }
    EXPECT_EQ(ReadFileBytes(fullName), "content\n");
    EXPECT_EQ(document->references(), references);
    EXPECT_EQ(host_.Messages(), (std::vector<std::string>{"separate copy saving",
                                                           "separate copy saved successfully: " + Narrow(target)}));
    return files[0];
  }

  InProcessHost host_{GetParam()};
};

TEST_P(SeparateCopy, WritesTheCopyNextToTheDocumentNamedForTheUserAndTheTime) {
  const std::wstring extension = DocumentExtension(GetParam());
  ExpectCopyNamed(L"report" + extension, "report", Narrow(extension), false);
}

TEST_P(SeparateCopy, LeavesAModifiedDocumentModified) {
  const std::wstring extension = DocumentExtension(GetParam());
  ExpectCopyNamed(L"draft" + extension, "draft", Narrow(extension), true);
}

TEST_P(SeparateCopy, SplitsTheNameAtItsLastDot) {
  ExpectCopyNamed(L"data.tar.gz", "data.tar", ".gz", false);
}

TEST_P(SeparateCopy, ANameWithoutADotGetsNoTrailingDot) {
  ExpectCopyNamed(L"NOTES", "NOTES", "", false);
}

// Nothing is written, and the host is not even asked, for a copy that could
// not be a new file next to the user's document.
TEST_P(SeparateCopy, ANeverSavedDocumentIsRefusedWithoutAskingTheHost) {
  SimDocument* document = host_.app().NewDocument();
  document->MarkEdited();
  EXPECT_EQ(Save(document), 0);
  EXPECT_TRUE(document->methodCalls().empty());
  EXPECT_TRUE(FilesIn(host_.folder()).empty());
  const std::string line = "couldn't save separate copy - not in a folder on disk: " + Narrow(document->name()) +
                           ", folder=\"\"";
  EXPECT_EQ(host_.Messages(), (std::vector<std::string>{"separate copy saving", line}));
  EXPECT_EQ(host_.LevelOf(line), "E");
}

TEST_P(SeparateCopy, ADocumentOpenedFromTheWebIsRefusedWithoutAskingTheHost) {
  SimDocument* document = host_.Open(L"web" + DocumentExtension(GetParam()));
  document->PlaceOnTheWeb(L"https://contoso.sharepoint.com/Shared Documents");
  EXPECT_EQ(Save(document), 0);
  EXPECT_TRUE(document->methodCalls().empty());
  EXPECT_EQ(FilesIn(host_.folder()), std::vector<std::wstring>{L"web" + DocumentExtension(GetParam())});
  EXPECT_EQ(host_.Messages(),
            (std::vector<std::string>{"separate copy saving",
                                      "couldn't save separate copy - not in a folder on disk: web" +
                                          Narrow(DocumentExtension(GetParam())) +
                                          ", folder=\"https://contoso.sharepoint.com/Shared Documents\""}));
}

TEST_P(SeparateCopy, AHostThatRefusesTheSaveGivesZero) {
  SimDocument* document = host_.Open(L"half" + DocumentExtension(GetParam()));
  document->SetFailingSaveCopies(true);
  EXPECT_EQ(Save(document), 0);
  EXPECT_EQ(document->methodCalls().size(), 1u);
  const std::vector<std::string> messages = host_.Messages();
  ASSERT_EQ(messages.size(), 2u);
  EXPECT_EQ(messages[1].rfind("couldn't save separate copy: ", 0), 0u) << messages[1];
}

INSTANTIATE_TEST_SUITE_P(EveryHost, SeparateCopy, testing::Values(SimHost::Word, SimHost::Excel, SimHost::PowerPoint),
                         HostParamName);

TEST(WordSeparateCopy, Word2007WithoutSaveAs2SavesTheCopyWithSaveAs) {
  // Word 2007 knows SaveAs (the file name and fifteen optional arguments)
  // but not yet SaveAs2.
  InProcessHost office(SimHost::Word);
  SimDocument* document = office.Open(L"old.docx");
  document->RemoveSaveAs2();
  EXPECT_EQ(SaveSeparateCopy(ComPtr<IDispatch>(document)), 1);
  std::vector<std::wstring> files = FilesIn(office.folder());
  ASSERT_EQ(files.size(), 2u);
  const std::wstring copy = files[0] == L"old.docx" ? files[1] : files[0];
  const std::wstring target = office.folder() + L"\\" + copy;
  EXPECT_EQ(document->methodCalls(), std::vector<std::wstring>{
                                         [&] {
                                           std::wstring call = L"SaveAs(VT_BSTR \"" + target + L"\"";
                                           for (int i = 0; i < 15; ++i) call += L", missing";
                                           return call + L")";
                                         }()});
  EXPECT_EQ(office.Messages(),
            (std::vector<std::string>{"separate copy saving", "separate copy saved successfully: " + Narrow(target)}));
}

TEST(WordSeparateCopy, WordHasNoSaveCopyAs) {
  // A simulated Word that answered SaveCopyAs would hide from every test
  // that the add-in calls a member real Word does not have.
  InProcessHost office(SimHost::Word);
  SimDocument* document = office.Open(L"plain.docx");
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"SaveCopyAs")};
  DISPID id = 0x7eadbeef;
  EXPECT_EQ(document->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNNAME);
}

TEST(WordSeparateCopy, AFailingReadIsCaughtAndGivesZero) {
  InProcessHost office(SimHost::Word);
  auto* broken = new SimDispatch(L"Document");
  broken->AddMember(L"Name", 0x1, [](WORD, const std::vector<VARIANT*>&, VARIANT*) { return DISP_E_EXCEPTION; });
  EXPECT_EQ(SaveSeparateCopy(ComPtr<IDispatch>(broken)), 0);
  EXPECT_EQ(office.Messages(),
            (std::vector<std::string>{"separate copy saving",
                                      "std exception occurred while saving copy of file - object model call Name "
                                      "failed with 0x80020009"}));
  EXPECT_EQ(broken->references(), 1);
  broken->Release();
}
}  // namespace
