# Automatic connections at start-up: the argument vector of every connection type as the
# session programs receive it, and the reachability check that starts nothing when the
# server does not answer.
source "$(dirname "$0")/lib.sh"

# sorted_lines FILE: the file's lines in byte order (the sessions start concurrently).
sorted_lines() { LC_ALL=C sort "$1"; }
expect_lines() { expect_text "$1" "$(LC_ALL=C sort <<<"$2")"$'\n' <(sorted_lines "$3"); }

new_case every_type
master_file \
  "$(record "Backup Desktop" RDP "Don't ping" 3389 5=backup.example.lan 13="Use Default" 33=00000)" \
  "$(record "Citrix Apps" ICA "Don't ping" 1494 5=citrix.example.lan 6=Default 7=Default 34=01033)" \
  "$(record Intranet Web "Don't ping" 80 "5=http://intranet.example.lan:8080/start?x=1")" \
  "$(record "Lab Display" XDM "Don't ping" 0 5=lab.example.lan 7=Query 12=7 13=1 26="Use Local Settings")" \
  "$(record Marrow DAS "Don't ping" 1494)" \
  "$(record "Office Desktop" RDP "Don't ping" 3389 5=office.example.lan 8=notepad.exe 9=C:/work 10=demo \
      12=EXAMPLE 13=800x600 14="High Color (16 bit)" 15="Bring to this computer" 20=thin1 \
      26=German 27=Custom 28=shared=/tmp/shared 29=lp 30=LPT1=/dev/lp0 31=COM1=/dev/ttyS0 \
      32="-T 'Office PC' -r clipboard:PRIMARYCLIPBOARD" 33=32350)" \
  "$(record "Plain Desktop" RDP "Don't ping" 3389 5=plain.example.lan 13="Full Screen" 14="Use Default" \
      15="Leave at remote computer" 26="Use Default" 27="LAN (10 Mbps or higher)" 33=00000)" \
  "$(record Tools Other "Don't ping" 80 8="custom-client --full 'two words' \"x y\" z")"
# The secondary row is marked Automatic but start-up visits primary rows only.
user_file "TRUE|Office Desktop|RDP|TRUE|FALSE|FALSE" "FALSE|Backup Desktop|RDP|TRUE|FALSE|FALSE" \
  "TRUE|Plain Desktop|RDP|TRUE|FALSE|FALSE" "TRUE|Citrix Apps|ICA|TRUE|FALSE|FALSE" \
  "TRUE|Lab Display|XDM|TRUE|FALSE|FALSE" "TRUE|Intranet|Web|TRUE|FALSE|FALSE" \
  "TRUE|Marrow|DAS|TRUE|FALSE|FALSE" "TRUE|Tools|Other|TRUE|FALSE|FALSE"
mkdir -p "$root/etc/X11/xdm"
printf '#!/bin/sh\nxsetroot -solid black\n  xkbcomp -w0 xkbmap=us.xkm xkbmap=de_nodeadkeys.xkm :0  \nxkbmap=fr.xkm\n' \
  >"$root/etc/X11/xdm/Xsetup"
