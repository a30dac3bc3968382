#include "log/thread_names.h"

#include <map>

#include "log/log_line.h"

namespace {
std::map<std::uint32_t, std::wstring>& ThreadNameRegistry() {
  static auto* registry = new std::map<std::uint32_t, std::wstring>();  // lives until process end
  return *registry;
}
}  // namespace

void NameThread(std::uint32_t threadId, const std::wstring& name) { ThreadNameRegistry()[threadId] = name; }

std::wstring ThreadName(std::uint32_t threadId) {
  const auto& registry = ThreadNameRegistry();
  const auto found = registry.find(threadId);
  return found == registry.end() ? std::wstring(kUnnamedThread) : found->second;
}
