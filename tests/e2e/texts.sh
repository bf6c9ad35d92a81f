# Texts in the files that are not UTF-8 (Latin-1 from older tools, and bytes that are
# neither), with the accessibility modules loaded and a client reading every text as a
# screen reader does: the rows show, their editors open and an unchanged Save writes the
# very same bytes.
source "$(dirname "$0")/lib.sh"

# The ATK bridge finds the accessibility bus through the private session bus this test
# runs in (dbus-run-session) and keeps its socket here.
export XDG_RUNTIME_DIR="$work/runtime"
mkdir -m 700 "$XDG_RUNTIME_DIR"

new_case latin1_rows
master_file "$(record $'Caf\xe9' RDP "Don't ping" 3389 5=$'Z\xfcrich' 10=$'j\xf6rg' 12=$'\xff\xfe' 27='Modem (28.8 Kbps)' 33=00000)" \
  "$(record $'Lab\xff' XDM "Don't ping" 177 5=$'h\xf6st' 7=Indirect 26=$'d\xe4nisch')"
user_file $'TRUE|Caf\xe9|RDP|FALSE|FALSE|FALSE' $'TRUE|Lab\xff|XDM|FALSE|FALSE|FALSE'
cp "$root/etc/.kestrel/kestrel.master" "$work/master.before"
start_kestrelle GTK_MODULES=gail:atk-bridge
window=$(main_window)
[ -n "$window" ] || fail "no main window"
window_named() { timeout 10 xdotool search --all --sync --onlyvisible --pid "$pid" --name "^$1\$" | head -1; }
press() { timeout 10 xdotool windowfocus --sync "$1" key --delay 100 "${@:2}"; }

press "$window" alt+v
advanced=$(window_named "Advanced Configuration")
[ -n "$advanced" ] || fail "Advanced did not open"
# The editor of each row (the RDP row's, then the XDM one's, whose host list holds a
# Latin-1 host) opens and is saved unchanged.
for step in "Down Up|rdesktop connection" "Down|XDM connection"; do
  press "$advanced" ${step%%|*} alt+e
  editor=$(window_named "${step#*|}")
  [ -n "$editor" ] || { fail "the ${step#*|} window did not open"; continue; }
  [ -z "${SCREENSHOTS:-}" ] || import -window "$editor" "$SCREENSHOTS/texts_${step#*|}.png"
  # The system's Python, which has the AT-SPI bindings.
  timeout 20 /usr/bin/python3 "$(dirname "$0")/read_accessibles.py" kestrelle || fail "no accessible ${step#*|}"
  press "$editor" alt+s
  wait_for 5 bash -c "! xdotool search --onlyvisible --name '^${step#*|}\$'" || fail "${step#*|} did not close"
done
kill -0 "$pid" 2>/dev/null || fail "the program died: $(cat "$root/stderr")"
! grep -i "utf-8\|warning\|critical" "$root/stderr" || fail "texts were passed to GTK as they are"
cmp -s "$work/master.before" "$root/etc/.kestrel/kestrel.master" || fail "an unchanged Save changed the bytes"
finish
