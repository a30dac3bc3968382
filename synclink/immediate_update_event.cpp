#include "synclink/immediate_update_event.h"

UniqueHandle ImmediateUpdateEvent;
