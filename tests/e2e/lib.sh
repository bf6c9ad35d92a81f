# Shared by the end-to-end tests: each case runs the real kestrelle in a fresh private
# root (KESTRELLE_ROOT) with a fresh folder of fake session programs first in PATH.
# Needs KESTRELLE (the binary) and FAKE (the argument-recording fake) in the environment
# and an X display.
set -euo pipefail
: "${KESTRELLE:?path of the kestrelle binary}" "${FAKE:?path of the recording fake}"

work=$(mktemp -d "${TMPDIR:-/tmp}/kestrelle-e2e.XXXXXX")
failures=0
started_pids=()

stop_all() {
  local pid child
  for pid in "${started_pids[@]}"; do
    for child in $(ps -o pid= --ppid "$pid" 2>/dev/null); do kill -KILL "$child" 2>/dev/null || true; done
    kill -KILL "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
}
trap 'stop_all; rm -rf "$work"' EXIT

fail() {
  echo "FAIL [$case_name]: $*" >&2
  failures=$((failures + 1))
}

# new_case NAME: a fresh root with the running user as an administrator whose home is
# /home/user, bin/busybox so that the instance guard uses its file, and a fresh PATH
# folder of fakes.
new_case() {
  case_name=$1
  root="$work/$1/root"
  fakes="$work/$1/fakes"
  mkdir -p "$root"/{bin,tmp,etc/.kestrel,home/user,opt/zarvo} "$fakes"
  : >"$root/bin/busybox"
  printf 'tester:x:%d:%d:Tester:/home/user:/bin/sh\n' "$(id -u)" "$(id -g)" >"$root/etc/passwd"
  printf 'root:x:0:tester\n' >"$root/etc/group"
  local name
  for name in rdesktop wfica X xkbcomp firefox ping custom-client; do ln -s "$FAKE" "$fakes/$name"; done
  ln -s "$FAKE" "$root/opt/zarvo/marrow"
  argv_log="$root/argv.log"
  log="$root/tmp/zarvoca.log"
}

