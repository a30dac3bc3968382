#include "common/module_instance.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;

HINSTANCE ModuleInstance() { return reinterpret_cast<HINSTANCE>(&__ImageBase); }
