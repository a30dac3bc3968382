#include "tools/syncprobe/probe_run.h"

#include <cstdio>
#include <cwchar>

#include "common/office_app.h"
#include "common/text.h"
#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/file_status_cache.h"
#include "synclink/sync_app_pipe.h"
#include "synclink/update_cycle.h"
#include "tools/syncprobe/answer_rules.h"
#include "tools/syncprobe/answer_shape.h"
#include "tools/syncprobe/raw_exchange.h"
#include "tools/syncprobe/rule_report.h"
#include "tools/syncprobe/server_identity.h"

namespace {
// The strictest bound the add-in puts on an exchange: Office's UI thread
// (a closing document, a panel's button) waits no longer than this.
const ExchangeLimits kLimits{kUiExchangeBounds.limitMs, 5000};
// How long a second request on the same connection is given to be answered.
constexpr DWORD kSecondAnswerWaitMs = 1000;

std::wstring Ms(DWORD ms) { return std::to_wstring(ms) + L" ms"; }

std::wstring ErrorText(DWORD error) {
  std::wstring text = L"error " + std::to_wstring(error);
  switch (error) {
    case ERROR_FILE_NOT_FOUND: return text + L", no such pipe: is the sync app running?";
    case ERROR_SEM_TIMEOUT: return text + L", no instance became free";
    case ERROR_PIPE_BUSY: return text + L", every instance busy";
    case ERROR_INVALID_PARAMETER: return text + L", message-read mode refused: a byte pipe";
    case ERROR_BROKEN_PIPE: return text + L", the server closed the connection";
    case ERROR_PIPE_NOT_CONNECTED: return text + L", the server disconnected";
    case ERROR_NO_DATA: return text + L", the server is closing the pipe";
    case WAIT_TIMEOUT: return text + L", timed out";
    default: return text;
  }
}

// What the add-in makes of the answer message: the first unit is dropped
// when it is the expected U+FEFF (a missing one is reported by its own
// rule, so the rest is still judged as the sync app meant it), and the
// text ends at the first NUL unit.
std::wstring AnswerText(const std::wstring& message) {
  std::wstring text = !message.empty() && message[0] == 0xFEFF ? message.substr(1) : message;
  const size_t nul = text.find(L'\0');
  if (nul != std::wstring::npos) text.resize(nul);
  return text;
}

// For the later exchanges: answered in time with a framed answer, or what
// went wrong first.
bool Answered(const RawExchange& exchange, std::wstring& seen) {
  if (exchange.openError != 0) {
    seen = L"the pipe did not open (" + ErrorText(exchange.openError) + L")";
  } else if (exchange.modeError != 0) {
    seen = L"message-read mode refused (" + ErrorText(exchange.modeError) + L")";
  } else if (exchange.writeError != 0) {
    seen = L"the request could not be written (" + ErrorText(exchange.writeError) + L")";
  } else if (exchange.readError != 0) {
    seen = L"no whole answer (" + ErrorText(exchange.readError) + L") after " + Ms(exchange.elapsedMs);
  } else if (!CheckAnswerShape(AnswerText(exchange.message)).framed) {
    seen = L"an answer without the frame: \u2026" + Excerpt(AnswerText(exchange.message), 0) + L"\u2026";
  } else {
    seen = L"answered in " + Ms(exchange.elapsedMs);
    return true;
  }
  return false;
}
}  // namespace

