#pragma once
// What sets Word, Excel and PowerPoint apart for the add-in, one table row
// per host: the interfaces it asks for, the object-model members it calls,
// the word its log lines use, and the shapes of the calls that differ.
// Everything else reads the row of the running host (OfficeApp) instead of
// switching on the host again.
#include <windows.h>

#include "common/office_app.h"

// Where the top-level window that shows a document comes from.
enum class HostWindowSource {
  DocumentActiveWindow,  // Word: Document.ActiveWindow.Hwnd (its Application has no window handle)
  ApplicationHwnd,       // Excel: Application.Hwnd
  ApplicationHWND,       // PowerPoint: Application.HWND
};

// How the document's Saved property answers.
enum class SavedForm {
  VariantBool,  // Word, Excel: VARIANT_TRUE when saved
  TriState,     // PowerPoint: MsoTriState, only msoTrue (-1) is saved
};

// What the document's Close takes to say whether changes are saved.
enum class CloseForm {
  WordSaveChanges,   // SaveChanges as a number: -1 save, 0 don't, -2 prompt; two further optional arguments
  ExcelSaveChanges,  // SaveChanges as a boolean (missing: Excel asks); two further optional arguments
  NoArguments,       // PowerPoint: Close never asks
};

struct HostProfile {
  OfficeHost host;
  const wchar_t* logWord;  // "document", "workbook", "presentation"
  IID applicationInterface;
  IID documentInterface;
  IID applicationEvents;
  const wchar_t* activeDocumentMember;  // ActiveDocument, ActiveWorkbook, ActivePresentation
  const wchar_t* documentsMember;       // Documents, Workbooks, Presentations
  HostWindowSource windowSource;
  SavedForm savedForm;
  CloseForm closeForm;
  // Application.Quit after the add-in closed the last document: how many
  // optional arguments it is given, or -1 when the host is never told to quit.
  int quitArguments;
  // The path separator comes from Application.PathSeparator, or is "\".
  bool askPathSeparator;
};

// The row of a host, or null for OfficeHost::None.
const HostProfile* ProfileOf(OfficeHost host);
// The row of the running host, or null when no host we serve is running.
const HostProfile* CurrentHostProfile();
