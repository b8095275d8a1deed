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

# has FLAG...: whether the processor has all of them.
has() {
    local flag
    for flag in "$@"; do
        if ! grep -qw "$flag" /proc/cpuinfo; then return 1; fi
    done
}

# Sets the processor that is built for: with vectors of 64 bytes, or for want of them with two of 32 in place of each. On
# a lesser one the loader would refuse the library.
need_processor() {
    if has avx512f avx512cd avx512bw avx512dq avx512vl; then
        processor=x86-64-v4
    elif has avx2 bmi1 bmi2 f16c fma abm movbe; then
        processor=x86-64-v3
        say "This processor lacks AVX-512: the library is built for x86-64-v3, which is slower" >&2
    else
        echo "This processor lacks AVX2 or FMA; the library needs x86-64-v3, and is made for x86-64-v4." >&2
        exit 1
    fi
}

# build PRESET [TARGET...]: configures and builds, quiet unless something fails.
build() {
    local preset=$1 log
    shift
    mkdir -p build
    log=build/$preset.log
    if ! {
        cmake --preset "$preset" -DKPRCV_PROCESSOR="$processor" &&
            cmake --build --preset "$preset" ${1:+--target "$@"}
    } >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking)' "$log" >&2
        echo "The $preset build failed; the whole log is $log." >&2
        exit 1
    fi
}
