#pragma once

// Disconnection: destroys every overlay window, sends the sync app a last
// request for all files and empties the cache.
void EmptyCacheAtDisconnection();
