# The whole chain with a real remote desktop: Debian's rdesktop, started by Kestrelle,
# against a private xrdp on a loopback port. Only rdesktop is real; every other program is
# the recording fake. One run of the program goes through:
#   1. Connect "Real Desktop" (ping first on the server's port, user name, password, size,
#      colours): the rdesktop window is mapped at the chosen size and shows the server's
#      log-in screen, and the row turns "Active";
#   2. rdesktop ends: the persistent row is started again;
#   3. the server stops: rdesktop ends, the restart's reachability check fails and starts
#      nothing, and connecting "Second Desktop" fails over to its secondary connection.
# Needs a display larger than the session window, so that the main window stays in view.
source "$(dirname "$0")/lib.sh"

needs rdesktop xrdp
real_rdesktop=$(command -v rdesktop)
: "${STORED_PASSWORD:?path of e2e_stored_password}" "${SCREENSHOTS:?folder for screenshots}"
private_xrdp="$(dirname "$0")/../../scripts/private-xrdp"
server="$work/server"
trap '"$private_xrdp" stop "$server"; stop_all; rm -rf "$work"' EXIT
mkdir -p "$server" "$SCREENSHOTS"

# rdesktop_pids: the rdesktop processes started by this program (children of its
# launching children).
rdesktop_pids() {
  local child
  for child in $(ps -o pid= --ppid "$pid"); do
    ps -o pid=,comm= --ppid "$child" | awk '$2 == "rdesktop" { print $1 }'
  done
}
session_window() { xdotool search --onlyvisible --name '^rdesktop - ' 2>/dev/null | head -1; }

# login_screen FILE: the server's background fills most of the window and its log-in box
# a good part of it (the colours of xrdp's log-in screen, from its configuration).
login_screen() {
  awk -v background="$(share_of "$1" '#009cb5')" -v box="$(share_of "$1" '#dedede')" \
    'BEGIN { exit !(background > 0.5 && box > 0.15) }'
}
shows_login_screen() { window_shot "$1" "$work/session.png" && login_screen "$work/session.png"; }

# show_logs: what Kestrelle and the server logged, for a run that failed.
show_logs() {
  local file
  for file in "$log" "$server/xrdp.out" "$server/xrdp.log"; do
    [ -f "$file" ] && { echo "== $file"; tail -20 "$file"; } >&2
  done
  return 0
}

new_case real_session
port=$("$private_xrdp" start "$server" "Kestrelle test server") || {
  fail "the private xrdp did not start"
  show_logs
  finish
}
password=Sesame42
# Columns: 5 server, 10 user name, 11 password (stored form), 13 size, 14 colours,
# 26 keyboard. "Real Desktop" is persistent; "Second Desktop" is not and has "Standby"
# (a recording fake) as its secondary connection.
rdp_record() {
  record "$1" RDP "Standard echo" "$port" "5=127.0.0.1:$port" 10=tester \
    "11=$("$STORED_PASSWORD" "$password" "$1")" 13=800x600 "14=High Color (16 bit)" \
    "26=Use Default" 33=0
}
master_file "$(rdp_record "Real Desktop")" "$(rdp_record "Second Desktop")" \
  "$(record Standby Other "Don't ping" 0 "8=standby-client --server backup")"
user_file "TRUE|Real Desktop|RDP|FALSE|TRUE|FALSE" "TRUE|Second Desktop|RDP|FALSE|FALSE|FALSE" \
  "FALSE|Standby|Other|FALSE|FALSE|FALSE"
ln -sfn "$real_rdesktop" "$fakes/rdesktop"
ln -s "$FAKE" "$fakes/standby-client"
# The pointer out of the way: a button under it would be drawn highlighted.
xdotool mousemove 1590 1190
start_kestrelle KEST_FAKE_SLEEP_MS=300
show_main_window

