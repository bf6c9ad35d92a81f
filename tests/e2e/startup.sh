# Start-up and exit of the real program: the instance guard, the log, the support folder
# and its instance file, and SIGTERM with and without an active session.
source "$(dirname "$0")/lib.sh"

new_case instance_guard
mkdir -p "$root/tmp/.kestrel"
: >"$root/tmp/.kestrel/running"
status=0
KESTRELLE_ROOT="$root" timeout 10 "$KESTRELLE" >"$root/stdout" 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "a left-over instance file: exit status $status, not 1"
expect_text "the refusal" $'Another instance of Kestrelle is already running.\n' "$root/stdout"
[ ! -e "$log" ] || fail "a refused start wrote the log"

# A start that fails before the main window (no display) leaves no instance file: the
# next start must not be refused.
new_case no_display
status=0
env -u DISPLAY KESTRELLE_ROOT="$root" timeout 10 "$KESTRELLE" >"$root/stdout" 2>&1 || status=$?
[ "$status" -ne 0 ] || fail "a start without a display ended with status 0"
sleep 0.5  # anything the program left running has finished by now
[ ! -e "$root/tmp/.kestrel/running" ] || fail "a start without a display left the instance file"

new_case clean_exit_on_sigterm
start_kestrelle
[ -n "$(main_window)" ] || fail "no main window"
[ -d "$root/tmp/.kestrel" ] || fail "no support folder tmp/.kestrel"
[ -f "$root/tmp/.kestrel/running" ] || fail "no instance file tmp/.kestrel/running"
expect_text "the log while running" $'Starting.\n' "$log"
[ "$(stat -c %a "$log")" = 666 ] || fail "the log's mode is $(stat -c %a "$log"), not 666"
kill -TERM "$pid"
collect_exit_status
[ "$status" = 0 ] || fail "SIGTERM with no session: exit status $status, not 0"
expect_text "the log after SIGTERM" \
  $'Starting.\nCaught signal 15.\nCleaning '"$root"$'/tmp/.kestrel and exiting with status 0.\n' "$log"
[ ! -e "$root/tmp/.kestrel" ] || fail "the support folder is left after exit"

# An automatic session that runs for two seconds: SIGTERM while it runs is answered with
# the warning box and the program stays; once the session has ended SIGTERM ends it.
new_case sigterm_with_active_session
master_file "$(record Intranet Web "Don't ping" 80 5=http://intranet.example.lan/)"
user_file "TRUE|Intranet|Web|TRUE|FALSE|FALSE"
start_kestrelle KEST_FAKE_SLEEP_MS=2000
window=$(main_window)
wait_for 5 line_count "$argv_log" 1 || fail "the automatic session did not start"
kill -TERM "$pid"
wait_for 5 eval '[ "$(visible_windows | wc -l)" -ge 2 ]' ||
  fail "no warning box after SIGTERM with an active session"
has_ended && fail "the program ended on SIGTERM while a session was active"
grep -qx "Caught signal 15." "$log" || fail "SIGTERM was not logged"
grep -q "^Cleaning" "$log" && fail "the program cleaned up while a session was active"
warning=$(visible_windows | grep -vx "$window" | head -1)
timeout 5 xdotool windowfocus --sync "$warning" key Return
wait_for 8 no_children || fail "the session was not reaped"
kill -TERM "$pid"
collect_exit_status
[ "$status" = 0 ] || fail "SIGTERM after the session ended: exit status $status, not 0"

# A hidden shell: the master list hides the window from users. A user who administers
# nothing and has no automatic connection gets a restart of the machine; one automatic
# connection is enough to keep it running.
hidden_shell() {
  # Rights come from the group file and from a primary group of 0: neither here.
  printf 'tester:x:%d:100:Tester:/home/user:/bin/sh\n' "$(id -u)" >"$root/etc/passwd"
  printf 'root:x:0:\n' >"$root/etc/group"
  ln -s "$FAKE" "$fakes/reboot"
  { printf 'Version 1.000\nDon'\''t show GUI\nDon'\''t show taskbar\nNot kiosk\n'
    record Intranet Web "Don't ping" 80 5=http://intranet.example.lan/; echo; } >"$root/etc/.kestrel/kestrel.master"
  user_file "TRUE|Intranet|Web|$1|FALSE|FALSE"
  start_kestrelle KEST_FAKE_SLEEP_MS=5000
  wait_for 5 line_count "$argv_log" 1 || fail "nothing was started"
  sleep 0.5
  [ -z "$(visible_windows)" ] || fail "the hidden shell showed a window"
}
new_case hidden_shell_with_nothing_to_run
hidden_shell FALSE
expect_text "the restart" $'reboot|reboot\n' "$argv_log"
new_case hidden_shell_with_an_automatic_connection
hidden_shell TRUE
expect_text "the automatic session only" $'firefox|firefox|http://intranet.example.lan/\n' "$argv_log"

finish
