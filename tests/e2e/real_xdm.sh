# The whole chain with a real display manager: Kestrelle and a private xdm run in a private
# network (scripts/private-net, scripts/private-xdm), and Kestrelle's XDM connections start
# "X", a nested Xephyr.
#   1. Connect "Lab Display" (mode "Query"): the X server's window is mapped, xdm's greeter
#      is drawn in it and the row turns "Active"; closing the X server brings the row back.
#      The same X command line started by hand gives the reference times.
#   2. Connect "Lab Broadcast" (mode "Broadcast"): xdm answers the broadcast on the
#      namespace's own network and puts its greeter on that display too.
source "$(dirname "$0")/lib.sh"

if ! command -v xdm >/dev/null || ! command -v Xephyr >/dev/null; then
  echo "SKIPPED: xdm or Xephyr is not installed (scripts/deps installs both)"
  exit 77
fi
[ "$(id -u)" -eq 0 ] || { echo "SKIPPED: the private network namespace needs root"; exit 77; }
: "${SCREENSHOTS:?folder for screenshots}"
private_net="$(dirname "$0")/../../scripts/private-net"
private_xdm="$(dirname "$0")/../../scripts/private-xdm"
net="$work/net" server="$work/server"
trap '"$private_xdm" stop "$server"; stop_all; "$private_net" stop "$net"; rm -rf "$work"' EXIT
mkdir -p "$server" "$SCREENSHOTS"

# greeter_drawn WINDOW: xdm's log-in box, in its grey, fills a good part of the window.
greeter_drawn() {
  window_shot "$1" "$work/greeter.png" &&
    awk -v grey="$(share_of "$work/greeter.png" '#bebebe')" 'BEGIN { exit !(grey > 0.2) }'
}
x_server_pid() { ps -o pid=,comm= --ppid "$pid" | awk '$2 == "Xephyr" { print $1 }'; }

new_case real_xdm
address=$("$private_net" start "$net") && "$private_net" run "$net" "$private_xdm" start "$server" >/dev/null ||
  { fail "the private xdm did not start"; finish; }
xdm_record() { record "$1" XDM "Don't ping" 0 "5=$address" "7=$2" 12=Automatic "13=$3" "26=Use Server Settings"; }
master_file "$(xdm_record "Lab Display" Query 5)" "$(xdm_record "Lab Broadcast" Broadcast 6)"
user_file "TRUE|Lab Display|XDM|FALSE|FALSE|FALSE" "TRUE|Lab Broadcast|XDM|FALSE|FALSE|FALSE"
ln -sfn "$server/bin/X" "$fakes/X"
run_in=("$private_net" run "$net")
xdotool mousemove 1590 1190
start_kestrelle
window=$(main_window)
[ -n "$window" ] || { fail "no main window"; finish; }
xdotool windowmove --sync "$window" 820 0

# 1. Query.
timeout 10 xdotool windowfocus --sync "$window" key Down
main_shot "$work/main-not-connected.png"
connect_ms=$(now_ms)
xdotool key alt+c
wait_mapped '^Kestrelle XDM$' "$connect_ms" || { fail "no X server window within 30 s of Connect"; finish; }
mapped_ms=$elapsed_ms
wait_for 20 greeter_drawn "$mapped_window" || fail "xdm's greeter does not appear on the X server"
greeter_ms=$(($(now_ms) - connect_ms))
cp "$work/greeter.png" "$SCREENSHOTS/real_xdm_greeter.png"
main_shot "$work/main-active.png"
[ "$(pixels_differing "$work/main-not-connected.png" "$work/main-active.png")" != 0 ] ||
  fail "the main window did not change on Connect: the row does not show \"Active\""
kill -TERM "$(x_server_pid)"
wait_for 8 main_window_is "$work/main-not-connected.png" ||
  fail "the row does not show \"Not Connected\" after the X server ended"

hand_ms=$(now_ms)
"$private_net" run "$net" "$server/bin/X" :5 -query "$address" >"$work/by-hand.out" 2>&1 &
by_hand=$!
wait_mapped '^Kestrelle XDM$' "$hand_ms" && wait_for 20 greeter_drawn "$mapped_window" ||
  fail "the X server started by hand shows no greeter"
echo "XDM Query, Connect to X server window mapped: $mapped_ms ms, to greeter drawn: $greeter_ms ms;" \
  "by hand: $elapsed_ms ms and $(($(now_ms) - hand_ms)) ms"
kill -TERM "$by_hand"
wait "$by_hand" || true

# 2. Broadcast, to the same port.
timeout 10 xdotool windowfocus --sync "$window" key Down alt+c
wait_for 20 eval 'grep -q "Starting X server on $address:6" "$server/xdm.log"' ||
  fail "xdm did not answer the broadcast"
wait_mapped '^Kestrelle XDM$' "$(now_ms)" && wait_for 20 greeter_drawn "$mapped_window" ||
  fail "no greeter on the broadcasting X server"

[ "$failures" -eq 0 ] || tail -20 "$server/xdm.log" >&2
finish
