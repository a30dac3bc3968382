#include "synclink/file_status_record.h"

void ResetUserActionFlags(FileStatusRecord& record) { record.choices.ClearPending(); }
