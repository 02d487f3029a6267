#!/usr/bin/env bash
# The long run: each fuzz target to 10 million inputs (or FUZZ_LONG_SECONDS, whichever comes
# first), niced so other work keeps the machine, FUZZ_LONG_JOBS targets at a time. Prints a
# table per target: inputs run, seconds, inputs a second, findings; each row also goes to
# <build>/long/results.txt the moment its target ends. Builds the targets first (as
# scripts/fuzz-brief.sh does) unless FUZZ_LONG_NOBUILD=1.
#
#   bash tools/fuzz-long.sh                       every target
#   FUZZ_LONG_SECONDS=600 bash tools/fuzz-long.sh fuzz_thru fuzz_retrieve
set -uo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$(cd "$here/.." && pwd)"
build="${FUZZ_BUILD:-$root/build-fuzz}"
runs="${FUZZ_LONG_RUNS:-10000000}"
seconds="${FUZZ_LONG_SECONDS:-0}"  # 0: no time limit
jobs="${FUZZ_LONG_JOBS:-1}"

source "$root/fuzz/targets.sh"
if [ "$#" -gt 0 ]; then TARGETS=("$@"); fi

if [ "${FUZZ_LONG_NOBUILD:-0}" != 1 ]; then
  CC=clang CXX=clang++ cmake -S "$root/fuzz" -B "$build" -G Ninja >/dev/null || exit 1
  nice -n 19 cmake --build "$build" || exit 1
  rm -rf "$build/seeds" && "$build/make_seeds" "$build/seeds" >/dev/null || exit 1
fi
out="$build/long"
mkdir -p "$out"
tmp="/dev/shm"; [ -d "$tmp" ] && [ -w "$tmp" ] || tmp="${TMPDIR:-/tmp}"  # a listing's save syncs its file
scratch="$(mktemp -d "$tmp/tessivo-fuzz-long.XXXXXX")"
trap 'rm -rf "$scratch"' EXIT
results="$out/results.txt"
header="$(printf '%-24s %12s %9s %9s %9s' target inputs seconds exec/s findings)"
echo "$header" >"$results"

run_one() {
  local t="$1" corpus="$build/corpus/$1" log="$out/$1.log"
  mkdir -p "$corpus"
  local dirs=("$corpus" "$build/seeds/$t")
  [ -d "$root/fuzz/corpus/$t" ] && dirs+=("$root/fuzz/corpus/$t")
  local start end rc
  rm -f "$out/$t-"*  # what an earlier long run found stays in the corpus, not here
  start=$(date +%s)
  TMPDIR="$scratch" nice -n 19 "$build/$t" -runs="$runs" -max_total_time="$seconds" -max_len="$(max_len_of "$t")" \
    -timeout=60 -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$out/$t-" "${dirs[@]}" >"$log" 2>&1
  rc=$?
  end=$(date +%s)
  local inputs findings
  inputs="$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)"
  inputs="${inputs:-?}"
  # Crashes, leaks, timeouts and memory blow-ups; a slow unit (a run starved by other work on
  # the machine) is kept beside them but is no finding.
  findings="$(find "$out" -maxdepth 1 \( -name "$t-crash-*" -o -name "$t-leak-*" -o -name "$t-timeout-*" -o -name "$t-oom-*" \) 2>/dev/null | wc -l)"
  [ "$rc" -ne 0 ] && [ "$findings" -eq 0 ] && findings=1
  local secs=$((end - start)) rate="?"
  [ "$inputs" != "?" ] && [ "$secs" -gt 0 ] && rate=$((inputs / secs))
  printf '%-24s %12s %9s %9s %9s\n' "$t" "$inputs" "$secs" "$rate" "$findings" >>"$results"
}

pids=()
for t in "${TARGETS[@]}"; do
  run_one "$t" &
  pids+=($!)
  if [ "${#pids[@]}" -ge "$jobs" ]; then
    wait "${pids[0]}"
    pids=("${pids[@]:1}")
  fi
done
for p in "${pids[@]}"; do wait "$p"; done

cat "$results"
! awk 'NR > 1 && $5 != 0 { bad = 1 } END { exit !bad }' "$results"
