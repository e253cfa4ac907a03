# shellcheck shell=bash
# What several scripts do the same way; sourced by them, from any folder.

# say TEXT…: a line for whoever watches; what a script prints for others goes to standard output.
say() { printf '%s\n' "$*" >&2; }

# quietly LOG COMMAND…: its output goes to the log, whose end is shown when the command fails.
quietly() {
  local log=$1
  shift
  "$@" >"$log" 2>&1 || { local status=$?; tail -n 200 "$log" >&2; return "$status"; }
}

# refuse WHAT PERL-REGEX FILE…: none of the files may have a line that matches; sets failed=1 and prints those that do.
refuse() {
  local what=$1 regex=$2 lines
  shift 2
  (($#)) || return 0
  if lines=$(grep -nHP -- "$regex" "$@"); then
    printf '%s:\n%s\n' "$what" "$lines" >&2
    # shellcheck disable=SC2034
    failed=1
  fi
}

# soon COMMAND…: tries for up to 20 seconds until it succeeds.
soon() {
  local i
  for ((i = 0; i < 200; i++)); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  return 1
}

# The processes that a script leaves running until its end.
started=()

# Ends them, the last one first, and waits for each.
stop_started() {
  local i
  for ((i = ${#started[@]} - 1; i >= 0; i--)); do
    kill "${started[i]}" 2>/dev/null || true
    wait "${started[i]}" 2>/dev/null || true
  done
}

# start_display FOLDER SIZE [ARGUMENT…]: an X server of its own, whose number stays in FOLDER/display; exports DISPLAY.
# 1 when it does not start.
start_display() {
  Xvfb -displayfd 3 -screen 0 "$2x24" -nolisten tcp "${@:3}" 3>"$1/display" >/dev/null 2>&1 &
  started+=($!)
  soon test -s "$1/display" || { say "Xvfb does not start"; return 1; }
  DISPLAY=:$(<"$1/display")
  export DISPLAY
}

# start_window_manager FOLDER: openbox on that display, ready to manage. 1 when it does not start.
start_window_manager() {
  # A window that shows up while it still starts would never be managed: wait for its start-up command.
  openbox --sm-disable --startup "touch '$1/managing'" >/dev/null 2>&1 &
  started+=($!)
  soon test -e "$1/managing" || { say "openbox does not start"; return 1; }
}

# alone NAME COMMAND…: begins the script anew as COMMAND, as soon as no other run in this folder holds build/NAME.lock.
# Returns where this run holds it already, as the scripts do that such a run calls.
alone() {
  [[ ${TME_ALONE:-} != "$1" ]] || return 0
  mkdir -p build
  flock --nonblock "build/$1.lock" true || say "Waiting: another run is at work here (build/$1.lock)"
  TME_ALONE=$1 exec flock --close "build/$1.lock" "${@:2}"
}

# build_release: brings build/release up to date, where several scripts build the editor as users get it.
build_release() (
  mkdir -p build
  exec 9>build/run.lock
  flock 9 # two at once would build into each other
  if [[ ! -e build/release/build.ninja || CMakePresets.json -nt build/release/build.ninja ]]; then
    say "Configuring (build/release)"
    quietly build/release-configure.log cmake --preset release 9>&-
  fi
  [[ -x build/release/tme ]] || say "Building (build/release)"
  quietly build/release-build.log cmake --build --preset release 9>&-
)
