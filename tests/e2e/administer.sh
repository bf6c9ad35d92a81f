# An administrator adds a Web connection from the windows and uses it: the main window's
# Advanced button, Add, the type chooser, the Web editor, Ok, then Connect, all with the
# keyboard as a person would.
source "$(dirname "$0")/lib.sh"

new_case add_web_connection
mkdir -p "$root/usr/bin"
ln -s "$FAKE" "$root/usr/bin/firefox"   # Firefox is installed: the chooser offers it
master_file "$(record Tools Other "Don't ping" 80 8=custom-client)"
user_file "TRUE|Tools|Other|FALSE|FALSE|FALSE"
start_kestrelle
window=$(main_window)
[ -n "$window" ] || fail "no main window"
window_named() { timeout 10 xdotool search --all --sync --onlyvisible --pid "$pid" --name "^$1\$" | head -1; }
press() { timeout 10 xdotool windowfocus --sync "$1" key --delay 100 "${@:2}"; }

press "$window" alt+v
advanced=$(window_named "Advanced Configuration")
[ -n "$advanced" ] || fail "Advanced did not open"
press "$advanced" alt+a
chooser=$(window_named "Add Connection")
[ -n "$chooser" ] || fail "the type chooser did not open"
# The chooser starts at "rdesktop"; "Firefox" is the choice above it. Enter means Ok.
press "$chooser" Up Return
editor=$(window_named "Web connection")
[ -n "$editor" ] || fail "the Web editor did not open"
timeout 10 xdotool windowfocus --sync "$editor" type --delay 20 "http://wiki.example.lan/start"
press "$editor" Tab
timeout 10 xdotool type --delay 20 "Wiki"
press "$editor" alt+s
wait_for 5 grep -qx Wiki "$root/etc/.kestrel/kestrel.master" || fail "the connection was not saved"
# Saving a new connection offers it to the administered user; Ok closes the window.
press "$advanced" alt+o
window=$(main_window)
press "$window" Down Down alt+c
wait_for 5 line_count "$argv_log" 1 || fail "Connect started nothing"
expect_text "the session started" $'firefox|firefox|http://wiki.example.lan/start\n' "$argv_log"
expect_text "the administrator's connections" \
  "$(printf 'Version 1.000\nTRUE\nTools\nOther\nFALSE\nFALSE\nFALSE\nTRUE\nWiki\nWeb\nFALSE\nFALSE\nFALSE')"$'\n' \
  "$root/home/user/kestrel.inf"
finish
