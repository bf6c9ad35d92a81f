# A real display manager: Kestrelle and a private xdm in a private network; "X" is a nested
# Xephyr. "Lab Display" (Query): xdm's greeter is drawn in the X server's window, the row turns
# "Active" and comes back when X ends; the same X by hand gives the reference times.
# "Lab Broadcast": xdm answers the broadcast on the private network.
source "$(dirname "$0")/lib.sh"
NEEDS_ROOT=1 needs xdm Xephyr
net="$work/net" server="$work/server" && mkdir -p "$server"
cleanup=('"$scripts/private-xdm" stop "$server"' '"$scripts/private-net" stop "$net"')
# greeter_after START_MS: the X server's window and then xdm's grey log-in box filling a
# good part of it appear; sets mapped_ms and greeter_ms.
greeter_after() {
  wait_mapped '^Kestrelle XDM$' "$1" && mapped_ms=$elapsed_ms || return 1
  wait_for 20 eval 'import -window "$mapped_window" "$work/greeter.png" && above "$work/greeter.png" "#bebebe" 0.2' &&
    greeter_ms=$(($(now_ms) - $1))
}

new_case real_xdm
address=$("$scripts/private-net" start "$net") && "$scripts/private-net" run "$net" "$scripts/private-xdm" start "$server" >/dev/null ||
  { fail "the private xdm did not start"; finish; }
xdm_record() { record "$1" XDM "Don't ping" 0 "5=$address" "7=$2" 12=Automatic "13=$3" "26=Use Server Settings"; }
master_file "$(xdm_record "Lab Display" Query 5)" "$(xdm_record "Lab Broadcast" Broadcast 6)"
user_file "TRUE|Lab Display|XDM|FALSE|FALSE|FALSE" "TRUE|Lab Broadcast|XDM|FALSE|FALSE|FALSE"
ln -sfn "$server/bin/X" "$fakes/X"
run_in=("$scripts/private-net" run "$net")
show_main_window

connect_next
greeter_after "$connect_ms" || fail "no greeter of xdm on the X server"
cp "$work/greeter.png" "$SCREENSHOTS/real_xdm_greeter.png"
expect_active
kill -TERM "$(children_named Xephyr)"
expect_not_connected "the X server ended"
figure="Connect to X server window mapped: $mapped_ms ms, to greeter drawn: $greeter_ms ms"
hand_ms=$(now_ms)
"${run_in[@]}" "$server/bin/X" :5 -query "$address" >/dev/null 2>&1 &
by_hand=$!
greeter_after "$hand_ms" || fail "no greeter on the X server started by hand"
echo "XDM Query, $figure; by hand: $mapped_ms ms and $greeter_ms ms"
kill -TERM "$by_hand" && wait "$by_hand" || true

connect_next
greeter_after "$connect_ms" || fail "no greeter on the broadcasting X server"
grep -q "Starting X server on $address:6" "$server/xdm.log" || fail "xdm did not answer the broadcast"
[ "$failures" -eq 0 ] || tail -20 "$server/xdm.log" >&2
finish
