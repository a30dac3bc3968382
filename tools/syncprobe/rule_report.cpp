#include "tools/syncprobe/rule_report.h"

#include <cstdio>

#include "common/text.h"

void RuleReport::Pass(const char* rule, const std::wstring& seen) {
  passed_.insert(rule);
  ++passCount_;
  std::printf("PASS %s: %s\n", rule, ToUtf8(seen).c_str());
}

void RuleReport::Fail(const char* rule, const std::wstring& seen) {
  ++failCount_;
  std::printf("FAIL %s: %s\n", rule, ToUtf8(seen).c_str());
}

bool RuleReport::Ready(const char* rule, std::initializer_list<const char*> needs) {
  for (const char* need : needs) {
    if (passed_.count(need) == 0) {
      std::printf("SKIP %s: not judged, it needs %s to pass\n", rule, need);
      return false;
    }
  }
  return true;
}

int RuleReport::Finish() const {
  std::printf("%d passed, %d failed\n", passCount_, failCount_);
  return failCount_ == 0 ? 0 : 1;
}
