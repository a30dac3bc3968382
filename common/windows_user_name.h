#pragma once
// The logon name of the user running the host. The sync app's pipe is
// named after it and the separate copies of documents carry it.
#include <string>

// Asked of Windows once per process (empty when Windows would not say).
const std::wstring& WindowsUserName();

// How many times the name was asked of Windows (tests).
int WindowsUserNameQueries();
