#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tools/officesim/host_kind.h"
#include "tools/officesim/sim_dispatch.h"
#include "tools/officesim/sim_event_source.h"

class SimDocument;

// The host's Application object as the add-in sees it through IDispatch,
// with its open documents and its application events.
class SimApplication : public SimDispatch {
 public:
  enum class SaveChoice { Save, Discard, Prompt };
  enum class PromptAnswer { Save, Discard, Cancel };

  SimApplication(SimHost host, HWND mainWindow);
  SimHost host() const { return host_; }
  HWND mainWindow() const { return mainWindow_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

  // What the simulated user does.
  SimDocument* OpenDocument(const std::wstring& path, bool readOnly);
  SimDocument* NewDocument();
  void ActivateDocument(SimDocument* document);
  // Closes a document as Office does: the before-close event first (an
  // add-in may cancel it), then the save prompt when one is due.
  bool CloseDocument(SimDocument* document, SaveChoice choice);
  void SetPromptAnswer(PromptAnswer answer) { promptAnswer_ = answer; }
  SimDocument* FindDocument(const std::wstring& nameOrPath) const;
  size_t openDocumentCount() const { return documents_.size(); }
  bool quitRequested() const { return quitRequested_; }
  // The application-events connection point, as add-ins advise on it.
  SimEventSource& events() { return events_; }
  // The collection object (Documents, Workbooks, Presentations).
  SimDispatch* collection() const { return collection_; }

  // Closes what is still open when the host exits (no events: the add-ins
  // are gone by then) and prints the references others still hold.
  void ReleaseDocumentsAtExit();
  void PrintReferences() const;

 private:
  ~SimApplication() override;
  void AddCollection(const wchar_t* name, DISPID id);
  void FireDocumentEvent(DISPID dispid, SimDocument* document, bool withWindow);
  bool FireBeforeClose(SimDocument* document);
  void ShowActiveInTitle();

  SimHost host_;
  HWND mainWindow_;
  SimEventSource events_;
  std::vector<SimDocument*> documents_;  // one host reference each
  SimDocument* active_ = nullptr;
  // Every document ever opened, with one reference kept so its count can
  // still be reported after it closed.
  std::vector<SimDocument*> everOpened_;
  SimDispatch* collection_ = nullptr;
  PromptAnswer promptAnswer_ = PromptAnswer::Discard;
  int newDocuments_ = 0;
  bool quitRequested_ = false;
};
