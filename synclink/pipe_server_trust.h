#pragma once
// Whether the process at the other end of the sync app's pipe is the
// user's own sync app. Pipe names are one namespace for the whole machine:
// while the user's sync app is not serving, any process of any user can
// create the name and would otherwise be told every open document's path
// and be believed in every panel it asked for.
#include <cstdint>
#include <string>
#include <vector>

// A security identifier as its bytes (the SID structure, as Windows holds it).
using SidBytes = std::vector<unsigned char>;

// What the system says about both ends of one connection.
struct PipeServerFacts {
  SidBytes ourUser;
  std::uint32_t ourSession = 0;
  // The owner of the pipe object. Empty when the system names none (Wine
  // does not): the server process's user is then what decides.
  SidBytes pipeOwner;
  std::uint32_t serverProcessId = 0;
  SidBytes serverUser;
  std::uint32_t serverSession = 0;
};

enum class PipeServerVerdict {
  Trusted,
  ServerIsAnotherUser,     // the serving process runs as someone else
  ServerInAnotherSession,  // same user, another logon session (another desktop)
  OwnedByAnotherUser,      // the pipe was created under another identity
};

// The first check that fails, in the order above; Trusted when none does.
// Our own user must be known: an empty one trusts nobody.
PipeServerVerdict JudgePipeServer(const PipeServerFacts& facts);

// The Error line for a verdict other than Trusted:
// "couldn't trust the sync app's pipe: <what did not match> - <details>".
std::wstring DistrustText(PipeServerVerdict verdict, const PipeServerFacts& facts);

// "S-1-5-21-1-2-3-1001"; "(malformed SID)" for bytes that are no SID.
std::wstring SidText(const SidBytes& sid);

// "\\.\pipe\FilewellSync-MSOfficeIntegration-" + the user's logon name;
// empty when the name is unknown: a pipe without the user's name in it
// belongs to nobody in particular, and the add-in does not open it.
std::wstring SyncAppPipeNameFor(const std::wstring& userName);
