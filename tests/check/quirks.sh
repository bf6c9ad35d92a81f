# kestrelle-check on small roots, one quirk each: the exact report line and exit status.
source "$(dirname "$0")/../e2e/lib.sh"
: "${CHECK:?path of kestrelle-check}"

# check_case NAME STATUS LINE...: the check of the root ends with STATUS and reports every LINE.
check_case() {
  local want=$2 status=0 line && shift 2
  "$CHECK" --root "$root" >"$root/report" 2>&1 || status=$?
  [ "$status" = "$want" ] || fail "exit status $status, not $want"
  for line; do grep -qxF -- "$line" "$root/report" || { fail "no line: $line"; cat "$root/report" >&2; }; done
}

desk() { record Desk RDP "Don't ping" 3389 5=desk.example.lan "$@"; }
M=/etc/.kestrel/kestrel.master U=/home/user/kestrel.inf
zeros=$(printf '%0150d' 0)

new_case clean; master_file "$(record $'D\xe9sk' RDP "Don't ping" 3389 5=desk.example.lan)"
user_file $'TRUE|D\xe9sk|RDP|TRUE|TRUE|TRUE'
printf 'SHOW_TASKBAR=TRUE\nkiosk_browser="false"\n' >"$root/etc/zarvooptions"
check_case clean 0
grep -qE ': (error|warning): ' "$root/report" && fail "a clean root has findings"
# A byte is one JSON character, whatever the encoding.
"$CHECK" --root "$root" --json | python3 -c 'import json, sys; d = json.load(sys.stdin)
assert d["users"][0]["rows"][0]["name"] == d["connections"][0]["name"] == "D\xe9sk", d' || fail "JSON"

new_case version; master_file "$(desk)"; sed -i 1s/000/001/ "$root$M"
check_case version 2 "$M:1: error: first line is not \"Version 1.000\": Master connection list version miscompare, no connection is loaded"

new_case cut_short; master_file "$(desk)"; sed -i 20q "$root$M"
check_case cut_short 2 "$M:5: error: record \"Desk\" is cut short by the end of the file: its last columns repeat the line before"

new_case long_lines; master_file "$(desk 32="$zeros")" "$(record Desk2 RDP "Don't ping" 0 32="$zeros")"
check_case long_lines 2 \
  "$M:37: error: line longer than 101 characters: cut after its 100th character, \"...0000000000\", the rest is thrown away" \
  "$M:72: error: second line longer than 101 characters: its rest after the 100th character is read as the next line, and every later line is misaligned"

new_case columns; master_file "$(desk 2="standard echo" 11=AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAB 14=Truecolor 33=x1)" \
  "$(desk)" "$(record Alpha RDX "Don't ping" 0)"
check_case columns 2 "$M:7: error: \"standard echo\" is no flag word and counts as FALSE" \
  "$M:16: error: password of 40 characters is not padded: it comes back as 3 characters" \
  "$M:19: error: column 14 \"Truecolor\" matches no choice and adds nothing" \
  "$M:38: error: column 33 \"x1\" is no decimal number and counts as 0" \
  "$M:40: warning: connection \"Desk\" (RDP) again, first on line 5: only the first is ever started" \
  "$M:76: warning: connection \"Alpha\": type \"RDX\" is none of the six: it starts nothing" \
  "$M:75: warning: name \"Alpha\" comes after \"Desk\": the list is shown sorted"
[ "$(grep -m1 '^connection' "$root/report")" = 'connection "Alpha" (RDX)' ] || fail "not in the list's order"

new_case tree; master_file "$(desk)"
user_file "TRUE|Gone|RDP|FALSE|FALSE|FALSE" "FALSE|Desk|RDP|FALSE|FALSE|TRUE" "FALSE|Desk|RDP|yes|TRUE|FALSE"
check_case tree 2 "$U:2: warning: row Gone (RDP) names no connection of the master list and is dropped" \
  "$U:8: warning: secondary row Desk (RDP) has no primary row before it and becomes one" \
  "$U:8: warning: row \"Desk\" (RDP) has Prompt without Persistent: Prompt takes no effect" \
  "$U:17: error: \"yes\" is no flag word and counts as FALSE" \
  "$U:14: warning: secondary row \"Desk\" (RDP) carries flags: only a primary row's take effect"

new_case citrix; master_file "$(record Apps ICA "Don't ping" 1494 5=apps.example.lan 6=Default 7=Default)"
printf '[WFClient]\nVersion=1\n\n[ApplicationServers]\n' >"$root/etc/.kestrel/appsrv.ini"
printf '# the taskbar: show_taskbar=false is not true here\n' >"$root/etc/zarvooptions"
printf 'Version=2\nHotkey16Char=F1\n' >"$root/etc/.kestrel/wfclient.ini"
check_case citrix 2 \
  "/etc/.kestrel/appsrv.ini:5: error: out of step with the master list: ends where the master list writes \"Apps=\"" \
  "/etc/zarvooptions:1: error: line mentions show_taskbar and so sets it to TRUE" \
  "/etc/.kestrel/wfclient.ini:2: error: \"Hotkey16Char=F1\" is numbered beyond the 15 hotkeys and is ignored" \
  "/etc/.kestrel/wfclient.ini:0: warning: no \"[WFClient]\" line: saving the server locations or the global settings drops their keys and writes none"

finish
