#pragma once
// Asks Windows who serves the pipe at the other end of a connection, and
// refuses a server that is not the user's own process in the user's own
// session.
#include <windows.h>

#include <functional>

#include "synclink/pipe_server_trust.h"

// Fills `facts` for the connection `pipe` from the system. False, with one
// "couldn't check the sync app's pipe: ..." Error line, when a question
// went unanswered.
bool ReadPipeServerFacts(HANDLE pipe, PipeServerFacts& facts);

// True when the server may be told anything; otherwise one Error line
// says what did not match (or could not be asked) and nothing is to be
// written to the pipe.
bool PipeServerIsTrusted(HANDLE pipe);

// Tests only: stands in for ReadPipeServerFacts (empty: the real one), so a
// server of another user or session can be played on a machine with one
// user.
void ReplacePipeServerFactsReader(std::function<bool(HANDLE, PipeServerFacts&)> reader);
