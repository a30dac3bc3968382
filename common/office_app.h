#pragma once

// Which Office host loaded this copy of the add-in. Set once by the
// connection, before the update thread starts, and only read afterwards.
enum class OfficeHost : int { None = 0, Word = 1, Excel = 2, PowerPoint = 3 };

extern OfficeHost OfficeApp;
