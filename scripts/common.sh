# What the scripts share: the project's folder, the machine's packages and processor. Sourced, not run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\n== %s\n' "$*"; }

# need PACKAGE...: installs what is missing where this user may, otherwise prints the one line to type.
need() {
    local missing=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q ' installed' || missing+=("$package")
    done
    if [ "${#missing[@]}" -eq 0 ]; then return; fi
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! sudo -n true 2>/dev/null; then
            echo "Packages are missing. Type:  sudo apt-get install ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
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
