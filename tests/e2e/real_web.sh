# A real browser: Debian's firefox-esr on a fresh profile, in a private network, on a page
# served on 127.0.0.1. "Intranet" (a TCP check first): the server sees the request, the window
# shows the page's title, the row turns "Active" and comes back when the browser ends; by hand
# for reference. "Portal", persistent: when the browser ends, it starts again.
source "$(dirname "$0")/lib.sh"
NEEDS_ROOT=1 needs firefox-esr python3
net="$work/net" server="$work/web" title="Kestrelle test page" && mkdir -p "$work/site"
cleanup=('"$scripts/private-web" stop "$server"' '"$scripts/private-net" stop "$net"')
printf '<html><head><title>%s</title><link rel="icon" href="data:,"></head><body><h1>%s</h1></body></html>\n' \
  "$title" "$title" >"$work/site/index.html"
browser_window() { wait_for 30 eval '[ -n "$(children_named firefox-esr)" ]' && wait_mapped "^$title" "${1:-$(now_ms)}"; }

new_case real_web
"$scripts/private-net" start "$net" >/dev/null && port=$("$scripts/private-net" run "$net" "$scripts/private-web" start "$server" "$work/site") ||
  { fail "the web server did not start"; finish; }
page="http://127.0.0.1:$port/index.html"
master_file "$(record Intranet Web "Standard echo" "$port" "5=$page")" "$(record Portal Web "Don't ping" 80 "5=$page?portal")"
user_file "TRUE|Intranet|Web|FALSE|FALSE|FALSE" "TRUE|Portal|Web|FALSE|TRUE|FALSE"
ln -sfn "$server/bin/firefox" "$fakes/firefox"
run_in=("$scripts/private-net" run "$net")
show_main_window

connect_next
browser_window "$connect_ms" || { fail "no browser window within 30 s of Connect"; finish; }
mapped_ms=$elapsed_ms
grep -q '"GET /index.html HTTP/1.1" 200' "$server/requests.log" || fail "the server saw no request for the page"
import -window root "$SCREENSHOTS/real_web.png"
expect_active
kill -TERM "$(children_named firefox-esr)"
expect_not_connected "the browser ended"
by_hand "^$title" "${run_in[@]}" "$server/bin/firefox" "$page"
echo "Web, Connect to browser window mapped: $mapped_ms ms; by hand: $hand_ms ms"

connect_next
browser_window || fail "Portal's browser did not start"
first=$(children_named firefox-esr) && kill -TERM "$first"
wait_for 30 eval '! kill -0 $first 2>/dev/null' && browser_window || fail "the persistent Web connection was not started again"
grep -q '"GET /index.html?portal HTTP/1.1" 200' "$server/requests.log" || fail "the server saw no request for Portal"
finish
