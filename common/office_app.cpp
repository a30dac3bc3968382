#include "common/office_app.h"

OfficeHost OfficeApp = OfficeHost::None;
