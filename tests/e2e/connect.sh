# Connecting from the main window with the keyboard as a user does, and the restart of a
# persistent connection whose session ends.
source "$(dirname "$0")/lib.sh"

new_case connect_and_restart
master_file "$(record Intranet Web "Don't ping" 80 5=http://intranet.example.lan/)" \
  "$(record "Lab Display" XDM "Don't ping" 0 5=lab.example.lan 7=Broadcast 12=Automatic 13=1 \
      26="Use Server Settings")"
user_file "TRUE|Lab Display|XDM|FALSE|FALSE|FALSE" "TRUE|Intranet|Web|FALSE|TRUE|FALSE"
start_kestrelle KEST_FAKE_SLEEP_MS=300
window=$(main_window)
[ -n "$window" ] || fail "no main window"
sleep 0.5
[ ! -s "$argv_log" ] || fail "a session started before Connect was pressed"
# The first Down selects the row under the cursor, the second moves to "Intranet";
# Alt+C presses "_Connect".
timeout 10 xdotool windowfocus --sync "$window" key --delay 150 Down Down alt+c
wait_for 5 line_count "$argv_log" 1 || fail "Connect started nothing"
# The session ends after 0.3 s; the next status poll (every 3 s) starts it again.
wait_for 8 line_count "$argv_log" 2 || fail "the persistent connection was not restarted"
session=$'firefox|firefox|http://intranet.example.lan/\n'
expect_text "the sessions started" "$session$session" <(head -2 "$argv_log")

finish
