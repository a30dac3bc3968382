#pragma once
// A Word document, Excel workbook or PowerPoint presentation backed by a
// real file in the prefix.
#include <functional>
#include <string>

#include "tools/officesim/host_kind.h"
#include "tools/officesim/sim_dispatch.h"

class SimApplication;

class SimDocument : public SimDispatch {
 public:
  SimDocument(SimApplication& application, SimHost host, const std::wstring& fullPath, bool neverSaved);

  const std::wstring& fullName() const { return fullName_; }
  const std::wstring& name() const { return name_; }
  bool saved() const { return saved_; }
  void MarkEdited() {
    saved_ = false;
    savedTriState_ = 0;
  }
  // PowerPoint: the MsoTriState its Saved reports (msoTrue -1 is the only
  // saved state; msoCTrue 1 and msoTriStateMixed -2 exist too).
  void SetSavedTriState(long value) {
    savedTriState_ = value;
    saved_ = value == -1;
  }
  void SetReadOnly(bool readOnly) { readOnly_ = readOnly; }
  void SetFailingSaves(bool failing) { failSaves_ = failing; }
  // Plays a copy that cannot be written (a full disk, a folder the user
  // may not write to): SaveCopyAs fails as Office's does, with
  // DISP_E_EXCEPTION, and writes nothing.
  void SetFailingSaveCopies(bool failing) { failSaveCopies_ = failing; }
  // Plays a host that will not close the document now (Excel while a cell
  // is being edited, Word while one of its own modal dialogs is up): Close
  // fails with DISP_E_EXCEPTION, fires no event and leaves it open.
  void SetRefusingClose(bool refusing) { refuseClose_ = refusing; }
  IDispatch* window() const { return window_; }
  // Word: the handle its document window reports (the main window until set).
  void SetWindowHandle(HWND window) { windowHandle_ = window; }
  // Plays a document opened from the web: its Path and FullName are
  // addresses ("https://…"), not folders on disk.
  void PlaceOnTheWeb(const std::wstring& folderAddress) {
    folder_ = folderAddress;
    fullName_ = folderAddress + L"/" + name_;
  }
  // Plays Word 2007, whose documents have SaveAs but not yet SaveAs2.
  void RemoveSaveAs2();
  // Plays a host that takes its time: `meanwhile` runs in the middle of
  // each Save, SaveCopyAs (Word: SaveAs2, SaveAs) and Close, while the
  // host is busy with it (a test runs the sync app's cycle there; the
  // script host lets its messages and threads run).
  void SetSlowCalls(std::function<void()> meanwhile) { slowCalls_ = std::move(meanwhile); }
  void RunSlowCall() {
    if (slowCalls_) slowCalls_();
  }
  // Plays another add-in that cancels this document's close in its own
  // before-close handler, after ours has run.
  void SetCloseCancelledElsewhere(bool cancelled) { closeCancelledElsewhere_ = cancelled; }
  bool closeCancelledElsewhere() const { return closeCancelledElsewhere_; }

  // Writes the file; false when saving is refused (read-only, failing disk,
  // never saved: a save dialog the simulated user does not answer).
  bool Save();

 private:
  ~SimDocument() override;
  HRESULT CloseMember(const std::vector<VARIANT*>& args);
  HRESULT SaveCopyAsMember(const std::vector<VARIANT*>& args);
  HRESULT WordSaveAsMember(const std::vector<VARIANT*>& args, size_t allowed);

  SimApplication& application_;
  SimHost host_;
  std::wstring fullName_;
  std::wstring name_;
  std::wstring folder_;
  bool saved_ = true;
  long savedTriState_ = -1;
  bool readOnly_ = false;
  bool failSaves_ = false;
  bool failSaveCopies_ = false;
  bool refuseClose_ = false;
  int saveCount_ = 0;
  SimDispatch* window_ = nullptr;  // Word's document window
  HWND windowHandle_ = nullptr;
  std::function<void()> slowCalls_;
  bool closeCancelledElsewhere_ = false;
};

// True when an optional argument was left out.
bool IsMissing(const VARIANT* argument);