# 1. Connect the first row with the keyboard.
connect_next
wait_for 10 eval '[ -n "$(session_window)" ]' || fail "no rdesktop window within 10 s of Connect"
mapped_ms=$(now_ms)
session=$(session_window)
echo "Connect to session window mapped: $((mapped_ms - connect_ms)) ms"
if [ -n "$session" ]; then
  eval "$(xdotool getwindowgeometry --shell "$session")"
  [ "${WIDTH}x${HEIGHT}" = 800x600 ] || fail "the session window is ${WIDTH}x${HEIGHT}, not 800x600"
  wait_for 10 shows_login_screen "$session" || fail "the session window does not show the log-in screen"
  echo "Connect to log-in screen drawn: $(($(now_ms) - connect_ms)) ms"
  cp "$work/session.png" "$SCREENSHOTS/real_rdp_login.png"
fi
[ "$(rdesktop_pids | wc -l)" = 1 ] || fail "not one rdesktop process: $(rdesktop_pids | xargs)"
# rdesktop overwrites its password argument with one X per character, so that ps does not
# show it; the length still tells that the stored password came back whole.
expect_text "rdesktop's command line" \
  "rdesktop|-utester|-pXXXXXXXX|-g800x600|-a16|127.0.0.1:$port|" <(tr '\0' '|' </proc/"$(rdesktop_pids)"/cmdline)
# The same client with the same arguments, started by hand: its window is the second one.
hand_ms=$(now_ms)
"$real_rdesktop" -utester "-p$password" -g800x600 -a16 "127.0.0.1:$port" >/dev/null 2>&1 &
by_hand=$!
wait_for 10 eval '[ "$(xdotool search --onlyvisible --name "^rdesktop - " | wc -l)" = 2 ]' ||
  fail "rdesktop started by hand shows no window"
echo "By hand, rdesktop's window mapped: $(($(now_ms) - hand_ms)) ms"
kill -TERM "$by_hand"
wait "$by_hand" || true
expect_active
import -window root "$SCREENSHOTS/real_rdp_screen.png"
[ ! -e "$log" ] || ! grep -q '^Ping exit code' "$log" || fail "the reachability check failed"

# 2. rdesktop ends: the row goes back to "Not Connected" at the next poll and, being
# persistent, is started again (a launch starts only a row that is not "Active").
first=$(rdesktop_pids)
kill -TERM $first
wait_for 8 eval '[ -n "$(rdesktop_pids)" ] && [ "$(rdesktop_pids)" != "$first" ]' ||
  fail "the persistent connection was not started again"
# X may give the new window the id of the old one: wait until the old process is gone.
wait_for 5 eval '! kill -0 $first 2>/dev/null && [ -n "$(session_window)" ]' ||
  fail "the restarted session has no window"
wait_for 5 main_window_is "$work/main-active.png" || fail "the restarted row does not show \"Active\""

# 3. The server stops. rdesktop loses its connection and ends; the restart's check gets
# no answer, is logged, and starts nothing.
"$private_xrdp" stop "$server"
wait_for 10 eval '[ -z "$(rdesktop_pids)" ]' || fail "rdesktop still runs without its server"
refused_check() { [ -f "$log" ] && grep -qx 'Ping exit code 6f' "$log"; }
wait_for 8 refused_check || fail "no \"Ping exit code 6f\" in the log after the server stopped"
grep -qx "Connection to server 127.0.0.1 failed with error Connection refused (6f)." "$log" ||
  fail "the refused connection is not logged"
# "Second Desktop" fails its check too; the next poll sets it back to "Not Connected" and
# starts its secondary, which ends after 0.3 s and leaves every row of that branch as it
# was before Connect.
timeout 10 xdotool windowfocus --sync "$window" key Down
main_shot "$work/main-second-not-connected.png"
xdotool key alt+c
wait_for 8 line_count "$argv_log" 1 || fail "the secondary connection did not take over"
expect_text "the programs started without a server" $'standby-client|standby-client|--server|backup\n' \
  "$argv_log"
wait_for 8 main_window_is "$work/main-second-not-connected.png" ||
  fail "\"Second Desktop\" does not show \"Not Connected\" after the failed check"
sleep 1
[ -z "$(rdesktop_pids)" ] || fail "rdesktop was started without a server"
[ -z "$(session_window)" ] || fail "a session window is open without a server"
cp "$work/main-now.png" "$SCREENSHOTS/real_rdp_failover.png"

[ "$failures" -eq 0 ] || show_logs
finish
