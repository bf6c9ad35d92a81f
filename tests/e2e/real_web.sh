# The whole chain with a real browser: Kestrelle's Web connections start "firefox", Debian's
# firefox-esr on a fresh private profile (scripts/private-web), on a page that a small HTTP
# server on 127.0.0.1 serves, all in a private network (scripts/private-net).
#   1. "Intranet" (after a TCP check of the server's port): the server sees the request,
#      the browser's window appears with the page's title, the row turns "Active", and
#      ending the browser brings the row back. The same command by hand gives the reference.
#   2. "Portal", persistent: when the browser ends, it is started again.
source "$(dirname "$0")/lib.sh"
needs firefox-esr python3
needs_root
: "${SCREENSHOTS:?folder for screenshots}"
private_net="$(dirname "$0")/../../scripts/private-net"
private_web="$(dirname "$0")/../../scripts/private-web"
net="$work/net" server="$work/web"
trap '"$private_web" stop "$server"; stop_all; "$private_net" stop "$net"; rm -rf "$work"' EXIT
mkdir -p "$work/site" "$SCREENSHOTS"
title="Kestrelle test page"
printf '<html><head><title>%s</title><link rel="icon" href="data:,"></head><body><h1>%s</h1></body></html>\n' \
  "$title" "$title" >"$work/site/index.html"
browser_pid() { ps -o pid=,comm= --ppid "$pid" | awk '$2 == "firefox-esr" { print $1 }'; }

new_case real_web
"$private_net" start "$net" >/dev/null && port=$("$private_net" run "$net" "$private_web" start "$server" "$work/site") ||
  { fail "the web server did not start"; finish; }
page="http://127.0.0.1:$port/index.html"
master_file "$(record Intranet Web "Standard echo" "$port" "5=$page")" \
  "$(record Portal Web "Don't ping" 80 "5=$page?portal")"
user_file "TRUE|Intranet|Web|FALSE|FALSE|FALSE" "TRUE|Portal|Web|FALSE|TRUE|FALSE"
ln -sfn "$server/bin/firefox" "$fakes/firefox"
run_in=("$private_net" run "$net")
xdotool mousemove 1590 1190
start_kestrelle
show_main_window

# 1. Intranet.
connect_next
wait_mapped "^$title" "$connect_ms" || { fail "no browser window within 30 s of Connect"; finish; }
mapped_ms=$elapsed_ms
grep -q '"GET /index.html HTTP/1.1" 200' "$server/requests.log" || fail "the server saw no request for the page"
import -window root "$SCREENSHOTS/real_web.png"
expect_active
kill -TERM "$(browser_pid)"
expect_not_connected "the browser ended"
hand_ms=$(now_ms)
"$private_net" run "$net" "$server/bin/firefox" "$page" &
by_hand=$!
wait_mapped "^$title" "$hand_ms" || fail "the browser started by hand shows no window"
echo "Web, Connect to browser window mapped: $mapped_ms ms; by hand: $elapsed_ms ms"
kill -TERM "$by_hand"
wait "$by_hand" || true

# 2. Portal.
connect_next
wait_for 30 eval '[ -n "$(browser_pid)" ]' && wait_mapped "^$title" "$(now_ms)" || fail "Portal's browser did not start"
first=$(browser_pid)
kill -TERM "$first"
wait_for 30 eval '! kill -0 $first 2>/dev/null && [ -n "$(browser_pid)" ]' && wait_mapped "^$title" "$(now_ms)" ||
  fail "the persistent Web connection was not started again"
grep -q '"GET /index.html?portal HTTP/1.1" 200' "$server/requests.log" || fail "the server saw no request for Portal"
finish
