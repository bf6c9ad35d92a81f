# Automatic connections at start-up: the argument vector of every connection type as the
# session programs receive it, and as kestrelle-check promises it.
source "$(dirname "$0")/lib.sh"

# expect_lines WHAT EXPECTED FILE: the same lines in any order (the sessions start concurrently).
expect_lines() { expect_text "$1" "$(LC_ALL=C sort <<<"$2")"$'\n' <(LC_ALL=C sort "$3"); }

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
mkdir -p "$root/etc/X11/xdm" "$root/usr/share/rdesktop/keymaps"
printf '#!/bin/sh\nxsetroot -solid black\n  xkbcomp -w0 xkbmap=us.xkm xkbmap=de_nodeadkeys.xkm :0  \nxkbmap=fr.xkm\n' \
  >"$root/etc/X11/xdm/Xsetup"
: >"$root/etc/X11/XF86Config.XDM"
printf 'de\tGerman\nfr\tFrench\n' >"$root/usr/share/rdesktop/keymaps/keymap.lst"
touch "$root"/usr/share/rdesktop/keymaps/{de,fr}
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

finish
