#pragma once
// Who is at the other end of the pipe. Pipe names are one namespace for
// the whole machine, and whoever creates a name first serves it: the
// add-in only trusts a server that runs as the same user, in the same
// logon session.
#include <windows.h>

#include <string>

struct IdentityCheck {
  enum class Outcome { Same, Different, Unknown } outcome = Outcome::Unknown;
  std::wstring seen;
};

IdentityCheck CheckServerUser(HANDLE pipe);
IdentityCheck CheckServerSession(HANDLE pipe);
