# Files another local user may plant: a link or a file of theirs under the log's name, a
# support folder that is a link, theirs, or open to everyone, a link at the compiled
# keyboard map's name, and a FIFO or link as a user's tree. "Another user" is a file owned
# by a user id that is not ours; giving files away needs root, without it those cases skip.
source "$(dirname "$0")/lib.sh"
[ "$(id -u)" -eq 0 ] || echo "SKIPPED: the cases of another user's files need root (chown)"
# planted CASE: starts CASE unless it needs root (a name ending in _other) and we are not.
planted() { [[ $1 != *_other || $(id -u) -eq 0 ]] && new_case "$1"; }
as_other() { [ "$(id -u)" -ne 0 ] || chown -h 4242:4242 "$@"; }
keep() { printf 'kept\n' >"$1" && chmod 600 "$1"; }

# The program runs without a log and says so; the planted file is left as it was.
for case_name in log_link log_other; do
  planted $case_name || continue
  keep "$root/target"
  [ $case_name = log_link ] && ln -s "$root/target" "$log" || { keep "$log" && as_other "$log"; }
  start_kestrelle
  [ -n "$(main_window)" ] || fail "no main window"
  grep -q "^Running without a log" "$root/stderr" || fail "no word on standard error about the log"
  expect_text "the planted file" $'kept\n' "$(realpath "$log")"
  [ "$(stat -L -c %a "$log")" = 600 ] || fail "the planted file's mode is $(stat -L -c %a "$log"), not 600"
  stop_kestrelle
done

# A refused support folder: the error dialog, closed with Return, exit status 1, and
# nothing made inside it.
for case_name in tmp_dir_link tmp_dir_open tmp_dir_other; do
  planted $case_name || continue
  folder="$root/tmp/.kestrel"
  case $case_name in
    tmp_dir_link) folder="$root/elsewhere" && mkdir "$folder" && ln -s "$folder" "$root/tmp/.kestrel" ;;
    tmp_dir_open) mkdir -m 777 "$folder" && chmod 777 "$folder" ;;
    *) mkdir -m 755 "$folder" && as_other "$folder" ;;
  esac
  start_kestrelle
  press "$(main_window)" Return || fail "no error dialog"
  wait_for 5 has_ended || fail "the program did not end"
  status=0 && wait "$pid" || status=$?
  [ "$status" = 1 ] || fail "exit status $status, not 1"
  [ ! -e "$folder/running" ] || fail "the instance file was made in the refused folder"
done

# A link at the compiled keyboard map's name is not written through: the map is not
# compiled and X starts without it.
new_case xkm_link
master_file "$(record "Lab Display" XDM "Don't ping" 0 5=lab.example.lan 7=Query 12=7 13=1 26=de)"
user_file "TRUE|Lab Display|XDM|TRUE|FALSE|FALSE"
keep "$root/target" && ln -s "$root/target" "$root/tmp/tmp.xkm"
start_kestrelle
wait_for 10 line_count "$argv_log" 1 || fail "X did not start"
expect_text "only X ran" $'X|X|:1|vt7|+kb|-xkbmap|tmp.xkm|-query|lab.example.lan\n' "$argv_log"
expect_text "the link's target" $'kept\n' "$root/target"
[ -L "$root/tmp/tmp.xkm" ] || fail "the planted link was removed"
stop_all    # its main window, titled Kestrelle, must be gone before the next case

new_case tmp_dir_made_private
start_kestrelle
[ -n "$(main_window)" ] || fail "no main window"
[ "$(stat -c %a "$root/tmp/.kestrel")" = 700 ] || fail "the support folder's mode is $(stat -c %a "$root/tmp/.kestrel"), not 700"
[ ! -s "$root/stderr" ] || fail "unexpected words on standard error: $(cat "$root/stderr")"
stop_kestrelle

# A user's tree that another user made a FIFO or a link to a file of root's: Advanced
# opens on that user, and Save refuses with the message, logs why, and leaves the FIFO,
# the link and its target as they were.
for case_name in home_tree_fifo home_tree_link; do
  new_case $case_name
  tree="$root/home/user/kestrel.inf"
  [ $case_name = home_tree_fifo ] && mkfifo "$tree" || { keep "$root/target" && ln -s "$root/target" "$tree"; }
  as_other "$tree"
  start_kestrelle
  press "$(main_window)" alt+v
  press "$(window_named "Advanced Configuration")" alt+s || fail "Advanced did not open"
  [ -n "$(main_window)" ] || fail "no error dialog"
  grep -q "^Not writing $tree" "$log" || fail "the refusal was not logged"
  stop_all
  [ -p "$tree" ] || { [ -L "$tree" ] && [ "$(cat "$root/target")" = kept ]; } || fail "the planted tree was replaced"
done
finish
