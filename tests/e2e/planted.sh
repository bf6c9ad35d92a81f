# Files another local user may plant in /tmp: a link or a file of theirs under the log's
# name, and a support folder that is a link, theirs, or open to everyone. "Another user"
# is a file owned by a user id that is not ours; giving files away needs root.
source "$(dirname "$0")/lib.sh"

other_uid=4242
if [ "$(id -u)" -ne 0 ]; then
  echo "SKIPPED: planting another user's files needs root (chown); running the link cases only"
fi
as_other() { [ "$(id -u)" -eq 0 ] && chown -h "$other_uid:$other_uid" "$@"; }

# The program runs without a log and says so; the planted file is left as it was.
log_refused() {
  start_kestrelle
  [ -n "$(main_window)" ] || fail "no main window"
  grep -q "^Running without a log" "$root/stderr" || fail "no word on standard error about the log"
  expect_text "the planted file" $'kept\n' "$1"
  [ "$(stat -c %a "$1")" = "$2" ] || fail "the planted file's mode is $(stat -c %a "$1"), not $2"
  kill -TERM "$pid"
  collect_exit_status
  [ "$status" = 0 ] || fail "SIGTERM: exit status $status, not 0"
}

new_case log_is_a_link
printf 'kept\n' >"$root/target"
chmod 600 "$root/target"
ln -s "$root/target" "$log"
log_refused "$root/target" 600

if [ "$(id -u)" -eq 0 ]; then
  new_case log_of_another_user
  printf 'kept\n' >"$log"
  chmod 644 "$log"
  as_other "$log"
  log_refused "$log" 644
fi

# A support folder that is refused: the error dialog, closed with Return, then exit
# status 1, and nothing made inside it.
tmp_dir_refused() {
  start_kestrelle
  local dialog
  dialog=$(timeout 15 xdotool search --all --sync --onlyvisible --pid "$pid" --name '^Kestrelle$' | head -1)
  [ -n "$dialog" ] || fail "no error dialog"
  timeout 5 xdotool windowfocus --sync "$dialog" key Return
  collect_exit_status
  [ "$status" = 1 ] || fail "exit status $status, not 1"
  [ ! -e "$1/running" ] || fail "the instance file was made in the refused folder"
}

new_case tmp_dir_is_a_link
mkdir -p "$root/elsewhere"
ln -s "$root/elsewhere" "$root/tmp/.kestrel"
tmp_dir_refused "$root/elsewhere"

new_case tmp_dir_writable_by_others
mkdir -m 777 "$root/tmp/.kestrel"
chmod 777 "$root/tmp/.kestrel"
tmp_dir_refused "$root/tmp/.kestrel"

if [ "$(id -u)" -eq 0 ]; then
  new_case tmp_dir_of_another_user
  mkdir -m 755 "$root/tmp/.kestrel"
  as_other "$root/tmp/.kestrel"
  tmp_dir_refused "$root/tmp/.kestrel"
fi

# The compiled keyboard map: a link planted at its name in /tmp is not written through;
# the map is then not compiled and X starts without it being made.
new_case xkm_is_a_link
master_file "$(record "Lab Display" XDM "Don't ping" 0 5=lab.example.lan 7=Query 12=7 13=1 26=de)"
user_file "TRUE|Lab Display|XDM|TRUE|FALSE|FALSE"
printf 'kept\n' >"$root/target"
ln -s "$root/target" "$root/tmp/tmp.xkm"
start_kestrelle
wait_for 10 line_count "$argv_log" 1 || fail "X did not start"
expect_text "only X ran" $'X|X|:1|vt7|+kb|-xkbmap|tmp.xkm|-query|lab.example.lan\n' "$argv_log"
expect_text "the link's target" $'kept\n' "$root/target"
[ -L "$root/tmp/tmp.xkm" ] || fail "the planted link was removed"
# main_window finds any window titled Kestrelle: this one must be gone before the next case.
stop_all

new_case tmp_dir_made_private
start_kestrelle
[ -n "$(main_window)" ] || fail "no main window"
[ "$(stat -c %a "$root/tmp/.kestrel")" = 700 ] || fail "the support folder's mode is $(stat -c %a "$root/tmp/.kestrel"), not 700"
[ ! -s "$root/stderr" ] || fail "unexpected words on standard error: $(cat "$root/stderr")"
kill -TERM "$pid"
collect_exit_status

# A user's tree in a home that another user made a FIFO or a link to a file of root's:
# the program starts, Advanced opens on that user, and Save refuses with the message,
# logs why, and leaves the FIFO, the link and its target as they were.
home_tree_refused() {
  start_kestrelle
  local window advanced dialog
  window=$(main_window)
  [ -n "$window" ] || { fail "no main window"; stop_all; return; }
  timeout 10 xdotool windowfocus --sync "$window" key alt+v
  advanced=$(timeout 10 xdotool search --all --sync --onlyvisible --pid "$pid" --name '^Advanced Configuration$' | head -1)
  [ -n "$advanced" ] || { fail "Advanced did not open"; stop_all; return; }
  timeout 10 xdotool windowfocus --sync "$advanced" key alt+s
  dialog=$(main_window)
  [ -n "$dialog" ] || fail "no error dialog"
  grep -q "^Not writing $root/home/user/kestrel.inf" "$log" || fail "the refusal was not logged"
  stop_all
}

new_case home_tree_is_a_fifo
mkfifo "$root/home/user/kestrel.inf"
as_other "$root/home/user/kestrel.inf" || true
home_tree_refused
[ -p "$root/home/user/kestrel.inf" ] || fail "the FIFO was replaced"

new_case home_tree_is_a_link
printf 'kept\n' >"$root/target"
ln -s "$root/target" "$root/home/user/kestrel.inf"
as_other "$root/home/user/kestrel.inf" || true
home_tree_refused
expect_text "the link's target" $'kept\n' "$root/target"
[ -L "$root/home/user/kestrel.inf" ] || fail "the link was replaced"

finish
