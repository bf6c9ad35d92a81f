# The Ansible role run for real, against this machine over a local connection, into a
# private root: a good configuration lands and checks clean, a second run changes
# nothing, a broken master list is refused and the old one stays.
set -euo pipefail
: "${CHECK:?path of kestrelle-check}"
role_dir=$(realpath "$(dirname "$0")/../../deploy/ansible")
work=$(mktemp -d "${TMPDIR:-/tmp}/kestrelle-role.XXXXXX")
trap 'rm -rf "$work"' EXIT
# Everything Ansible (and ansible-lint) keeps between runs stays in the temporary folder.
export HOME="$work/home" ANSIBLE_HOME="$work/ansible" ANSIBLE_LOCAL_TEMP="$work/ansible/local"
export ANSIBLE_REMOTE_TEMP="$work/ansible/remote" XDG_CACHE_HOME="$work/cache" ANSIBLE_NOCOLOR=1
root="$work/root" golden="$work/golden"
mkdir -p "$root/etc" "$root/home/demo" "$HOME"
printf 'demo:x:1000:1000::/home/demo:/bin/sh\n' >"$root/etc/passwd"
cp -a "$role_dir/golden/." "$golden/"
printf '[terminals]\nlocalhost ansible_connection=local ansible_python_interpreter=/usr/bin/python3\n' >"$work/inventory"
printf '{"kestrelle_root": "%s", "kestrelle_build_dir": "%s", "kestrelle_golden": "%s", "kestrelle_users": ["demo"]}' \
  "$root" "$(dirname "$CHECK")" "$golden" >"$work/vars.json"
play() { ansible-playbook -i "$work/inventory" -e "@$work/vars.json" "$role_dir/playbook.yml" >"$work/out" 2>&1; }
fail() { echo "FAIL: $*" >&2; cat "$work/out" >&2; exit 1; }

ansible-playbook --syntax-check -i "$work/inventory" "$role_dir/playbook.yml" >"$work/out" 2>&1 || fail "syntax"
if command -v ansible-lint >/dev/null; then
  (cd "$role_dir" && ansible-lint --offline -q playbook.yml) >"$work/out" 2>&1 || fail "ansible-lint"
fi

start=$(date +%s%N)
play || fail "the first roll-out"
echo "one terminal, first roll-out: $((($(date +%s%N) - start) / 1000000)) ms"
for f in etc/.kestrel/kestrel.master:kestrel.master etc/.kestrel/appsrv.ini:appsrv.ini \
  etc/.kestrel/wfclient.ini:wfclient.ini etc/zarvooptions:zarvooptions home/demo/kestrel.inf:users/demo/kestrel.inf; do
  cmp -s "$root/${f%%:*}" "$golden/${f#*:}" || fail "${f%%:*} did not land"
done
"$root/usr/local/bin/kestrelle-check" --root "$root" >"$work/out" || fail "the rolled-out root does not check clean"

play || fail "the second roll-out"
grep -q 'changed=0 ' "$work/out" || fail "the second roll-out changed something"

cp "$root/etc/.kestrel/kestrel.master" "$work/old.master"
sed -i 1s/000/001/ "$golden/kestrel.master"
play && fail "a master list of another version was rolled out"
grep -q 'kestrel.master:1: error: first line is not' "$work/out" || fail "the refusal does not say why"
cmp -s "$root/etc/.kestrel/kestrel.master" "$work/old.master" || fail "the old master list did not stay"
echo "all cases passed"
