// Temporary: the cycle and the cache's last request join here with the
// sync-app link.
#include "synclink/cache_shutdown.h"
#include "synclink/update_cycle.h"

void RunUpdateCycle() {}
void EmptyCacheAtDisconnection() {}
