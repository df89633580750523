# shellcheck shell=bash
#
# Shared by the scripts, which source it first. Sets strict mode, implements --help (which prints a
# script's header comment), changes to the repository's folder, and defines the functions below.
set -euo pipefail

case ${1:-} in
  -h | --help)
    awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "$0"
    exit
    ;;
esac

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

jobs=$(nproc)
bold='' plain=''
if [[ -t 1 ]]; then bold=$'\e[1m' plain=$'\e[0m'; fi

# say TEXT...: prints a heading.
say() { printf '%s%s%s\n' "$bold" "$*" "$plain"; }

# fail TEXT...: prints the reason and ends the script.
fail() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# quietly LOG COMMAND...: runs the command with its output in the file; shows the file if the
# command fails.
quietly() {
  local log=$1
  shift
  "$@" >"$log" 2>&1 && return
  cat -- "$log" >&2
  return 1
}

# build PRESET [TARGET...]: configures and builds in build/PRESET, quietly. Warnings are errors,
# except in instrumented builds, where compilers give false warnings.
build() {
  local preset=$1 folder=build/$1 werror=ON
  shift
  case $preset in sanitize* | fuzz* | coverage) werror=OFF ;; esac
  mkdir -p "$folder"
  quietly "$folder/configure.log" cmake --preset "$preset" -DLMX_WERROR=$werror &&
    quietly "$folder/build.log" cmake --build "$folder" --parallel "$jobs" ${1:+--target "$@"}
}

# check NAME COMMAND...: prints whether the command succeeds; if not, counts it in `failures`.
failures=0
check() {
  if "${@:2}"; then printf 'ok      %s\n' "$1"; else printf 'FAILED  %s\n' "$1" && ((++failures)); fi
}

# kernel_levels: the names of all levels of kernels, lowest first.
kernel_levels() { sed -n '/^enum class KernelLevel/ { s/.*{ //; s/ }.*//; s/, /\n/g; p }' source/kernels/KernelLevel.h; }

# file_address FILE: the file's address for a browser, with all but plain characters escaped.
file_address() {
  local LC_ALL=C path i c
  path=$(realpath -- "$1")
  printf 'file://'
  for ((i = 0; i < ${#path}; ++i)); do
    c=${path:i:1}
    case $c in
      [a-zA-Z0-9/._~-]) printf '%s' "$c" ;;
      *) printf '%%%02X' "'$c" ;;
    esac
  done
}

# cpp_files: our C++ files, each name ended by a zero byte.
cpp_files() {
  find -- */ -path 'build*' -prune -o \( -name '*.h' -o -name '*.cpp' \) -print0 | sort -z
}
