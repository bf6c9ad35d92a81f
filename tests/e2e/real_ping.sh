# Ping first, for real: Kestrelle runs in a private network namespace that has loopback
# only and one rule that drops TCP packets to one port; the system's ping does the ICMP
# checks. The sessions are xmessage windows.
#   1. "Local Tools" (ICMP, 127.0.0.1): ping answers and the session starts; the same
#      window opened by hand gives the reference time.
#   2. "Far Tools" (ICMP, an address with no route): nothing starts, "Ping exit code" is logged.
#   3. "Silent Desktop" (TCP, the dropping port): the check gives up after the product's own
#      time-out and its secondary "Standby" takes over.
source "$(dirname "$0")/lib.sh"

needs ping nft xmessage
needs_root

new_case real_ping
dropped=$((20000 + RANDOM % 40000))
echo "table inet kestrelle { chain input { type filter hook input priority 0; tcp dport $dropped drop; }; }" \
  >"$work/rules.nft"
run_in=(unshare --net sh -c 'ip link set lo up && nft -f "$0" && exec "$@"' "$work/rules.nft")
master_file "$(record "Local Tools" Other "Standard echo" 0 5=127.0.0.1 "8=xmessage -title Local Local")" \
  "$(record "Far Tools" Other "Standard echo" 0 5=192.0.2.1 "8=custom-client far")" \
  "$(record "Silent Desktop" Other "Standard echo" "$dropped" 5=127.0.0.1 "8=custom-client silent")" \
  "$(record Standby Other "Don't ping" 0 "8=xmessage -title Standby Standby")"
user_file "TRUE|Local Tools|Other|FALSE|FALSE|FALSE" "TRUE|Far Tools|Other|FALSE|FALSE|FALSE" \
  "TRUE|Silent Desktop|Other|FALSE|FALSE|FALSE" "FALSE|Standby|Other|FALSE|FALSE|FALSE"
ln -sfn "$(command -v ping)" "$fakes/ping"
start_kestrelle
show_main_window

# 1. Local Tools.
connect_next
wait_mapped '^Local$' "$connect_ms" || fail "no session window after ping answered"
mapped_ms=$elapsed_ms
hand_ms=$(now_ms)
xmessage -title Local Local &
by_hand=$!
wait_for 10 eval '[ "$(xdotool search --onlyvisible --name "^Local$" 2>/dev/null | wc -l)" = 2 ]'
echo "Ping and Other, Connect to session window mapped: $mapped_ms ms; by hand: $(($(now_ms) - hand_ms)) ms"
kill "$by_hand"

# 2. Far Tools.
connect_next
wait_for 8 eval 'grep -qx "Ping exit code 200" "$log"' || fail "no \"Ping exit code 200\" for an address without a route"

# 3. Silent Desktop.
connect_next
wait_mapped '^Standby$' "$connect_ms" || fail "the secondary connection did not take over"
echo "Failover from a port that drops packets, Connect to the secondary's window: $elapsed_ms ms"
grep -qx "Connection to server 127.0.0.1 failed with error Connection timed out (6e)." "$log" ||
  fail "the time-out of the TCP check is not logged"
[ ! -e "$argv_log" ] || fail "a session started after a failed check: $(cat "$argv_log")"
[ "$failures" -eq 0 ] || cat "$log" >&2
finish
