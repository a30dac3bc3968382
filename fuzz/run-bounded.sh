#!/usr/bin/env bash
# Runs one libFuzzer target for a bounded time, as a test. New inputs go to a
# working corpus in the build tree; the committed seeds are only read. A
# crash, a failed check, a slow input or a memory blow-up fails the run and
# leaves the input in the artifacts folder.
#   run-bounded.sh FUZZER WORK_DIR SEED_DIR DICTIONARY SECONDS
set -eu
fuzzer=$1 work=$2 seeds=$3 dict=$4 seconds=$5
mkdir -p "$work/corpus" "$work/artifacts"
# Up to 32768 UTF-16 units, far beyond a real answer for a handful of open
# documents, so a scan that grows faster than the text shows up as a slow unit.
exec "$fuzzer" -max_total_time="$seconds" -max_len=65536 -timeout=10 -rss_limit_mb=2048 \
  -dict="$dict" -artifact_prefix="$work/artifacts/" -print_final_stats=1 \
  "$work/corpus" "$seeds"
