# Functions shared by the scripts. Source it from the project's root folder.
# shellcheck shell=bash disable=SC2034  # each script uses its own part

# Package names in Debian 12, by purpose.
readonly build_packages=(g++ cmake ninja-build pkg-config libexpat1-dev libsndfile1-dev libsoxr-dev
                         libutf8proc-dev libpulse-dev libsdl2-dev libcli11-dev)
readonly test_packages=(libgtest-dev libgmock-dev pulseaudio pulseaudio-utils)
readonly bench_packages=(libbenchmark-dev)
readonly clang_packages=(clang libclang-rt-14-dev)
readonly coverage_packages=("${clang_packages[@]}" llvm binutils)
readonly arm_packages=(g++-aarch64-linux-gnu g++-arm-linux-gnueabihf qemu-user-static googletest)
readonly package_packages=(dpkg-dev file)
readonly docs_packages=(doxygen)
readonly example_packages=(libglib2.0-dev libespeak-ng-dev)
readonly check_packages=(clang-format clang-tidy mandoc)

# One job per core: fewer leave a core idle, more make the machine swap.
jobs=$(nproc)
readonly jobs

# Prints each argument on its own line.
say() { printf '%s\n' "$@"; }

# Ends the script with an error message.
stop() {
  printf '%s: %s\n' "$0" "$*" >&2
  exit 1
}

is_installed() {
  [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# apt-get as root: directly, or through sudo, which may ask for a password on a terminal only.
apt_get() {
  local command=(env DEBIAN_FRONTEND=noninteractive apt-get -qq "$@")
  if [[ $(id -u) != 0 ]]; then
    if [[ -t 0 ]]; then command=(sudo "${command[@]}"); else command=(sudo -n "${command[@]}"); fi
  fi
  "${command[@]}" </dev/null
}

# Installs the missing ones of these packages. Fetches the package lists only if the current ones
# are missing or too old to find the packages.
need() {
  local missing=() package
  { command -v dpkg-query && command -v apt-get; } >/dev/null ||
    stop "This is not a Debian system; install the equivalents of these packages, then build with CMake: $*"
  for package in "$@"; do is_installed "$package" || missing+=("$package"); done
  [[ ${#missing[@]} == 0 ]] && return
  [[ $(id -u) == 0 ]] || command -v sudo >/dev/null ||
    stop "Packages are missing and sudo is not installed. As root: apt-get install ${missing[*]}"
  say "Installing ${missing[*]}"
  local install=(install --yes --no-install-recommends "${missing[@]}")
  apt_get "${install[@]}" >/dev/null 2>&1 && return
  say "Fetching the package lists first"
  { apt_get update && apt_get "${install[@]}"; } >/dev/null ||
    stop "apt-get could not install ${missing[*]}; see its message above."
}

# Runs a command and shows its output only if it fails.
quietly() {
  local words status=0
  words=$(mktemp)
  "$@" >"$words" 2>&1 || status=$?
  [[ $status == 0 ]] || cat "$words" >&2
  rm -f "$words"
  return $status
}

# Configures a preset and builds it, or only the given targets.
build() {
  local preset=$1 targets=()
  shift
  [[ $# -gt 0 ]] && targets=(--target "$@")
  say "Building ($preset)"
  quietly cmake --preset "$preset" ||
    stop "CMake could not configure the build '$preset'; see its message above."
  quietly cmake --build --preset "$preset" -j "$jobs" "${targets[@]}" ||
    stop "The build '$preset' failed; see the compiler's message above."
}
