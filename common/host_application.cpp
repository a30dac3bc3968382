#include "common/host_application.h"

ComPtr<IDispatch> HostApplication;
