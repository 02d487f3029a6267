#!/usr/bin/env bash
# The test suite again under sanitizers, each in a build of its own:
#   build-asan  every test under AddressSanitizer (with LeakSanitizer) and UndefinedBehaviorSanitizer
#   build-tsan  the threaded parts under ThreadSanitizer: the link, the virtual instrument and the
#               fault tests that need no JACK server
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
# e2e_jack_gone hung once here under AddressSanitizer (libjack after its server was stopped); until
# that is found it runs in the plain suite only.
ctest --test-dir build-asan --output-on-failure --timeout 600 -E '^e2e_jack_gone$'

echo "== ThreadSanitizer: the link, the virtual instrument, the faults without JACK"
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSIVO_SANITIZE=thread
cmake --build build-tsan --target core_tests faults_tests
# The Qt forms run on one thread and are not built here. ThreadSanitizer slows the JACK clients
# several times over; even with cycles of 2048 frames (TESSIVO_JACK_PERIOD=2048 for
# tests/e2e/with_jackd.sh) the runs over a JACK server lost or doubled messages in a CI run, so
# they are left out here until that is found: the link's and the instrument's own threads (wake
# flags, paced ports, the scripted services) are checked by the rest.
ctest --test-dir build-tsan --output-on-failure --timeout 600 -E '^(qt_|e2e_|faults_jack_gone_|faults_flood$)'