int RunProbe(const ProbeOptions& options) {
  RuleReport report;
  // The requests come from the add-in's own cache and builder, as Word's
  // copy of the add-in would send them.
  OfficeApp = OfficeHost::Word;
  FileStatusCache cache;
  for (const std::wstring& path : options.files) cache.AddFile(path, nullptr, 0, nullptr);
  const std::wstring request = cache.BuildRequest(L"", false);

  RawExchange first = ExchangeRaw(options.pipeName, request, kLimits);
  if (first.openError == 0) {
    report.Pass("pipe-open", L"opened " + options.pipeName + L" after " + Ms(first.elapsedMs));
  } else {
    report.Fail("pipe-open", L"could not open " + options.pipeName + L" within " + Ms(kLimits.totalMs) + L" (" +
                                 ErrorText(first.openError) + L")");
  }

  if (report.Ready("server-user", {"pipe-open"})) {
    const IdentityCheck user = CheckServerUser(first.pipe.get());
    if (user.outcome == IdentityCheck::Outcome::Unknown) {
      std::printf("SKIP server-user: not checked here: %s\n", ToUtf8(user.seen).c_str());
    } else {
      report.Judge("server-user", user.outcome == IdentityCheck::Outcome::Same, user.seen);
    }
  }
  if (report.Ready("server-session", {"pipe-open"})) {
    const IdentityCheck session = CheckServerSession(first.pipe.get());
    if (session.outcome == IdentityCheck::Outcome::Unknown) {
      std::printf("SKIP server-session: not checked here: %s\n", ToUtf8(session.seen).c_str());
    } else {
      report.Judge("server-session", session.outcome == IdentityCheck::Outcome::Same, session.seen);
    }
  }

  if (report.Ready("message-mode", {"pipe-open"})) {
    if (first.modeError != 0) {
      report.Fail("message-mode", L"SetNamedPipeHandleState(PIPE_READMODE_MESSAGE) failed (" +
                                      ErrorText(first.modeError) + L"): the add-in gives up the exchange");
    } else {
      report.Judge("message-mode", first.messagePipe,
                   first.messagePipe ? L"a message pipe; message-read mode accepted"
                                     : L"message-read mode accepted, but the pipe is not of the message type");
    }
  }

  if (report.Ready("answer-time", {"message-mode"})) {
    const bool late = first.writeError == WAIT_TIMEOUT || first.readError == WAIT_TIMEOUT;
    report.Judge("answer-time", !late,
                 late ? L"nothing within " + Ms(kLimits.totalMs) +
                            L": the add-in gives up there on Office's UI thread (and after " +
                            Ms(kUpdateExchangeLimitMs) + L" on its update thread)"
                      : L"the exchange took " + Ms(first.elapsedMs) + L" (the add-in waits at most " +
                            Ms(kLimits.totalMs) + L" on Office's UI thread)");
  }

  if (report.Ready("answer-delivered", {"answer-time"})) {
    if (first.writeError != 0) {
      report.Fail("answer-delivered", L"the request could not be written (" + ErrorText(first.writeError) + L")");
    } else if (first.readError != 0) {
      report.Fail("answer-delivered", L"the read failed (" + ErrorText(first.readError) + L") after " +
                                          std::to_wstring(first.message.size() * 2) +
                                          L" bytes: the add-in discards the whole exchange");
    } else if (first.message.empty()) {
      report.Fail("answer-delivered", L"an empty message");
    } else {
      report.Pass("answer-delivered", L"one message of " + std::to_wstring(first.message.size() * 2) + L" bytes in " +
                                          std::to_wstring(first.chunks) + L" read(s) of 8192 bytes");
    }
  }

  const std::wstring text = AnswerText(first.message);
  if (report.Ready("leading-unit", {"answer-delivered"})) {
    wchar_t hex[16];
    swprintf(hex, 16, L"U+%04X", static_cast<unsigned>(first.message[0]));
    report.Judge("leading-unit", first.message[0] == 0xFEFF,
                 first.message[0] == 0xFEFF
                     ? std::wstring(L"the answer starts with U+FEFF, which the add-in drops")
                     : L"the answer starts with " + std::wstring(hex) +
                           L", not U+FEFF: the add-in drops the first unit unseen, so it loses this one");
  }

  const AnswerShape shape = CheckAnswerShape(text);
  if (report.Ready("answer-frame", {"answer-delivered"})) {
    report.Judge("answer-frame", shape.framed,
                 shape.framed ? std::wstring(L"starts with {\"resp\":[ and ends with }")
                              : L"\u2026" + Excerpt(text, 0) + L"\u2026 does not start with {\"resp\":[ and end with }"
                                    L": the add-in reads no file from it");
  }
  if (report.Ready("answer-shape", {"answer-frame"})) {
    report.Judge("answer-shape", shape.shapeProblem.empty(),
                 shape.shapeProblem.empty()
                     ? std::to_wstring(shape.objects) + L" object(s), " + std::to_wstring(shape.members) +
                           L" member(s), no blanks between tokens, nothing inside a value that ends it"
                     : shape.shapeProblem + L": the add-in loses members from there on");
  }
  if (report.Ready("quoted-values", {"answer-frame"})) {
    report.Judge("quoted-values", shape.unquotedValue.empty(),
                 shape.unquotedValue.empty()
                     ? std::wstring(L"every value a quoted string, booleans included")
                     : shape.unquotedValue + L" is not quoted: the add-in reads only quoted values "
                                             L"(this one becomes whatever stands between the next quotes)");
  }

  const std::vector<AnswerObject> objects = ParseAnswer(text);
  // As the add-in's update thread does: the answer goes into the records,
  // so the later requests carry the identifiers the sync app gave.
  ApplyAnswer(cache, objects);
  if (report.Ready("field-values", {"answer-shape", "quoted-values"})) {
    const Judgement judgement = JudgeFieldValues(objects);
    report.Judge("field-values", judgement.ok, judgement.seen);
  }
  if (report.Ready("files-answered", {"answer-shape", "quoted-values"})) {
    const Judgement judgement = JudgeFilesAnswered(objects, options.files);
    report.Judge("files-answered", judgement.ok, judgement.seen);
  }

  if (report.Ready("one-exchange-per-connection", {"answer-delivered"})) {
    std::wstring seen;
    const bool more = SecondAnswerArrives(first.pipe.get(), request, kSecondAnswerWaitMs, seen);
    report.Judge("one-exchange-per-connection", !more,
                 more ? seen + L": the add-in sends one request per connection and reads one answer"
                      : L"one answer, then nothing more: " + seen);
  }
  first.pipe.reset();

  // The user hides the overlay of the first file: that request carries
  // "uiHide":true and is sent from Office's UI thread.
  const std::wstring& hiddenPath = options.files.front();
  if (report.Ready("hidden-overlay", {"answer-frame"})) {
    cache.Change(hiddenPath, [](FileStatusRecord& record) { record.choices.Set(UserChoice::uiHide); });
    const RawExchange hidden = ExchangeRaw(options.pipeName, cache.BuildRequest(hiddenPath, true), kLimits);
    std::wstring seen;
    const bool ok = Answered(hidden, seen);
    report.Judge("hidden-overlay", ok, L"a request with \"uiHide\":true: " + seen);
  }

  // The user closes the first file: its last request says "isOpen":false,
  // sent while Office waits to close the document; the next cycle then
  // asks about the other files only.
  if (report.Ready("closed-file", {"answer-frame"})) {
    const RawExchange closing = ExchangeRaw(options.pipeName, cache.CloseRecord(hiddenPath), kLimits);
    std::wstring seen;
    bool ok = Answered(closing, seen);
    std::wstring result = L"a request with \"isOpen\":false: " + seen;
    if (ok) {
      const RawExchange next = ExchangeRaw(options.pipeName, cache.BuildRequest(L"", false), kLimits);
      ok = Answered(next, seen);
      result += L"; the next request, without that file: " + seen;
    }
    report.Judge("closed-file", ok, result);
  }

  // The sync app must not be left believing the other made-up documents
  // are still open in Word: each gets its closing request, as when the
  // user closes it. Not a rule; a failure here was reported above.
  if (first.openError == 0) {
    for (size_t i = 1; i < options.files.size(); ++i) {
      const std::wstring closing = cache.CloseRecord(options.files[i]);
      if (!closing.empty()) ExchangeRaw(options.pipeName, closing, kLimits);
    }
  }
  return report.Finish();
}
