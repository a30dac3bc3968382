#pragma once
// A Word document, Excel workbook or PowerPoint presentation backed by a
// real file in the prefix.
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
  void MarkEdited() { saved_ = false; }
  void SetReadOnly(bool readOnly) { readOnly_ = readOnly; }
  void SetFailingSaves(bool failing) { failSaves_ = failing; }
  IDispatch* window() const { return window_; }

  // Writes the file; false when saving is refused (read-only, failing disk,
  // never saved: a save dialog the simulated user does not answer).
  bool Save();

 private:
  ~SimDocument() override;
  HRESULT CloseMember(const std::vector<VARIANT*>& args);
  HRESULT SaveCopyAsMember(const std::vector<VARIANT*>& args);

  SimApplication& application_;
  SimHost host_;
  std::wstring fullName_;
  std::wstring name_;
  std::wstring folder_;
  bool saved_ = true;
  bool readOnly_ = false;
  bool failSaves_ = false;
  int saveCount_ = 0;
  SimDispatch* window_ = nullptr;  // Word's document window
};

// True when an optional argument was left out.
bool IsMissing(const VARIANT* argument);
