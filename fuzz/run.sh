#!/bin/bash
# make fuzz: lets libFuzzer make up inputs for the readers, one reader after the other.
#
#   fuzz/run.sh SECONDS [TARGET]...    none: all of fuzz/corpus
#
# It begins with the corpus that is kept and with what earlier runs have found, in build/fuzz/found/TARGET. An input that
# ends the reader, takes longer than 5 s or more than 1 GB of memory is a finding and left in build/fuzz/findings/TARGET;
# give it a name, put it into fuzz/corpus/TARGET, and mend the reader. With TRK_FUZZ_KEEP=1 the inputs that reach places
# which no kept one reaches are added to fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
readonly fuzz=build/fuzz/fuzz/trk_fuzz
readonly longest_input=4096 # bytes; no reader has a bound above that but for the machine's file
readonly -a limits=(-timeout=5 -rss_limit_mb=1024 "-max_len=$longest_input")
seconds=$1
shift
[ $# -gt 0 ] || set -- $(basename -a fuzz/corpus/*/)

# Readers of files write their input to the temporary folder with each run, so that is one in memory where there is one.
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm
export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1

number_of() { # NAME LOG: a figure of libFuzzer's final statistics
    awk -v name="stat::$1:" '$1 == name { print $2 }' "$2"
}

findings=0
printf '%-16s %12s %10s %8s %9s\n' target executions 'a second' edges findings
for target in "$@"; do
    found=build/fuzz/found/$target
    bad=build/fuzz/findings/$target
    log=build/fuzz/$target.log
    mkdir -p "$found" "$bad"
    status=0
    TRK_FUZZ_TARGET=$target "$fuzz" "${limits[@]}" "-max_total_time=$seconds" -print_final_stats=1 \
        "-artifact_prefix=$bad/" "$found" "fuzz/corpus/$target" >"$log" 2>&1 || status=$?
    [ "$status" -eq 0 ] || findings=$((findings + 1))
    edges=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1 | cut -d' ' -f2 || true)
    printf '%-16s %12s %10s %8s %9s\n' "$target" "$(number_of number_of_executed_units "$log")" \
        "$(number_of average_exec_per_sec "$log")" "${edges:--}" "$([ "$status" -eq 0 ] && echo 0 || echo 1)"
    if [ "$status" -ne 0 ]; then
        grep -m 3 -E 'ERROR|finding:|runtime error|Test unit written' "$log" || tail -n 3 "$log"
    elif [ -n "${TRK_FUZZ_KEEP-}" ]; then
        TRK_FUZZ_TARGET=$target "$fuzz" "${limits[@]}" -merge=1 "fuzz/corpus/$target" "$found" >>"$log" 2>&1
    fi
done
[ "$findings" -eq 0 ]
