#pragma once
#include <string>

// %APPDATA% expanded once per process.
const std::wstring& AppDataPath();

// Makes "%APPDATA%\QelvoFilewell\logs" if it is missing (only the last
// folder: the sync app owns its parent) and installs a fresh log object.
void InitLogFolder();