: >"$root/etc/X11/XF86Config.XDM"
mkdir -p "$root/usr/share/rdesktop/keymaps"
printf 'de\tGerman\nfr\tFrench\n' >"$root/usr/share/rdesktop/keymaps/keymap.lst"
: >"$root/usr/share/rdesktop/keymaps/de"
: >"$root/usr/share/rdesktop/keymaps/fr"
start_kestrelle
wait_for 10 line_count "$argv_log" 8 || fail "not every automatic session started"
# Only the first eight: when "Office Desktop" has ended, the first status poll fails over
# to its secondary.
head -8 "$argv_log" >"$root/started"
# The DAS client is started with an empty argument vector; Linux then hands it one empty
# argument, which the fake records as an empty field after the name.
expect_lines "the argument vectors" "\
rdesktop|rdesktop|-udemo|-dEXAMPLE|-nthin1|-snotepad.exe|-cC:/work|-g800x600|-a16|-rsound:local|-kde|-b|-P|-z|-B|-x0x06|-rdisk:shared=/tmp/shared|-rprinter:lp|-rlptport:LPT1=/dev/lp0|-rcomport:COM1=/dev/ttyS0|-T|Office PC|-r|clipboard:PRIMARYCLIPBOARD|office.example.lan
rdesktop|rdesktop|-f|-rsound:remote|-xl|plain.example.lan
wfica|wfica|-file|$root/etc/.kestrel/appsrv.ini|-clientfile|$root/etc/.kestrel/wfclient.ini|-desc|Citrix Apps
xkbcomp|xkbcomp|-xkm|-m|de_nodeadkeys|$root/etc/X11/xkb/keymap/xfree86|-o|$root/tmp/tmp.xkm
X|X|:1|vt7|+kb|-xkbmap|tmp.xkm|-query|lab.example.lan|-xf86config|XF86Config.XDM
firefox|firefox|http://intranet.example.lan:8080/start?x=1
marrow|
custom-client|custom-client|--full|two words|x y|z" "$root/started"
# kestrelle-check on the same root promises the same vectors, each as the fake records it
# (the name, then every argument; the DAS client's empty vector arrives as one empty one),
# the secondary's too, which the first status poll starts. Its exit status tells of the
# appsrv.ini that no save has written yet.
wait_for 10 line_count "$argv_log" 9 || fail "the secondary did not start"
{ "$KESTRELLE_CHECK" --root "$root" --json || true; } | python3 -c '
import json, os, shlex, sys
for c in json.load(sys.stdin)["connections"]:
    if "xkbcomp" in c: print("|".join(["xkbcomp"] + shlex.split(c["xkbcomp"])))
    print("|".join([os.path.basename(c["program"])] + (c["argv"] or [""])))' >"$root/promised" ||
  fail "the JSON of kestrelle-check does not parse"
expect_lines "the vectors kestrelle-check promises" "$(cat "$argv_log")" "$root/promised"

# Reachability on: the ICMP echo through ping (which fails here) for ICA and Web, the TCP
# check against a closed local port for RDP, and no check for an ICA published
# application (bit value 2).
new_case failed_reachability
master_file \
  "$(record "Citrix Apps" ICA "Standard echo" 0 5=citrix.example.lan 6=10.0.0.5 7=Default 34=01033)" \
  "$(record "Citrix Published" ICA "Standard echo" 0 5=Notepad 6=10.0.0.6 7=Default 34=01035)" \
  "$(record Intranet Web "Standard echo" 0 5=https://web.example.lan:8443/portal/x)" \
  "$(record "Office Desktop" RDP "Standard echo" 1 5=127.0.0.1:3390 13="Use Default" 33=00000)"
user_file "TRUE|Citrix Apps|ICA|TRUE|FALSE|FALSE" "TRUE|Citrix Published|ICA|TRUE|FALSE|FALSE" \
  "TRUE|Intranet|Web|TRUE|FALSE|FALSE" "TRUE|Office Desktop|RDP|TRUE|FALSE|FALSE"
start_kestrelle KEST_FAKE_FAIL=ping
checks_logged() { [ -f "$log" ] && [ "$(grep -c '^Ping exit code' "$log")" -ge 3 ]; }
wait_for 10 checks_logged || fail "not every check was logged"
sleep 0.5
expect_lines "the programs started" "\
ping|ping|-c|1|-1|10.0.0.5
ping|ping|-c|1|-q|web.example.lan
wfica|wfica|-file|$root/etc/.kestrel/appsrv.ini|-clientfile|$root/etc/.kestrel/wfclient.ini|-desc|Citrix Published" \
  "$argv_log"
expect_lines "the log" "\
Starting.
Ping exit code 100
Ping exit code 100
Connection to server 127.0.0.1 failed with error Connection refused (6f).
Ping exit code 6f" "$log"

finish
