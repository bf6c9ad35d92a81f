# Debian's rdesktop, started by Kestrelle, against a private xrdp on a loopback port (the
# other programs are the recording fake). Connect "Real Desktop" (checked first on the
# port, user, stored password, size, colours): the 800x600 window shows the server's log-in
# screen and the row turns "Active", and back when rdesktop ends. Then, the server stopped,
# Connect's check is refused and logged, and nothing starts.
source "$(dirname "$0")/lib.sh"
needs rdesktop xrdp
: "${STORED_PASSWORD:?path of e2e_stored_password}"
server="$work/server" && mkdir -p "$server"
cleanup=('"$scripts/private-xrdp" stop "$server"')
rdesktop_pids() { local c; for c in $(ps -o pid= --ppid "$pid"); do PARENTS=$c children_named rdesktop; done; }
session_window() { xdotool search --onlyvisible --name '^rdesktop - ' 2>/dev/null | head -1; }
# The colours of xrdp's log-in screen: its background fills most of it, the box a good part.
shows_login_screen() { import -window "$1" "$work/session.png" && above "$work/session.png" '#009cb5' 0.5 && above "$work/session.png" '#dedede' 0.15; }
show_logs() { tail -n 20 "$log" "$server/xrdp.out" "$server/xrdp.log" >&2 2>/dev/null || true; }

new_case real_session
port=$("$scripts/private-xrdp" start "$server" "Kestrelle test server") || { fail "no private xrdp"; show_logs; finish; }
password=Sesame42
rdp_record() {
  record "$1" RDP "Standard echo" "$port" "5=127.0.0.1:$port" 10=tester "11=$("$STORED_PASSWORD" "$password" "$1")" \
    13=800x600 "14=High Color (16 bit)" "26=Use Default"
}
master_file "$(rdp_record "Real Desktop")"
user_file "TRUE|Real Desktop|RDP|FALSE|FALSE|FALSE"
ln -sfn "$(command -v rdesktop)" "$fakes/rdesktop"
show_main_window

connect_next
wait_mapped "^rdesktop - " "$connect_ms" && session=$mapped_window || { fail "no rdesktop window after Connect"; finish; }
echo "Connect to session window mapped: $elapsed_ms ms"
eval "$(xdotool getwindowgeometry --shell "$session")"
[ "${WIDTH}x${HEIGHT}" = 800x600 ] || fail "the session window is ${WIDTH}x${HEIGHT}, not 800x600"
wait_for 10 shows_login_screen "$session" || fail "the session window does not show the log-in screen"
echo "Connect to log-in screen drawn: $(($(now_ms) - connect_ms)) ms"
cp "$work/session.png" "$SCREENSHOTS/real_rdp_login.png"
# rdesktop overwrites its password argument with one X per character; the length still
# tells that the stored password came back whole.
expect_text "rdesktop's command line" "rdesktop|-utester|-pXXXXXXXX|-g800x600|-a16|127.0.0.1:$port|" \
  <(tr '\0' '|' </proc/"$(rdesktop_pids)"/cmdline)
BY_HAND_COUNT=2 by_hand '^rdesktop - ' rdesktop -utester "-p$password" -g800x600 -a16 "127.0.0.1:$port"
echo "By hand, rdesktop's window mapped: $hand_ms ms"
expect_active
import -window root "$SCREENSHOTS/real_rdp_screen.png"
! grep -s '^Ping exit code' "$log" || fail "the reachability check failed"

kill -TERM "$(rdesktop_pids)"
expect_not_connected "rdesktop ended"

"$scripts/private-xrdp" stop "$server"
press "$window" alt+c
wait_for 8 grep -qsx 'Ping exit code 6f' "$log" || fail "no \"Ping exit code 6f\" with the server stopped"
grep -qx "Connection to server 127.0.0.1 failed with error Connection refused (6f)." "$log" || fail "refusal not logged"
sleep 1
[ -z "$(rdesktop_pids)$(session_window)" ] || fail "rdesktop was started without a server"
main_window_is "$work/not-connected.png" || fail "the row is not \"Not Connected\" after the refused check"
cp "$work/now.png" "$SCREENSHOTS/real_rdp_refused.png"
[ "$failures" -eq 0 ] || show_logs
finish
