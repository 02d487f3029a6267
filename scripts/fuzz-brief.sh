#!/usr/bin/env bash
# Builds the libFuzzer targets (fuzz/) with clang and runs each one briefly on its seed corpus:
# the seeds the program's own writers make, the committed corpus under fuzz/corpus/, and what
# earlier runs kept. Exits non-zero on any finding; the input that broke a promise is left in
# the build folder's findings/ as <target>-crash-*.
#
#   bash scripts/fuzz-brief.sh            15 s a target, two at a time
#   FUZZ_SECONDS=60 bash scripts/fuzz-brief.sh
#
# Needs clang and libclang-rt-14-dev (and the core's librtmidi-dev, libjack-jackd2-dev,
# libgtest-dev, ninja-build); it installs nothing itself.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
root="$(cd "$here/.." && pwd)"
build="${FUZZ_BUILD:-$root/build-fuzz}"
seconds="${FUZZ_SECONDS:-15}"
jobs="${FUZZ_JOBS:-2}"

source "$root/fuzz/targets.sh"  # TARGETS and max_len_of

CC=clang CXX=clang++ cmake -S "$root/fuzz" -B "$build" -G Ninja >/dev/null
cmake --build "$build"

# Seeds from the program's writers, then the working corpus: seeds, committed files, and
# whatever earlier runs found (the committed corpus itself is never written to).
rm -rf "$build/seeds"
"$build/make_seeds" "$build/seeds" >/dev/null
rm -rf "$build/findings" && mkdir -p "$build/findings"  # this run's findings alone
tmp="/dev/shm"; [ -d "$tmp" ] && [ -w "$tmp" ] || tmp="${TMPDIR:-/tmp}"  # a listing's save syncs its file
scratch="$(mktemp -d "$tmp/tessivo-fuzz.XXXXXX")"
trap 'rm -rf "$scratch"' EXIT

run_one() {
  local t="$1" corpus="$build/corpus/$1" log="$build/findings/$1.log"
  mkdir -p "$corpus"
  local dirs=("$corpus" "$build/seeds/$t")
  [ -d "$root/fuzz/corpus/$t" ] && dirs+=("$root/fuzz/corpus/$t")
  if TMPDIR="$scratch" "$build/$t" -max_total_time="$seconds" -max_len="$(max_len_of "$t")" -timeout=20 \
      -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$build/findings/$t-" "${dirs[@]}" >"$log" 2>&1; then
    printf '%-24s %10s inputs  ok\n' "$t" "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
  else
    printf '%-24s FINDING, see %s\n' "$t" "$log"
    grep -m3 -E 'broken promise|ERROR: |runtime error' "$log" | sed 's/^/    /'
    return 1
  fi
}

failed=0
pids=()
names=()
for t in "${TARGETS[@]}"; do
  run_one "$t" &
  pids+=($!)
  names+=("$t")
  if [ "${#pids[@]}" -ge "$jobs" ]; then
    wait "${pids[0]}" || failed=1
    pids=("${pids[@]:1}")
    names=("${names[@]:1}")
  fi
done
for p in "${pids[@]}"; do wait "$p" || failed=1; done

if [ "$failed" -ne 0 ]; then
  echo "fuzz-brief: findings (inputs in $build/findings/)"
  exit 1
fi
echo "fuzz-brief: ${#TARGETS[@]} targets, no finding"
