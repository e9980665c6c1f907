#!/usr/bin/env bash
# Does ./convert work on a Debian 12 that has nothing but the checkout? Makes such a machine as a tree of files with
# debootstrap, runs a clean clone in it, as root and as a user with sudo, and looks at what comes out.
#
# Needs root, to change into the tree, and a Debian mirror: the one that this machine's apt is set up for. Where it
# cannot run it says why and ends with 77, in CI (CI=true) with 1.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
release=bookworm

cannot() {
  echo "The test of a fresh machine cannot run: $1" >&2
  [ "${CI:-}" = true ] && exit 1
  exit 77
}

fail() {
  echo "FAILED on the fresh machine, as $who: $1" >&2
  exit 1
}

[ "$(id -u)" -eq 0 ] || cannot "only root can change into a tree"
# Mounts are made in a namespace of their own, so that they are gone with the script, however it ends.
if [ -z "${VELMORA_OWN_MOUNTS:-}" ]; then
  unshare --mount true 2>/dev/null || cannot "no mount namespace can be made here"
  VELMORA_OWN_MOUNTS=1 exec unshare --mount --propagation private "${BASH_SOURCE[0]}" "$@"
fi

if ! command -v debootstrap >/dev/null; then
  apt-get update -q >&2 && DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends debootstrap >&2 ||
    cannot "debootstrap cannot be installed"
fi
mirror=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' |
  awk -v release="$release" '$2 == release && $3 == "main" { print $1; exit }')
[ -n "$mirror" ] || cannot "apt knows no mirror of $release (apt-get update?)"

work=$(mktemp -d)
clean_up() {
  umount "$work"/*/proc 2>/dev/null || true
  rm -rf --one-file-system "$work"
}
trap clean_up EXIT

echo "== A bare $release"
debootstrap --variant=minbase "$release" "$work/bare" "$mirror" >"$work/log" 2>&1 || {
  tail -n 20 "$work/log" >&2
  cannot "debootstrap failed"
}
# It asks the same mirror in the same way as this machine does.
cp -L /etc/resolv.conf "$work/bare/etc/resolv.conf"
apt-config dump | grep -E '^Acquire::(http|https)::' >"$work/bare/etc/apt/apt.conf.d/90machine" || true

# inside COMMAND...: runs it in the tree, with nothing of this machine's environment.
inside() {
  env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin TERM=dumb chroot "$tree" "$@"
}

# as_who COMMAND: runs a shell command in the checkout, as the user at hand.
as_who() {
  inside su - "$who" -c "cd $project && $1"
}

expect_conversion() {  # of the log of a run: completed, where, and every item
  grep -qx 'OST file conversion completed.' "$1" || fail "it does not say that the conversion was completed"
  grep -Eqx ' *34  items in 14 folders' "$1" || fail "not all of the demo's items came across"
  local store
  store=$(sed -n 's/^Recovered at: //p' "$1")
  [ "$(head -c 4 "$tree$store")" = '!BDN' ] || fail "there is no new store at \"$store\""
  if command -v readpst >/dev/null; then
    mkdir -p "$work/read"
    readpst -D -j0 -o "$work/read" "$tree$store" >"$work/readpst" || fail "another reader cannot open the new store"
    grep -Eq '"Sent Items" - 2 items done' "$work/readpst" || fail "another reader does not find the two mails sent"
    rm -rf "$work/read"
  fi
}

try() {
  who=$1 project=$2 tree=$work/$1
  echo "== As $who"
  cp -a "$work/bare" "$tree"
  mount -t proc proc "$tree/proc"
  if [ "$who" != root ]; then
    inside sh -c 'apt-get update -q && apt-get install -q -y --no-install-recommends sudo' >"$work/log" 2>&1 ||
      { cat "$work/log" >&2; fail "sudo cannot be installed"; }
    inside useradd --create-home "$who"
    echo "$who ALL=(ALL) NOPASSWD: ALL" >"$tree/etc/sudoers.d/$who"
  fi
  git clone -q --no-hardlinks "$top" "$tree$project"
  inside chown -R "$who:" "$project"

  local TIMEFORMAT='%R s on the clock, %U s + %S s of processor time, packages included'
  time as_who ./convert >"$work/log" 2>"$work/errors" || { cat "$work/log" "$work/errors" >&2; fail "./convert failed"; }
  expect_conversion "$work/log"
  ! inside dpkg-query -W -f '${Package}\n' | grep -i qt || fail "it has installed Qt"

  # A store of one's own, by a path with blanks, into a folder of one's own.
  as_who 'mkdir -p ~/"my mail" && cp demo/*/demo.ost ~/"my mail/old mail.ost" && mkdir ~/out'
  as_who './convert --smart --report ~/report.json ~/"my mail/old mail.ost" ~/out' >"$work/log" 2>"$work/errors" ||
    { cat "$work/log" "$work/errors" >&2; fail "./convert with a store failed"; }
  expect_conversion "$work/log"
  as_who 'test -s ~/report.json && test -f ~/out/*/"old mail Converted.pst"' || fail "report or store is not where it was asked for"

  umount "$tree/proc"
  rm -rf --one-file-system "$tree"
}

try root /root/velmora
try someone /home/someone/velmora
echo "== ./convert works on a fresh machine"
