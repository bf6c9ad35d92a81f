# Shared by the end-to-end tests: each case runs the real kestrelle in a fresh private
# root (KESTRELLE_ROOT) with a fresh folder of fake session programs first in PATH.
# Needs KESTRELLE (the binary), FAKE (the argument-recording fake) and an X display.
set -euo pipefail
: "${KESTRELLE:?path of the kestrelle binary}" "${FAKE:?path of the recording fake}"
work=$(mktemp -d "${TMPDIR:-/tmp}/kestrelle-e2e.XXXXXX")
golden="$(dirname "$0")/golden" scripts="$(dirname "$0")/../../scripts"
failures=0 started_pids=() run_in=() cleanup=()

stop_all() {
  local pid
  for pid in "${started_pids[@]}"; do
    pkill -KILL -P "$pid" 2>/dev/null || true
    kill -KILL "$pid" 2>/dev/null && wait "$pid" 2>/dev/null || true
  done
  started_pids=()
}
# The servers a test started (its commands in cleanup) stop before the work folder goes.
trap 'stop_all; for c in "${cleanup[@]}"; do eval "$c" || true; done; rm -rf "$work"' EXIT
fail() { echo "FAIL [$case_name]: $*" >&2; failures=$((failures + 1)); }
finish() { [ "$failures" -eq 0 ] && echo "all cases passed" || { echo "$failures failure(s)"; exit 1; }; }

