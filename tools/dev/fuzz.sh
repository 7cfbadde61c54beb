# shellcheck shell=bash disable=SC2154  # ./dev has the rest
# ./dev fuzz.

# Has one fuzz target look for bad input. What it says goes to a log, its exit status beside it, input that broke
# something to the findings; input that led somewhere new is kept for the next time.
fuzz_target() { # TARGET SECONDS
    local programs=build/fuzz/tests/fuzz findings=build/fuzz/findings/$1 corpus=build/fuzz/corpus/$1 status=0 scratch
    mkdir -p "$findings" "$corpus"
    # The machines that some targets write are best kept in memory.
    scratch=$(mktemp -d --tmpdir="$([[ -d /dev/shm ]] && printf /dev/shm)")
    TMPDIR=$scratch "$programs/$1Fuzzer" -max_total_time="$2" -max_len=16384 -timeout=20 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$findings/" -seed_inputs="@$programs/$1.inputs" "$corpus" \
        >"build/fuzz/logs/$1" 2>&1 || status=$?
    rm -rf "$scratch"
    printf '%s\n' "$status" >"build/fuzz/logs/$1.status"
}

# Looks for input that a parser cannot bear or gets wrong, a minute for each target, as many of them at a time as
# there are processors. Ends with what each did; fails if one found anything.
cmd_fuzz() { # [--seconds N] [TARGET...]
    local usage='usage: ./dev fuzz [--seconds N] [TARGET...]' seconds=60 target log runs coverage findings
    local known=() failed=()
    if [[ ${1:-} == -* ]]; then
        [[ $1 == --seconds && ${2:-} =~ ^[1-9][0-9]*$ ]] || fail "$usage"
        seconds=$2
        shift 2
    fi
    for target in tests/fuzz/seeds/*; do
        known+=("${target##*/}")
    done
    (($#)) || set -- "${known[@]}"
    for target in "$@"; do
        [[ " ${known[*]} " == *" $target "* ]] || fail "$usage"$'\n'"targets: ${known[*]}"
    done
    install_missing "${build_packages[@]}" "${fuzz_packages[@]}"
    configure_and_build fuzz

    rm -rf build/fuzz/logs
    mkdir -p build/fuzz/logs
    say "$# targets, $seconds s each."
    for target in "$@"; do
        while (($(jobs -pr | wc -l) >= $(nproc))); do wait -n; done
        fuzz_target "$target" "$seconds" &
    done
    wait

    printf '%-20s %12s %9s %9s\n' target runs coverage findings
    for target in "$@"; do
        log=build/fuzz/logs/$target
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
        coverage=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' "$log" | tail -n 1)
        findings=$(grep -c 'Test unit written to' "$log" || true)
        printf '%-20s %12s %9s %9s\n' "$target" "${runs:-?}" "${coverage:-?}" "$findings"
        [[ $(<"$log.status") == 0 ]] || failed+=("$target")
    done
    ((${#failed[@]} == 0)) && return
    for target in "${failed[@]}"; do
        log=build/fuzz/logs/$target
        printf '\n%s failed; all that it said is in %s\n' "$target" "$log"
        grep -E 'Broken: |SUMMARY: |runtime error: |Test unit written to ' "$log" || tail -n 5 "$log"
    done
    return 1
}
