#pragma once
// "immediatelyUpdateEvent": a named, manual-reset event shared by every
// Office process of the logon. The connection creates it, the document
// routines set it when a new document needs the sync app's word at once,
// and the update thread waits on it between cycles and resets it.
#include "common/unique_resource.h"

extern UniqueHandle ImmediateUpdateEvent;