# new_case NAME: a fresh root with the running user as an administrator whose home is
# /home/user, bin/busybox so that the instance guard uses its file, and fakes in PATH.
new_case() {
  case_name=$1 root="$work/$1/root" fakes="$work/$1/fakes"
  mkdir -p "$root"/{bin,tmp,etc/.kestrel,home/user,opt/zarvo} "$fakes"
  : >"$root/bin/busybox"
  printf 'tester:x:%d:%d:Tester:/home/user:/bin/sh\n' "$(id -u)" "$(id -g)" >"$root/etc/passwd"
  printf 'root:x:0:tester\n' >"$root/etc/group"
  local name
  for name in rdesktop wfica X xkbcomp firefox ping custom-client reboot; do ln -s "$FAKE" "$fakes/$name"; done
  ln -s "$FAKE" "$root/opt/zarvo/marrow"
  argv_log="$root/argv.log" log="$root/tmp/zarvoca.log"
}
# master_file RECORD...: the master list, GUI shown (unless GUI is set), of records made by record.
master_file() {
  { printf 'Version 1.000\n%s\nDon'\''t show taskbar\nNot kiosk\n' "${GUI:-Show GUI}"; printf '%s\n' "$@"; } \
    >"$root/etc/.kestrel/kestrel.master"
}
# record NAME TYPE PING PORT [COLUMN=VALUE]...: the 35 lines of one connection; columns
# not named are empty except 4 ("1"), 33 and 34 ("0").
record() {
  local -a column=("$1" "$2" "$3" "$4" 1) && local i pair
  for i in $(seq 5 32); do column[i]=""; done
  column[33]=0 column[34]=0
  shift 4
  for pair; do column[${pair%%=*}]=${pair#*=}; done
  printf '%s\n' "${column[@]}"
}
# records_from FILE: the records of golden/FILE, one a line, its fields as record takes them
# separated by "|".
records_from() { local -a fields; while IFS='|' read -ra fields; do record "${fields[@]}"; done <"$golden/$1"; }
# user_file ROW...: the user's tree; each ROW is "PRIMARY|NAME|TYPE|AUTOMATIC|PERSISTENT|PROMPT".
user_file() {
  { echo "Version 1.000"; local row; for row; do tr '|' '\n' <<<"$row"; done; } >"$root/home/user/kestrel.inf"
}
# start_kestrelle [VAR=VALUE]...: starts the program in the background, through the
# command in run_in if set (a namespace to run in); sets pid.
start_kestrelle() {
  env KESTRELLE_ROOT="$root" PATH="$fakes:$PATH" KEST_FAKE_LOG="$argv_log" "$@" \
    "${run_in[@]}" "$KESTRELLE" >"$root/stdout" 2>"$root/stderr" &
  pid=$! && started_pids+=("$pid")
}
# wait_for SECONDS COMMAND...: retries COMMAND every 0.1 s until it succeeds.
wait_for() {
  local deadline=$((SECONDS + $1)) && shift
  until "$@"; do [ "$SECONDS" -lt "$deadline" ] || return 1; sleep 0.1; done
}
# window_named TITLE: the program's first visible window of that title, waited for.
window_named() { timeout 15 xdotool search --all --sync --onlyvisible --pid "$pid" --name "^$1\$" | head -1; }
main_window() { window_named Kestrelle; }
press() { timeout 10 xdotool windowfocus --sync "$1" key --delay 100 "${@:2}"; }
line_count() { [ -f "$1" ] && [ "$(wc -l <"$1")" -ge "$2" ]; }
has_ended() { ! kill -0 "$pid" 2>/dev/null; }
visible_windows() { xdotool search --onlyvisible --pid "$pid" 2>/dev/null || true; }
# children_named NAME: the children of the program (or of PARENTS) of that name.
children_named() { ps -o pid=,comm= --ppid "${PARENTS:-$pid}" | awk -v n="$1" '$2 == n { print $1 }'; }
# expect_text WHAT EXPECTED FILE: the file holds exactly EXPECTED.
expect_text() { diff -u <(printf '%s' "$2") "$3" >&2 || fail "$1"; }
# stop_kestrelle: SIGTERM, then the program ends within 5 s with status 0.
stop_kestrelle() {
  kill -TERM "$pid" && status="still running"
  wait_for 5 has_ended && { status=0 && wait "$pid" || status=$?; }
  [ "$status" = 0 ] || fail "SIGTERM: exit status $status, not 0"
}
now_ms() { echo $(($(date +%s%N) / 1000000)); }

# The real-client tests skip (exit status 77) where a program or root is missing.
needs() {
  local p
  for p; do command -v "$p" >/dev/null || { echo "SKIPPED: $p is not installed (scripts/deps)"; exit 77; }; done
  [ -z "${NEEDS_ROOT:-}" ] || [ "$(id -u)" -eq 0 ] || { echo "SKIPPED: the private network needs root"; exit 77; }
  : "${SCREENSHOTS:?folder for screenshots}" && mkdir -p "$SCREENSHOTS"
}
# share_of FILE COLOUR: the share (0..1) of the picture's pixels of that colour, give or
# take the rounding of a 16-bit session; above FILE COLOUR SHARE: more than SHARE.
share_of() { convert "$1" -fuzz 4% -fill white -opaque "$2" -fill black +opaque white -format '%[fx:mean]' info:; }
above() { awk -v s="$(share_of "$1" "$2")" -v min="$3" 'BEGIN { exit !(s > min) }'; }
# main_shot FILE: the main window, raised and focused so the selected row looks the same.
main_shot() {
  timeout 5 xdotool windowraise "$window" windowfocus --sync "$window" && sleep 0.3
  import -window "$window" "$1"
}
main_window_is() { main_shot "$work/now.png" && [ "$(compare -metric AE "$1" "$work/now.png" null: 2>&1)" = 0 ]; }
# show_main_window: the main window (in window), moved beside the session windows, which
# open at the top left corner, with the pointer out of the way of its buttons.
show_main_window() {
  xdotool mousemove 1590 1190
  start_kestrelle "$@"
  window=$(main_window)
  [ -n "$window" ] || { fail "no main window"; finish; }
  xdotool windowmove --sync "$window" 820 0
}
# connect_next: selects the next row, photographs the main window, presses Connect; sets connect_ms.
connect_next() {
  press "$window" Down && main_shot "$work/not-connected.png"
  connect_ms=$(now_ms) && xdotool key alt+c
}
# expect_active: Connect changed the main window (the row shows "Active").
expect_active() { ! main_window_is "$work/not-connected.png" || fail "the row is not \"Active\" after Connect"; }
expect_not_connected() { wait_for 10 main_window_is "$work/not-connected.png" || fail "the row is not \"Not Connected\" after $1"; }
# wait_mapped TITLE_PATTERN START_MS [COUNT]: waits up to 30 s for COUNT (1) visible windows
# of that title; sets mapped_window, and elapsed_ms since START_MS.
wait_mapped() {
  mapped_title=$1 mapped_count=${3:-1}
  wait_for 30 eval '[ "$(xdotool search --onlyvisible --name "$mapped_title" 2>/dev/null | wc -l)" -ge $mapped_count ]' || return 1
  mapped_window=$(xdotool search --onlyvisible --name "$1" | head -1) elapsed_ms=$(($(now_ms) - $2))
}
# by_hand TITLE_PATTERN COMMAND...: the reference: COMMAND started by hand until its window
# is the COUNT-th (BY_HAND_COUNT, 1) of that title; sets hand_ms.
by_hand() {
  local start && start=$(now_ms)
  "${@:2}" >/dev/null 2>&1 &
  local helper=$!
  wait_mapped "$1" "$start" "${BY_HAND_COUNT:-1}" || fail "started by hand, $2 shows no window"
  hand_ms=$elapsed_ms
  kill -TERM "$helper" && wait "$helper" || true
}
