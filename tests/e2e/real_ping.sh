# Checks first, for real, in a private network with loopback only and a rule dropping TCP
# to one port; the system's ping does the ICMP checks; the sessions are xmessage windows.
# "Local Tools" (ICMP, 127.0.0.1) starts; "Far Tools" (no route) starts nothing and is logged;
# "Silent Desktop" (TCP, the dropping port) times out and its secondary "Standby" takes over.
source "$(dirname "$0")/lib.sh"
NEEDS_ROOT=1 needs ping nft xmessage

new_case real_ping
dropped=$((20000 + RANDOM % 40000))
echo "table inet kestrelle { chain input { type filter hook input priority 0; tcp dport $dropped drop; }; }" >"$work/rules.nft"
run_in=(unshare --net sh -c 'ip link set lo up && nft -f "$0" && exec "$@"' "$work/rules.nft")
master_file "$(record "Local Tools" Other "Standard echo" 0 5=127.0.0.1 "8=xmessage -title Local Local")" \
  "$(record "Far Tools" Other "Standard echo" 0 5=192.0.2.1 "8=custom-client far")" \
  "$(record "Silent Desktop" Other "Standard echo" "$dropped" 5=127.0.0.1 "8=custom-client silent")" \
  "$(record Standby Other "Don't ping" 0 "8=xmessage -title Standby Standby")"
user_file "TRUE|Local Tools|Other|FALSE|FALSE|FALSE" "TRUE|Far Tools|Other|FALSE|FALSE|FALSE" \
  "TRUE|Silent Desktop|Other|FALSE|FALSE|FALSE" "FALSE|Standby|Other|FALSE|FALSE|FALSE"
ln -sfn "$(command -v ping)" "$fakes/ping"
show_main_window

connect_next
wait_mapped '^Local$' "$connect_ms" || { fail "no session window after ping answered"; finish; }
mapped_ms=$elapsed_ms
BY_HAND_COUNT=2 by_hand '^Local$' xmessage -title Local Local
echo "Ping and Other, Connect to session window mapped: $mapped_ms ms; by hand: $hand_ms ms"

connect_next
wait_for 8 grep -qsx "Ping exit code 200" "$log" || fail "no \"Ping exit code 200\" for an address without a route"

connect_next
wait_mapped '^Standby$' "$connect_ms" || fail "the secondary connection did not take over"
echo "Failover from a port that drops packets, Connect to the secondary's window: $elapsed_ms ms"
grep -qx "Connection to server 127.0.0.1 failed with error Connection timed out (6e)." "$log" ||
  fail "the time-out of the TCP check is not logged"
[ ! -e "$argv_log" ] || fail "a session started after a failed check: $(cat "$argv_log")"
[ "$failures" -eq 0 ] || cat "$log" >&2
finish
