# Texts that are not UTF-8 (Latin-1 from older tools, and bytes that are neither), with the
# accessibility modules loaded and a client reading every text as a screen reader does: the
# rows show, their editors open and an unchanged Save writes the very same bytes.
source "$(dirname "$0")/lib.sh"
# The ATK bridge finds the accessibility bus through the private session bus this test
# runs in (dbus-run-session) and keeps its socket here.
export XDG_RUNTIME_DIR="$work/runtime" && mkdir -m 700 "$XDG_RUNTIME_DIR" && mkdir -p "${SCREENSHOTS:=$work}"

new_case latin1_rows
master_file "$(record $'Caf\xe9' RDP "Don't ping" 3389 5=$'Z\xfcrich' 10=$'j\xf6rg' 12=$'\xff\xfe' 27='Modem (28.8 Kbps)' 33=00000)" \
  "$(record $'Lab\xff' XDM "Don't ping" 177 5=$'h\xf6st' 7=Indirect 26=$'d\xe4nisch')"
user_file $'TRUE|Caf\xe9|RDP|FALSE|FALSE|FALSE' $'TRUE|Lab\xff|XDM|FALSE|FALSE|FALSE'
cp "$root/etc/.kestrel/kestrel.master" "$work/master.before"
start_kestrelle GTK_MODULES=gail:atk-bridge
press "$(main_window)" alt+v
advanced=$(window_named "Advanced Configuration")
[ -n "$advanced" ] || fail "Advanced did not open"
# The editor of each row (the XDM one's host list holds a Latin-1 host) opens, is read
# whole by the system's Python (which has the AT-SPI bindings) and is saved unchanged.
for step in "Down Up|rdesktop connection" "Down|XDM connection"; do
  title=${step#*|}
  press "$advanced" ${step%%|*} alt+e
  editor=$(window_named "$title")
  [ -n "$editor" ] || { fail "the $title window did not open"; continue; }
  import -window "$editor" "$SCREENSHOTS/texts_$title.png"
  timeout 20 /usr/bin/python3 "$(dirname "$0")/read_accessibles.py" kestrelle || fail "no accessible $title"
  press "$editor" alt+s
  wait_for 5 eval '[ -z "$(xdotool search --onlyvisible --name "^$title\$")" ]' || fail "$title did not close"
done
! has_ended || fail "the program died: $(cat "$root/stderr")"
! grep -i "utf-8\|warning\|critical" "$root/stderr" || fail "texts were passed to GTK as they are"
cmp -s "$work/master.before" "$root/etc/.kestrel/kestrel.master" || fail "an unchanged Save changed the bytes"
finish
