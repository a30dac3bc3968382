#include "addin/connection_state.h"

PVOID VectoredHandlerHandle = nullptr;
std::wstring OfficeAppPath;
