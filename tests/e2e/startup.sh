# Start-up and exit of the real program: the instance guard, the log, the private support
# folder and its instance file, SIGTERM with and without an active session, the hidden shell.
source "$(dirname "$0")/lib.sh"

new_case instance_guard
mkdir -p "$root/tmp/.kestrel" && : >"$root/tmp/.kestrel/running"
status=0 && KESTRELLE_ROOT="$root" timeout 10 "$KESTRELLE" >"$root/stdout" 2>&1 || status=$?
[ "$status" -eq 1 ] || fail "a left-over instance file: exit status $status, not 1"
expect_text "the refusal" $'Another instance of Kestrelle is already running.\n' "$root/stdout"
[ ! -e "$log" ] || fail "a refused start wrote the log"

# A start that fails before the main window leaves no instance file to refuse the next.
new_case no_display
env -u DISPLAY KESTRELLE_ROOT="$root" timeout 10 "$KESTRELLE" >"$root/stdout" 2>&1 && fail "no display, status 0"
sleep 0.5
[ ! -e "$root/tmp/.kestrel/running" ] || fail "a start without a display left the instance file"

new_case clean_exit_on_sigterm
start_kestrelle
[ -n "$(main_window)" ] || fail "no main window"
[ -f "$root/tmp/.kestrel/running" ] || fail "no instance file tmp/.kestrel/running"
[ "$(stat -c %a "$root/tmp/.kestrel")" = 700 ] || fail "the support folder's mode is $(stat -c %a "$root/tmp/.kestrel"), not 700"
expect_text "the log while running" $'Starting.\n' "$log"
[ "$(stat -c %a "$log")" = 666 ] || fail "the log's mode is $(stat -c %a "$log"), not 666"
stop_kestrelle
expect_text "the log after SIGTERM" \
  $'Starting.\nCaught signal 15.\nCleaning '"$root"$'/tmp/.kestrel and exiting with status 0.\n' "$log"
[ ! -e "$root/tmp/.kestrel" ] || fail "the support folder is left after exit"
[ ! -s "$root/stderr" ] || fail "unexpected words on standard error: $(cat "$root/stderr")"

# SIGTERM while an automatic session runs is answered with the warning box and the
# program stays; once the session has ended SIGTERM ends it.
new_case sigterm_with_active_session
master_file "$(record Intranet Web "Don't ping" 80 5=http://intranet.example.lan/)"
user_file "TRUE|Intranet|Web|TRUE|FALSE|FALSE"
start_kestrelle KEST_FAKE_SLEEP_MS=2000
window=$(main_window)
wait_for 5 line_count "$argv_log" 1 || fail "the automatic session did not start"
kill -TERM "$pid"
wait_for 5 eval '[ "$(visible_windows | wc -l)" -ge 2 ]' || fail "no warning box after SIGTERM with an active session"
! has_ended || fail "the program ended on SIGTERM while a session was active"
expect_text "the log" $'Starting.\nCaught signal 15.\n' "$log"
press "$(visible_windows | grep -vx "$window" | head -1)" Return
wait_for 8 eval '[ -z "$(ps -o pid= --ppid "$pid")" ]' || fail "the session was not reaped"
stop_kestrelle

# The master list hides the window: a user who administers nothing (no group file rights,
# primary group not 0) and has no automatic connection gets a reboot; one is enough to stay.
for automatic in FALSE TRUE; do
  new_case "hidden_shell_automatic_$automatic"
  printf 'tester:x:%d:100:Tester:/home/user:/bin/sh\n' "$(id -u)" >"$root/etc/passwd"
  printf 'root:x:0:\n' >"$root/etc/group"
  GUI="Don't show GUI" master_file "$(record Intranet Web "Don't ping" 80 5=http://intranet.example.lan/)"
  user_file "TRUE|Intranet|Web|$automatic|FALSE|FALSE"
  start_kestrelle KEST_FAKE_SLEEP_MS=5000
  wait_for 5 line_count "$argv_log" 1 || fail "nothing was started"
  sleep 0.5
  [ -z "$(visible_windows)" ] || fail "the hidden shell showed a window"
  [ $automatic = TRUE ] && expected=$'firefox|firefox|http://intranet.example.lan/\n' || expected=$'reboot|reboot\n'
  expect_text "what started" "$expected" "$argv_log"
done
finish
