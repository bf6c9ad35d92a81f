# Files another local user may plant: a link or a file of theirs under the log's name, a
# support folder that is a link, theirs, or open to everyone, and a link at the compiled
# keyboard map's name. "Another user" is a file owned by a user id that is not ours:
# giving files away needs root. (A planted user's tree is refused at the store's level.)
source "$(dirname "$0")/lib.sh"
[ "$(id -u)" -eq 0 ] || { echo "SKIPPED: another user's files need root (chown)"; exit 77; }
keep() { printf 'kept\n' >"$1" && chmod 600 "$1"; }

# The program runs without a log and says so; the planted file is left as it was.
for case_name in log_link log_other; do
  new_case $case_name
  keep "$root/target"
  [ $case_name = log_link ] && ln -s "$root/target" "$log" || { keep "$log" && chown 4242:4242 "$log"; }
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
  new_case $case_name
  folder="$root/tmp/.kestrel"
  case $case_name in
    tmp_dir_link) folder="$root/elsewhere" && mkdir "$folder" && ln -s "$folder" "$root/tmp/.kestrel" ;;
    tmp_dir_open) mkdir -m 777 "$folder" ;;
    *) mkdir -m 755 "$folder" && chown 4242:4242 "$folder" ;;
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
finish
