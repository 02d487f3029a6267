#!/usr/bin/env bash
# The test suite again under sanitizers, each in a build of its own:
#   build-asan  every test under AddressSanitizer (with LeakSanitizer) and UndefinedBehaviorSanitizer
#   build-tsan  the threaded parts under ThreadSanitizer: the link, the virtual instrument, the
#               faults and the end-to-end runs over a JACK server
# Any finding fails the test that made it. Suppressions, each with its reason, are in
# tests/sanitizers/.
set -euo pipefail
cd "$(dirname "$0")/.."
supp="$PWD/tests/sanitizers"

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1"
export LSAN_OPTIONS="suppressions=$supp/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:suppressions=$supp/ubsan.supp"
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1:suppressions=$supp/tsan.supp"

echo "== AddressSanitizer + UndefinedBehaviorSanitizer: every test"
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSIVO_SANITIZE=address,undefined
cmake --build build-asan
ctest --test-dir build-asan --output-on-failure --timeout 600

echo "== ThreadSanitizer: the link, the virtual instrument, the faults, the runs over JACK"
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSIVO_SANITIZE=thread
# The Qt forms run on one thread and are not built here. libjack's ring buffer and the order of
# the JACK clients' cycles are made visible to the sanitizer by tests/sanitizers/jack_ringbuffer_tsan.cpp,
# linked into every program of this build.
cmake --build build-tsan --target core_tests faults_tests jack_ring_tests virtual-cs2x e2e_jack_tests \
  e2e_jack_gone_tests faults_jack_gone_tests faults_flood_tests
ctest --test-dir build-tsan --output-on-failure --timeout 600 -E '^(qt_|package$)'
