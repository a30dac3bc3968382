#pragma once
#include "tools/officesim/host_kind.h"
#include "tools/officesim/sim_dispatch.h"

// The host's Application object as the add-in sees it through IDispatch.
class SimApplication : public SimDispatch {
 public:
  SimApplication(SimHost host, HWND mainWindow);
  SimHost host() const { return host_; }
  HWND mainWindow() const { return mainWindow_; }

 private:
  SimHost host_;
  HWND mainWindow_;
};
