#pragma once

// One cycle of the update thread: report every open file to the sync app
// and write its answer into the cache.
void RunUpdateCycle();
