# The whole chain with a real display manager: Kestrelle and a private xdm run in a private
# network (scripts/private-net, scripts/private-xdm), and Kestrelle's XDM connections start
# "X", a nested Xephyr.
#   1. "Lab Display" (mode "Query"): the X server's window is mapped, xdm's greeter is drawn
#      in it and the row turns "Active"; ending the X server brings the row back. The same
#      X command line started by hand gives the reference times.
#   2. "Lab Broadcast" (mode "Broadcast"): xdm answers the broadcast on the private network
#      and puts its greeter on that display too.
source "$(dirname "$0")/lib.sh"
needs xdm Xephyr
needs_root
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
# greeter_after START_MS: the X server's window and then the greeter appear; sets
# mapped_ms and greeter_ms.
greeter_after() {
  wait_mapped '^Kestrelle XDM$' "$1" || return 1
  mapped_ms=$elapsed_ms
  wait_for 20 greeter_drawn "$mapped_window" && greeter_ms=$(($(now_ms) - $1))
}

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
show_main_window

# 1. Query.
connect_next
greeter_after "$connect_ms" || fail "no greeter of xdm on the X server"
cp "$work/greeter.png" "$SCREENSHOTS/real_xdm_greeter.png"
expect_active
kill -TERM "$(ps -o pid=,comm= --ppid "$pid" | awk '$2 == "Xephyr" { print $1 }')"
expect_not_connected "the X server ended"
figure="Connect to X server window mapped: $mapped_ms ms, to greeter drawn: $greeter_ms ms"
hand_ms=$(now_ms)
"$private_net" run "$net" "$server/bin/X" :5 -query "$address" >"$work/by-hand.out" 2>&1 &
by_hand=$!
greeter_after "$hand_ms" || fail "no greeter on the X server started by hand"
echo "XDM Query, $figure; by hand: $mapped_ms ms and $greeter_ms ms"
kill -TERM "$by_hand"
wait "$by_hand" || true

# 2. Broadcast, to the same port.
connect_next
greeter_after "$connect_ms" || fail "no greeter on the broadcasting X server"
grep -q "Starting X server on $address:6" "$server/xdm.log" || fail "xdm did not answer the broadcast"

[ "$failures" -eq 0 ] || tail -20 "$server/xdm.log" >&2
finish
