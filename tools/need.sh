#!/bin/sh
# need.sh PACKAGE...: installs those of the Debian packages that are missing; where it can't, says so in one line.
set -eu

missing=
for package; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" -ne 0 ] || ! command -v apt-get >/dev/null; then
    echo "Please install these Debian packages first (or what holds the same on this system):$missing" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
# shellcheck disable=SC2086  # one word a package
apt-get install -y -qq --no-install-recommends $missing >/dev/null
