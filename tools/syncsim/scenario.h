#pragma once
// What the simulated sync app knows about each file, and how that changes
// as requests come in. The file format is described in docs/syncsim.md.
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/syncsim/request_reader.h"

class Scenario {
 public:
  // Reads a scenario from UTF-8 text; false with a message naming the line
  // when a line makes no sense.
  bool Load(const std::string& utf8Text, std::wstring& error);

  // Notes the flags the request carries, then writes the answer text (without
  // the leading unit) for the `requestNumber`-th request, counted from 1:
  // one object per requested file that the scenario knows, in request order.
  std::wstring Answer(const std::vector<RequestedFile>& files, long requestNumber);

  // Extra "pad" member of this many units in every object, for large answers.
  void SetPadding(size_t units) { padUnits_ = units; }

 private:
  struct Change {
    enum class Kind { Set, SetRaw, Unset } kind = Kind::Set;
    std::wstring key;
    std::wstring value;
  };
  struct Stage {
    enum class Trigger { Always, AfterRequests, WhenFlag } trigger = Trigger::Always;
    long afterRequests = 0;
    std::wstring flag;
    std::vector<Change> changes;
  };
  struct File {
    std::wstring path;
    std::vector<Stage> stages;
    std::set<std::wstring> flagsSeen;  // flags that some request carried as true
  };

  File* FindFile(const std::wstring& path);
  std::wstring ObjectFor(const File& file, const std::wstring& path, long requestNumber) const;

  std::vector<File> files_;
  bool reportUnknownFiles_ = false;
  size_t padUnits_ = 0;
};
