# Debian's rdesktop, started by Kestrelle, against a private xrdp on a loopback port (the
# other programs are the recording fake). Connect "Real Desktop" (checked first on the
# port, user, stored password, size, colours): its window shows the server's log-in screen
# and the row turns "Active", and back when rdesktop ends.
source "$(dirname "$0")/lib.sh"
needs rdesktop xrdp
server="$work/server" && mkdir -p "$server"
cleanup=('"$scripts/private-xrdp" stop "$server"')
rdesktop_pids() { local c; for c in $(ps -o pid= --ppid "$pid"); do PARENTS=$c children_named rdesktop; done; }
# The colours of xrdp's log-in screen: its background fills most of it, the box a good part.
shows_login_screen() { import -window "$1" "$work/session.png" && above "$work/session.png" '#009cb5' 0.5 && above "$work/session.png" '#dedede' 0.15; }

new_case real_session
port=$("$scripts/private-xrdp" start "$server" "Kestrelle test server") || { fail "no private xrdp"; finish; }
# Column 11: the password Sesame42 as the master list stores it for "Real Desktop".
master_file "$(record "Real Desktop" RDP "Standard echo" "$port" "5=127.0.0.1:$port" 10=tester \
  '11=Yapjlp$1NUmdcpWqFcuVUxey7kWtsZmaQ' 13=800x600 "14=High Color (16 bit)" "26=Use Default")"
user_file "TRUE|Real Desktop|RDP|FALSE|FALSE|FALSE"
ln -sfn "$(command -v rdesktop)" "$fakes/rdesktop"
show_main_window

connect_next
wait_mapped "^rdesktop - " "$connect_ms" && session=$mapped_window || { fail "no rdesktop window after Connect"; finish; }
echo "Connect to session window mapped: $elapsed_ms ms"
wait_for 10 shows_login_screen "$session" || fail "the session window does not show the log-in screen"
echo "Connect to log-in screen drawn: $(($(now_ms) - connect_ms)) ms"
cp "$work/session.png" "$SCREENSHOTS/real_rdp_login.png"
# rdesktop overwrites its password argument with one X per character; the length still
# tells that the stored password came back whole.
expect_text "rdesktop's command line" "rdesktop|-utester|-pXXXXXXXX|-g800x600|-a16|127.0.0.1:$port|" \
  <(tr '\0' '|' </proc/"$(rdesktop_pids)"/cmdline)
BY_HAND_COUNT=2 by_hand '^rdesktop - ' rdesktop -utester -pSesame42 -g800x600 -a16 "127.0.0.1:$port"
echo "By hand, rdesktop's window mapped: $hand_ms ms"
expect_active
import -window root "$SCREENSHOTS/real_rdp_screen.png"

kill -TERM "$(rdesktop_pids)"
expect_not_connected "rdesktop ended"
[ "$failures" -eq 0 ] || tail -n 20 "$log" "$server/xrdp.out" "$server/xrdp.log" >&2 2>/dev/null || true
finish
