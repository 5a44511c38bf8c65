# Shared by the project's scripts; sourced, not run.
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '== %s\n' "$*"; }
die() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# project_files PATTERN...: the project's files, tracked or new, each ended by a zero byte. A checkout that belongs to
# another user, as in a container, is ours all the same.
project_files() { git -c safe.directory="$top" ls-files -co --exclude-standard -z -- "$@"; }

# build PRESET TARGET [CMAKE-OPTION...]: configures and builds incrementally.
build() {
  local preset=$1 target=$2
  shift 2
  mkdir -p "$top/build"
  say "building ($preset)"
  (cd "$top" && cmake --preset "$preset" "$@") >"$top/build/configure-$preset.log" 2>&1 ||
    { tail -n 30 "$top/build/configure-$preset.log" >&2; die "cmake could not configure; see build/configure-$preset.log"; }
  (cd "$top" && cmake --build --preset "$preset" --target "$target") || die "the build failed"
}