# master_file RECORD...: writes the master list with the GUI shown; each RECORD is the
# output of record (without its last line end, as a command substitution gives it).
master_file() {
  { printf 'Version 1.000\nShow GUI\nDon'\''t show taskbar\nNot kiosk\n'; printf '%s\n' "$@"; } \
    >"$root/etc/.kestrel/kestrel.master"
}

# record NAME TYPE PING PORT [COLUMN=VALUE]...: the 35 lines of one connection; columns
# not named are empty except 4 ("1"), 33 and 34 ("0").
record() {
  local -a column=("$1" "$2" "$3" "$4" 1)
  local i pair
  for i in $(seq 5 32); do column[i]=""; done
  column[33]=0 column[34]=0
  shift 4
  for pair; do column[${pair%%=*}]=${pair#*=}; done
  printf '%s\n' "${column[@]}"
}

# user_file ROW...: the running user's connection tree; each ROW is the six lines
# "PRIMARY NAME TYPE AUTOMATIC PERSISTENT PROMPT" separated by "|".
user_file() {
  { echo "Version 1.000"; local row; for row; do tr '|' '\n' <<<"$row"; done; } >"$root/home/user/kestrel.inf"
}

# start_kestrelle [VAR=VALUE]...: starts the program in the background, through the
# command in the array run_in if one is set (a namespace to run in); sets pid.
run_in=()
start_kestrelle() {
  env KESTRELLE_ROOT="$root" PATH="$fakes:$PATH" KEST_FAKE_LOG="$argv_log" "$@" \
    "${run_in[@]}" "$KESTRELLE" >"$root/stdout" 2>"$root/stderr" &
  pid=$!
  started_pids+=("$pid")
}

# wait_for SECONDS COMMAND...: retries COMMAND every 0.1 s until it succeeds.
wait_for() {
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$deadline" ] || return 1
    sleep 0.1
  done
}

main_window() { timeout 15 xdotool search --all --sync --onlyvisible --pid "$pid" --name '^Kestrelle$' | head -1; }
line_count() { [ -f "$1" ] && [ "$(wc -l <"$1")" -ge "$2" ]; }
has_ended() { ! kill -0 "$pid" 2>/dev/null; }
visible_windows() { xdotool search --onlyvisible --pid "$pid" 2>/dev/null || true; }
no_children() { [ -z "$(ps -o pid= --ppid "$pid")" ]; }

# expect_text WHAT EXPECTED FILE: the file holds exactly EXPECTED, newline included.
expect_text() {
  if ! diff -u <(printf '%s' "$2") "$3" >"$work/diff" 2>&1; then
    fail "$1"
    cat "$work/diff" >&2
  fi
}

# collect_exit_status: waits up to 5 seconds for the program to end; sets status to its
# exit status, or to "still running".
collect_exit_status() {
  status="still running"
  wait_for 5 has_ended || return 0
  status=0
  wait "$pid" || status=$?
}

now_ms() { echo $(($(date +%s%N) / 1000000)); }

# window_shot WINDOW FILE: the window's contents as a PNG.
window_shot() { import -window "$1" "$2"; }
# share_of FILE COLOUR: the share (0..1) of the picture's pixels that are COLOUR, give or
# take the rounding of a 16-bit session.
share_of() {
  convert "$1" -fuzz 4% -fill white -opaque "$2" -fill black +opaque white -format '%[fx:mean]' info:
}
# pixels_differing A B: how many pixels of two pictures of one size differ.
pixels_differing() { compare -metric AE "$1" "$2" null: 2>&1 || true; }

# main_shot FILE: the main window (in window) as the user sees it, raised above session
# windows and focused, so that the selected row is drawn the same way every time.
main_shot() {
  timeout 5 xdotool windowraise "$window" windowfocus --sync "$window"
  sleep 0.3
  window_shot "$window" "$1"
}
# main_window_is FILE: the main window looks exactly as in FILE.
main_window_is() {
  main_shot "$work/main-now.png"
  [ "$(pixels_differing "$1" "$work/main-now.png")" = 0 ]
}

# wait_mapped NAME_PATTERN START_MS: waits up to 30 s for a visible window whose name
# matches; sets mapped_window, and elapsed_ms to the milliseconds since START_MS.
wait_mapped() {
  mapped_pattern=$1 mapped_window=""
  wait_for 30 eval 'mapped_window=$(xdotool search --onlyvisible --name "$mapped_pattern" 2>/dev/null | head -1); [ -n "$mapped_window" ]' ||
    return 1
  elapsed_ms=$(($(now_ms) - $2))
}

# The real-client tests: they skip (exit status 77) where a program is missing, and connect
# the rows of the main window one after the other from the keyboard.
needs() {
  local program
  for program; do
    command -v "$program" >/dev/null && continue
    echo "SKIPPED: $program is not installed (scripts/deps installs it)"
    exit 77
  done
}
needs_root() { [ "$(id -u)" -eq 0 ] || { echo "SKIPPED: the private network namespace needs root"; exit 77; }; }
# show_main_window: waits for the main window (sets window) and moves it beside the
# session windows, which open at the top left corner.
show_main_window() {
  window=$(main_window)
  [ -n "$window" ] || { fail "no main window"; finish; }
  xdotool windowmove --sync "$window" 820 0
}
# connect_next: selects the next row, photographs the main window and presses Connect;
# sets connect_ms.
connect_next() {
  timeout 10 xdotool windowfocus --sync "$window" key Down
  main_shot "$work/main-not-connected.png"
  connect_ms=$(now_ms)
  xdotool key alt+c
}
# expect_active: Connect changed the main window, the row's status being all it changes.
expect_active() {
  main_shot "$work/main-active.png"
  [ "$(pixels_differing "$work/main-not-connected.png" "$work/main-active.png")" != 0 ] ||
    fail "the main window did not change on Connect: the row does not show \"Active\""
}
# expect_not_connected WHAT: the main window is back as before Connect within 10 s.
expect_not_connected() {
  wait_for 10 main_window_is "$work/main-not-connected.png" || fail "the row is not \"Not Connected\" after $1"
}

finish() {
  if [ "$failures" -eq 0 ]; then echo "all cases passed"; else echo "$failures failure(s)"; exit 1; fi
}
