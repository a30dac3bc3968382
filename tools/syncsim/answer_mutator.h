#pragma once
// Hostile answers for fault runs: each answer the scenario gives is bent at
// random (bytes flipped, cut short, keys repeated, huge values, NULs, stray
// braces and quotes, garbage), the same seed giving the same answers, so a
// run that finds a fault can be played again.
#include <cstdint>
#include <random>
#include <string>

class AnswerMutator {
 public:
  explicit AnswerMutator(std::uint32_t seed) : random_(seed) {}

  // The answer bent in one or more ways; `what` names the ways taken
  // ("flip,cut"), for syncsim's output.
  std::wstring Mutate(const std::wstring& answer, std::string& what);

 private:
  std::size_t Below(std::size_t limit);  // 0 .. limit-1; 0 when limit is 0
  std::size_t Copies(std::size_t most, std::size_t units);
  wchar_t HostileUnit();
  std::mt19937 random_;
};
