#!/bin/bash
# Runs one fuzz target for a while, in processes of a limited number of inputs each: a driver may keep memory.
#
#     tests/fuzz/run.sh TARGET [SECONDS [INPUTS]]     FuzzStrings, FuzzControlCalls, ...; default 60 seconds
#
# It ends early when that many inputs have been run, in earlier calls too.
#
# The build comes from the preset `fuzz` and lies in build/fuzz, or in LUMOR_FUZZ_BUILD. What the target learns
# goes to LUMOR_FUZZ_WORK (build/fuzz/work): TARGET/ the inputs that reach something new, TARGET.crash-* those
# that fail, TARGET.log, and TARGET.count, the inputs run so far in all calls of this script. Any failure ends
# the run with an exit status other than 0.
set -u
sSource=$(cd "$(dirname "$0")/../.." && pwd)
sTarget=${1:?tests/fuzz/run.sh TARGET [SECONDS]}
nSeconds=${2:-60}
nInputs=${3:-0}
sBuild=${LUMOR_FUZZ_BUILD:-$sSource/build/fuzz}
sWork=${LUMOR_FUZZ_WORK:-$sBuild/work}
if [ ! -x "$sBuild/tests/$sTarget" ]; then
    (cd "$sSource" && cmake --preset fuzz && cmake --build build/fuzz --target "$sTarget") || exit 1
fi

nRuns=1000000
aOptions=(-max_len=256)
case $sTarget in
FuzzMaskPolygons) sCorpus=mask_polygons ;;
FuzzStrings) sCorpus=strings ;;
FuzzControlCalls) sCorpus=calls nRuns=20000 aOptions=(-max_len=256 -len_control=0 -entropic=0) ;;
FuzzFrames) sCorpus=frames nRuns=20000 aOptions=(-max_len=96 -len_control=0 -entropic=0) ;;
FuzzRawFrames) sCorpus=raw-frames nRuns=200000 aOptions=(-max_len=48 -len_control=0) ;;
FuzzCommandLine) sCorpus=command-line nRuns=200000 aOptions=(-max_len=300) ;;
FuzzLensFile) sCorpus=lens-files nRuns=200000 aOptions=(-max_len=2000 -len_control=0) ;;
*) echo "there is no target $sTarget" >&2; exit 2 ;;
esac
# What a driver keeps until its process ends is not the library's: leaks are looked for where the corpora are
# replayed in a build with sanitizers, and growth by the limit below.
export ASAN_OPTIONS=detect_leaks=0:malloc_context_size=4:quarantine_size_mb=16
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
mkdir -p "$sWork/$sTarget"
nDone=$(cat "$sWork/$sTarget.count" 2>/dev/null || echo 0)
nStatus=0
while [ "$SECONDS" -lt "$nSeconds" ] && [ "$nStatus" -eq 0 ] && { [ "$nInputs" -eq 0 ] || [ "$nDone" -lt "$nInputs" ]; }; do
    # The targets watch for hangs themselves, by processor time.
    "$sBuild/tests/$sTarget" "${aOptions[@]}" -runs=$nRuns -max_total_time=$((nSeconds - SECONDS)) -timeout=120 \
        -detect_leaks=0 -rss_limit_mb=4000 -report_slow_units=100 -print_final_stats=1 -artifact_prefix="$sWork/$sTarget." \
        "$sWork/$sTarget" "$sSource/tests/fuzz/corpus/$sCorpus" >"$sWork/$sTarget.log" 2>&1
    nStatus=$?
    # What was kept before is read again at every start and does not count.
    nThis=$(sed -n 's/^stat::number_of_executed_units: *//p' "$sWork/$sTarget.log")
    nKept=$(sed -n 's/^#\([0-9]*\)[[:space:]]INITED.*/\1/p' "$sWork/$sTarget.log")
    nDone=$((nDone + ${nThis:-0} - ${nKept:-0}))
    echo "$nDone" >"$sWork/$sTarget.count"
done
[ "$nStatus" -eq 0 ] || tail -n 40 "$sWork/$sTarget.log"
echo "$sTarget: $nDone inputs, status $nStatus"
exit $nStatus
