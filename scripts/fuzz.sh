#!/usr/bin/env bash
# Fuzzes each target for so many seconds under the address and undefined behaviour sanitizers.
#
#   scripts/fuzz.sh SECONDS [TARGET...]
#
# What was found before (tests/fuzz/regressions/TARGET) is replayed first. A new finding fails the run and is put there: keep it in
# the repository together with its fix. Inputs that reach new code collect in build/fuzz/corpus/TARGET from run to run.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

[[ ${1:-} =~ ^[1-9][0-9]*$ ]] || { sed -n '2,7p' "$root/scripts/fuzz.sh" >&2; exit 2; }
seconds=$1
shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(received replies title_files settings)

need_build_tools
need clang libclang-rt-dev

folder=$root/build/fuzz
mkdir -p "$folder"
cmake -S "$root" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g" \
    -DCMAKE_CXX_COMPILER=clang++ -DTESSELIA_FUZZ=ON -DTESSELIA_SANITIZE=address,undefined,fuzzer-no-link \
    >"$folder/configure.log" 2>&1 || { cat "$folder/configure.log" >&2; say "Configuring the fuzz targets failed"; exit 1; }
cmake --build "$folder" --target fuzz_targets >&2

# The longest input: above a full frame buffer, and enough for a whole dialogue.
longest() {
    case $1 in
        received) printf 3000 ;;
        *) printf 700 ;;
    esac
}

# Compared values as a goal help to hit sums; in a whole simulation its own random draws would drown everything else.
value_profile() {
    case $1 in
        received) printf 1 ;;
        *) printf 0 ;;
    esac
}

# fuzz TARGET
fuzz() {
    local target=$1 program found log
    program=$folder/bin/fuzz_$target
    [ -x "$program" ] || { say "There is no fuzz target $target"; return 2; }
    found=$root/tests/fuzz/regressions/$target
    log=$folder/$target.log
    mkdir -p "$folder/corpus/$target" "$found"

    if compgen -G "$found/*" >/dev/null && ! "$program" "$found"/* >"$log" 2>&1; then
        tail -n 40 "$log" >&2
        say "$target: an old finding is back, see $log"
        return 1
    fi
    if ! "$program" -max_total_time="$seconds" -max_len="$(longest "$target")" -use_value_profile="$(value_profile "$target")" -timeout=20 \
        -artifact_prefix="$found/" "$folder/corpus/$target" "$root/tests/fuzz/corpus/$target" >"$log" 2>&1; then
        grep -n -m 1 -A 25 -E 'does not hold|ERROR: |runtime error' "$log" >&2 || tail -n 40 "$log" >&2
        say "$target: a finding, kept in tests/fuzz/regressions/$target; the whole report is $log"
        return 1
    fi
    { grep -E ' cov: ' "$log" | tail -n 1 | sed "s/^.*cov:/$target: cov:/"; tail -n 1 "$log" | sed "s/^/$target: /"; } >&2
}

# Side by side: each has one thread.
say "Fuzzing ${targets[*]} for $seconds s"
runs=()
for target in "${targets[@]}"; do
    fuzz "$target" &
    runs+=($!)
done
failed=0
for run in "${runs[@]}"; do
    wait "$run" || failed=1
done
exit $failed
