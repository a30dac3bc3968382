#include "tools/syncprobe/answer_shape.h"

namespace {
constexpr std::wstring_view kFrameStart = L"{\"resp\":[";

std::wstring Printable(std::wstring_view text) {
  std::wstring out;
  for (wchar_t unit : text) {
    if (unit < 0x20 || unit == 0x7F) {
      wchar_t hex[8];
      const wchar_t* digits = L"0123456789ABCDEF";
      hex[0] = L'\\';
      hex[1] = L'x';
      hex[2] = digits[(unit >> 4) & 0xF];
      hex[3] = digits[unit & 0xF];
      out.append(hex, 4);
    } else {
      out += unit;
    }
  }
  return out;
}

class Walker {
 public:
  Walker(std::wstring_view text, AnswerShape& shape) : text_(text), shape_(shape) {}

  void Run() {
    pos_ = kFrameStart.size();
    if (At(L']')) {
      ++pos_;
      ExpectEnd();
      return;
    }
    for (;;) {
      if (!Object()) return;
      if (At(L',')) {
        ++pos_;
        continue;
      }
      if (At(L']')) {
        ++pos_;
        ExpectEnd();
        return;
      }
      Problem(L"expected \",\" or \"]\" after an object");
      return;
    }
  }

 private:
  bool At(wchar_t unit) const { return pos_ < text_.size() && text_[pos_] == unit; }

  void Problem(const std::wstring& what) {
    if (!shape_.shapeProblem.empty()) return;
    shape_.shapeProblem = what + L" at unit " + std::to_wstring(pos_) + L": \u2026" + Excerpt(text_, pos_) + L"\u2026";
  }

  void ExpectEnd() {
    if (At(L'}') && pos_ + 1 == text_.size()) return;
    Problem(L"expected \"}\" to end the answer");
  }

  // A quoted text; false (with the problem noted) when it is not closed.
  bool Quoted(std::wstring& out) {
    const size_t close = text_.find(L'"', pos_ + 1);
    if (close == std::wstring_view::npos) {
      Problem(L"a quoted text that is never closed");
      return false;
    }
    out.assign(text_.substr(pos_ + 1, close - pos_ - 1));
    pos_ = close + 1;
    return true;
  }

  bool Object() {
    if (!At(L'{')) {
      Problem(L"expected \"{\" to start an object");
      return false;
    }
    ++pos_;
    ++shape_.objects;
    for (;;) {
      if (!At(L'"')) {
        Problem(L"expected a quoted key");
        return false;
      }
      std::wstring key;
      if (!Quoted(key)) return false;
      if (!At(L':')) {
        Problem(L"expected \":\" right after the key \"" + key + L"\"");
        return false;
      }
      ++pos_;
      ++shape_.members;
      if (At(L'"')) {
        const size_t valueStart = pos_;
        std::wstring value;
        if (!Quoted(value)) return false;
        // The add-in's scanner ends an object at its first "}", even inside
        // a value.
        if (value.find(L'}') != std::wstring::npos) {
          pos_ = valueStart;
          Problem(L"a \"}\" inside the value of \"" + key + L"\" (the add-in's reader ends the object there)");
          return false;
        }
      } else {
        // Unquoted: note it and step over it to go on checking the rest.
        const size_t valueStart = pos_;
        while (pos_ < text_.size() && text_[pos_] != L',' && text_[pos_] != L'}') ++pos_;
        if (shape_.unquotedValue.empty()) {
          shape_.unquotedValue = L"\"" + key + L"\":" + Printable(text_.substr(valueStart, pos_ - valueStart));
        }
      }
      if (At(L',')) {
        ++pos_;
        continue;
      }
      if (At(L'}')) {
        ++pos_;
        return true;
      }
      Problem(L"expected \",\" or \"}\" after the value of \"" + key + L"\"");
      return false;
    }
  }

  std::wstring_view text_;
  AnswerShape& shape_;
  size_t pos_ = 0;
};
}  // namespace

std::wstring Excerpt(std::wstring_view text, size_t position, size_t length) {
  const size_t start = position > length / 2 ? position - length / 2 : 0;
  return Printable(text.substr(start < text.size() ? start : text.size(), length));
}

AnswerShape CheckAnswerShape(std::wstring_view text) {
  AnswerShape shape;
  // The same three checks as the add-in's reader: "{" first, "}" last,
  // "{"resp":[" at the start.
  shape.framed = !text.empty() && text.front() == L'{' && text.back() == L'}' &&
                 text.substr(0, kFrameStart.size()) == kFrameStart;
  if (!shape.framed) return shape;
  Walker(text, shape).Run();
  return shape;
}
