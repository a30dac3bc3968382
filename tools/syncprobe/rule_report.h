#pragma once
// The probe's output: one line per rule, "PASS <rule>: <what it saw>" or
// "FAIL <rule>: <what it saw>", and a closing "N passed, N failed". A rule
// that cannot be judged because one it builds on did not pass is printed
// as "SKIP", so a builder sees the first cause, not its echoes.
#include <initializer_list>
#include <set>
#include <string>

class RuleReport {
 public:
  void Pass(const char* rule, const std::wstring& seen);
  void Fail(const char* rule, const std::wstring& seen);
  void Judge(const char* rule, bool ok, const std::wstring& seen) { ok ? Pass(rule, seen) : Fail(rule, seen); }
  // True when every rule in `needs` passed; otherwise prints the SKIP line.
  bool Ready(const char* rule, std::initializer_list<const char*> needs);
  // Prints the closing line; the process's exit code (1 when a rule failed).
  int Finish() const;

 private:
  std::set<std::string> passed_;
  int passCount_ = 0;
  int failCount_ = 0;
};
