# Automatic connections at start-up: the argument vector of every connection type as the
# session programs receive it, and as kestrelle-check promises it.
source "$(dirname "$0")/lib.sh"

# expect_lines WHAT EXPECTED FILE: the same lines in any order (the sessions start concurrently).
expect_lines() { expect_text "$1" "$(LC_ALL=C sort <<<"$2")"$'\n' <(LC_ALL=C sort "$3"); }

new_case every_type
master_file "$(records_from automatic.master)"
# The user's tree has every row Automatic; the secondary "Backup Desktop" is not started, as
# start-up visits primary rows only. Beside it, the X set-up files and rdesktop's keymap list.
cp -R "$golden/automatic.root/." "$root/"
start_kestrelle
wait_for 10 line_count "$argv_log" 8 || fail "not every automatic session started"
# Only the first eight: when "Office Desktop" has ended, the first status poll fails over
# to its secondary. The DAS client is started with an empty argument vector; Linux then
# hands it one empty argument, which the fake records as an empty field after the name.
head -8 "$argv_log" >"$root/started"
expect_lines "the argument vectors" "$(sed "s|@ROOT@|$root|g" "$golden/automatic.argv")" "$root/started"
# kestrelle-check on the same root promises the same vectors, the secondary's too. Its exit
# status tells of the appsrv.ini that no save has written yet.
wait_for 10 line_count "$argv_log" 9 || fail "the secondary did not start"
{ "$KESTRELLE_CHECK" --root "$root" --json || true; } | python3 -c '
import json, os, shlex, sys
for c in json.load(sys.stdin)["connections"]:
    if "xkbcomp" in c: print("|".join(["xkbcomp"] + shlex.split(c["xkbcomp"])))
    print("|".join([os.path.basename(c["program"])] + (c["argv"] or [""])))' >"$root/promised" ||
  fail "the JSON of kestrelle-check does not parse"
expect_lines "the vectors kestrelle-check promises" "$(cat "$argv_log")" "$root/promised"

finish
