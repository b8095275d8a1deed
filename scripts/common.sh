# What the scripts share: the project's folder, the machine's packages and processor. Sourced, not run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\n== %s\n' "$*"; }

# need PACKAGE...: what is missing is installed for root and in CI, for others after a yes or with KPRCV_INSTALL=1.
need() {
    local missing=() as_root=() answer
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q ' installed' || missing+=("$package")
    done
    if [ "${#missing[@]}" -eq 0 ]; then return; fi
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
        echo "Packages are missing:  sudo apt-get install ${missing[*]}" >&2
        if [ "${CI:-}" != true ] && [ "${KPRCV_INSTALL:-}" != 1 ]; then
            if [ ! -t 0 ]; then exit 1; fi
            read -r -p "Install them now? [y/N] " answer
            if [ "$answer" != y ]; then exit 1; fi
        fi
    fi
    say "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# The library is one instruction set's; on a lesser processor the loader would refuse it.
need_processor() {
    local flag
    for flag in avx512f avx512cd avx512bw avx512dq avx512vl; do
        if ! grep -qw "$flag" /proc/cpuinfo; then
            echo "This processor lacks $flag; the library needs AVX-512 F, CD, BW, DQ and VL (x86-64-v4)." >&2
            exit 1
        fi
    done
}

# build PRESET [TARGET...]: configures and builds, quiet unless something fails.
build() {
    local preset=$1 log
    shift
    mkdir -p build
    log=build/$preset.log
    if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking)' "$log" >&2
        echo "The $preset build failed; the whole log is $log." >&2
        exit 1
    fi
}
