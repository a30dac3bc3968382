#pragma once
// The answer scanner written the plain way, step by step as the protocol
// describes it: find the quote, find the quote before a colon, cut the text.
// Slow, but easy to check by eye; the fast reader must give exactly what it
// gives (the same maps and the same trace lines) for any text.
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct ReferenceReading {
  std::vector<std::map<std::wstring, std::wstring>> objects;
  std::vector<std::wstring> traceLines;
};

inline ReferenceReading ReferenceScan(std::wstring_view text) {
  constexpr auto npos = std::wstring_view::npos;
  ReferenceReading reading;
  auto between = [](std::wstring_view piece, size_t open, size_t close) {
    return close <= open ? std::wstring() : std::wstring(piece.substr(open + 1, close - open - 1));
  };
  if (text.empty() || text.find(L'{') != 0 || text.rfind(L'}') != text.size() - 1 ||
      text.substr(0, 9) != L"{\"resp\":[") {
    reading.traceLines.push_back(L"Data mismatch while converting into json");
    return reading;
  }
  reading.traceLines.push_back(L"No data mismatch while converting into json");
  size_t position = text.find(L'[') + 1;
  for (;;) {
    const size_t open = text.find(L'{', position);
    const size_t close = open == npos ? npos : text.find(L'}', open);
    if (open == npos || close == npos) break;
    const std::wstring_view object = text.substr(open, close - open + 1);
    reading.traceLines.emplace_back(object);
    std::map<std::wstring, std::wstring> members;
    size_t cursor = 0;
    for (;;) {
      const size_t keyOpen = object.find(L'"', cursor);
      const size_t keyClose = object.find(L"\":", cursor);
      if (keyOpen == npos || keyClose == npos) break;
      const std::wstring key = between(object, keyOpen, keyClose);
      reading.traceLines.push_back(key);
      cursor = keyClose + 1;
      const size_t valueOpen = object.find(L'"', cursor);
      size_t valueClose = object.find(L"\",", cursor);
      if (valueClose == npos) valueClose = object.find(L"\"}", cursor);
      if (valueOpen == npos || valueClose == npos) break;
      const std::wstring value = between(object, valueOpen, valueClose);
      reading.traceLines.push_back(value);
      members[key] = value;
      cursor = valueClose + 1;
    }
    reading.objects.push_back(members);
    position = close + 2;
  }
  reading.traceLines.push_back(L"converted into json");
  return reading;
}
