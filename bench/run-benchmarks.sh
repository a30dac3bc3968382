#!/usr/bin/env bash
# Builds the bench preset and runs the sync-link benchmarks: answer scanning
# and request building in MB/s at 10, 1,000 and 10,000 files, UpdateFile per
# record, and our code beside plain baselines measured in the same run.
# Then prints how the time grows from 1,000 to 10,000 files (about 10 means
# linear growth) and the ratios to the baselines, from the medians of five
# repetitions. Timings depend on the machine and on what else runs on it.
usage() {
  cat <<'USAGE'
usage: bench/run-benchmarks.sh [--smoke] [--help] [extra Google Benchmark options]
  (default)  five repetitions of every benchmark, medians, then growth and baseline ratios
  --smoke    build, then run every benchmark for one short iteration (no figures): what
             scripts/test.sh does so the benchmarks cannot stop building or running unseen
  --help     this text
BENCH_BUILD_DIR chooses the build folder (default build/bench).
USAGE
}
set -eu
smoke=0
case "${1:-}" in
  --help|-h) usage; exit 0 ;;
  --smoke) smoke=1; shift ;;
esac
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
scripts/install-prerequisites.sh
build="${BENCH_BUILD_DIR:-build/bench}"
cmake --preset bench -B "$build" >/dev/null
cmake --build "$build" --target synclink_bench
if [ "$smoke" = 1 ]; then
  "$build/bin/synclink_bench" --benchmark_min_time=0 --benchmark_color=false "$@" >"$build/synclink_bench_smoke.txt"
  # A benchmark that refuses its input (SkipWithError) says so in its row.
  if grep -q "ERROR OCCURRED" "$build/synclink_bench_smoke.txt"; then
    grep "ERROR OCCURRED" "$build/synclink_bench_smoke.txt" >&2
    exit 1
  fi
  echo "synclink_bench: $(grep -c '^BM_' "$build/synclink_bench_smoke.txt") benchmarks ran once each"
  exit 0
fi
results="$build/synclink_bench.txt"
"$build/bin/synclink_bench" --benchmark_color=false --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true "$@" | tee "$results"

# CPU time of one benchmark in nanoseconds from the console table: its
# median when repeated, else its only row.
cpu_ns() {
  awk -v name="$1" '$1 == name "_median" || $1 == name {
    factor = ($5 == "ns") ? 1 : ($5 == "us") ? 1e3 : ($5 == "ms") ? 1e6 : 1e9
    value = $4 * factor; if ($1 == name "_median") { print value; found = 1; exit } }
    END { if (!found && value != "") print value }' "$results"
}
ratio() {  # ratio <text> <numerator benchmark> <denominator benchmark>
  local top bottom
  top=$(cpu_ns "$2") bottom=$(cpu_ns "$3")
  if [ -n "$top" ] && [ -n "$bottom" ]; then
    awk -v t="$1" -v a="$top" -v b="$bottom" 'BEGIN { printf "%s: %.2f\n", t, a / b }'
  fi
}
echo
echo "load average: $(cut -d' ' -f1-3 /proc/loadavg) (medians of five repetitions)"
for benchmark in BM_ParseAnswer BM_BuildRequest; do
  ratio "$benchmark: 10,000 files take this many times as long as 1,000 (10 = linear)" \
    "$benchmark/10000" "$benchmark/1000"
done
ratio "ParseAnswer of a 1,000-file answer / RapidJSON filling the same maps" \
  BM_Baseline_ParseAnswer BM_Baseline_RapidJsonSameAnswer
ratio "BuildRequest for 1,000 files / appending its bytes to a file" \
  BM_Baseline_BuildRequest BM_Baseline_AppendRequestBytes
ratio "a log line (stamp, format, UTF-8, append) / appending its bytes to a file" \
  BM_Baseline_LogLine BM_Baseline_AppendLogLineBytes
