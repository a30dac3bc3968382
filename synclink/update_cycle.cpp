#include "synclink/update_cycle.h"

#include <cstdint>
#include <string>
#include <vector>

#include "log/write_log.h"
#include "synclink/answer_apply.h"
#include "synclink/answer_parser.h"
#include "synclink/cache_mutex.h"
#include "synclink/file_status_cache.h"
#include "synclink/undelivered_closes.h"

namespace {
// How many update cycles in a row the sync app may take a request without
// answering before what it said last stops being shown.
constexpr int kSilentCyclesBeforeNoData = 2;
}  // namespace

ExchangeEnd RunUpdateCycle(const ExchangeBounds& bounds) {
  FileStatusCache& cache = TheFileStatusCache();
  SyncAppPipe& pipe = TheSyncAppPipe();
  std::vector<std::uint64_t> carriedCloses;
  ExchangeEnd end = ExchangeEnd::Failed;
  const std::wstring answer = pipe.Exchange(
      [&] {
        // Only while the request is built; a UI exchange waiting for the
        // pipe ends this wait as well.
        UpdateThreadCacheLock lock(bounds.stopEvent, bounds.givesWayToUi ? pipe.GiveWayRequest() : nullptr);
        return cache.BuildUpdateRequest(carriedCloses);
      },
      bounds, &end);
  for (const std::wstring& path : cache.SettleCloses(carriedCloses, AnswerConfirmsRequest(answer))) {
    WriteLog(LogLevel::Info, L"undelivered close now delivered to sync app - " + path);
  }
  switch (end) {
    case ExchangeEnd::Stopped:
      // Disconnection: the cache is about to be emptied.
      return end;
    case ExchangeEnd::GaveWay:
      // Nothing was learnt about the files: what the overlays show stays.
      WriteLog(LogLevel::Info, L"update exchange gave way to the UI thread, shown state kept");
      return end;
    case ExchangeEnd::TimedOut:
      // The sync app took the request and did not answer in time: no word
      // on the files either way, so the overlays keep what they show
      // rather than all vanishing. A sync app that stays silent is another
      // matter: what it said a minute ago may no longer be true (someone
      // may have started editing), so after a second silent cycle in a row
      // nothing it said is shown any more.
      if (++cache.cyclesWithoutAnswer < kSilentCyclesBeforeNoData) {
        WriteLog(LogLevel::Warning, L"no answer from sync app in time, shown state kept");
        return end;
      }
      WriteLog(LogLevel::Warning, L"no answer from sync app in " + std::to_wstring(kSilentCyclesBeforeNoData) +
                                      L" cycles in a row, shown state cleared");
      break;
    case ExchangeEnd::Answered:
    case ExchangeEnd::Failed:
      break;
  }
  // An answer, or the sync app's own failure (no pipe, cut, garbage): that
  // is its word, and "no files" clears what is shown.
  if (end != ExchangeEnd::TimedOut) cache.cyclesWithoutAnswer = 0;
  ApplyAnswer(cache, ParseAnswer(answer));
  return end;
}
