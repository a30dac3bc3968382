#pragma once
#include <string>

// Which Office program this copy of the simulator plays, from its own
// executable name, the way the add-in's host sees it.
enum class SimHost { Word, Excel, PowerPoint, Outlook, Unknown };

SimHost HostFromExecutableName(const std::wstring& exePath);
// "Word", "Excel", "PowerPoint", "Outlook": the folder name under
// Software\Microsoft\Office that lists the host's add-ins.
const wchar_t* OfficeRegistryName(SimHost host);
// The class name and title of the host's main window.
const wchar_t* MainWindowClass(SimHost host);
const wchar_t* MainWindowTitle(SimHost host);
