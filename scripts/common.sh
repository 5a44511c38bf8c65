# Shared by the project's scripts; sourced, not run.
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '== %s\n' "$*"; }
die() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# build PRESET [CMAKE-OPTION...]: configures and builds incrementally.
build() {
  local preset=$1
  shift
  say "building ($preset)"
  (cd "$top" && cmake --preset "$preset" "$@") >"$top/build/configure-$preset.log" 2>&1 ||
    { tail -n 30 "$top/build/configure-$preset.log" >&2; die "cmake could not configure; see build/configure-$preset.log"; }
  (cd "$top" && cmake --build --preset "$preset") || die "the build failed"
}
