# Sourced by the scripts that build. Goes to the top of the tree, whichever folder it was called from.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

jobs=$(nproc)

# build PRESET [TARGET...]: configures if need be and builds.
build() {
  local preset=$1
  shift
  # A source that came or went is noticed by the globs themselves; only a first or failed configuration runs again.
  [ -f "build/$preset/build.ninja" ] || {
    mkdir -p "build/$preset"
    cmake --preset "$preset" >"build/$preset/configure.log" 2>&1 || {
      cat "build/$preset/configure.log" >&2
      return 1
    }
  }
  cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"}
}
