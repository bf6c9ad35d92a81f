# kestrelle-check on small roots, one quirk each: the exact report lines and exit status,
# listed in golden/quirks.report under "== CASE STATUS" (a case ends at a blank line).
source "$(dirname "$0")/../e2e/lib.sh"
: "${CHECK:?path of kestrelle-check}"

# check_case: the check of the case's root ends with its status and reports every line listed.
check_case() {
  local status=0 line && "$CHECK" --root "$root" >"$root/report" 2>&1 || status=$?
  grep -qx "== $case_name $status" "$golden/quirks.report" || fail "exit status $status"
  while IFS= read -r line; do
    grep -qxF -- "$line" "$root/report" || { fail "no line: $line"; cat "$root/report" >&2; }
  done < <(sed -n "/^== $case_name /,/^\$/{/^==/d;/^\$/d;p}" "$golden/quirks.report")
}

desk() { record Desk RDP "Don't ping" 3389 5=desk.example.lan "$@"; }
zeros=$(printf '%0150d' 0)

new_case clean; master_file "$(record $'D\xe9sk' RDP "Don't ping" 3389 5=desk.example.lan)"
user_file $'TRUE|D\xe9sk|RDP|TRUE|TRUE|TRUE'
printf 'SHOW_TASKBAR=TRUE\nkiosk_browser="false"\n' >"$root/etc/zarvooptions"
check_case
grep -qE ': (error|warning): ' "$root/report" && fail "a clean root has findings"
# A byte is one JSON character, whatever the encoding.
"$CHECK" --root "$root" --json | python3 -c 'import json, sys; d = json.load(sys.stdin)
assert d["users"][0]["rows"][0]["name"] == d["connections"][0]["name"] == "D\xe9sk", d' || fail "JSON"

new_case version; master_file "$(desk)"; sed -i 1s/000/001/ "$root/etc/.kestrel/kestrel.master"
check_case

new_case cut_short; master_file "$(desk)"; sed -i 20q "$root/etc/.kestrel/kestrel.master"
check_case

new_case long_lines; master_file "$(desk 32="$zeros")" "$(record Desk2 RDP "Don't ping" 0 32="$zeros")"
check_case

new_case columns; master_file "$(desk 2="standard echo" 11=AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAB 14=Truecolor 33=x1)" \
  "$(desk)" "$(record Alpha RDX "Don't ping" 0)"
check_case
[ "$(grep -m1 '^connection' "$root/report")" = 'connection "Alpha" (RDX)' ] || fail "not in the list's order"

new_case tree; master_file "$(desk)"
user_file "TRUE|Gone|RDP|FALSE|FALSE|FALSE" "FALSE|Desk|RDP|FALSE|FALSE|TRUE" "FALSE|Desk|RDP|yes|TRUE|FALSE"
check_case

new_case citrix; master_file "$(record Apps ICA "Don't ping" 1494 5=apps.example.lan 6=Default 7=Default)"
printf '[WFClient]\nVersion=1\n\n[ApplicationServers]\n' >"$root/etc/.kestrel/appsrv.ini"
printf '# the taskbar: show_taskbar=false is not true here\n' >"$root/etc/zarvooptions"
printf 'Version=2\nHotkey16Char=F1\n' >"$root/etc/.kestrel/wfclient.ini"
check_case

finish
