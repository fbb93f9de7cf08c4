#!/bin/sh
# Makes the example modules from their sources. make.sh [FOLDER]: puts them there instead of into hunks/.
set -eu

case ${1:-} in -*) echo "usage: make.sh [FOLDER]" >&2; exit 2 ;; esac
[ $# -le 1 ] || { echo "usage: make.sh [FOLDER]" >&2; exit 2; }

here=$(cd "$(dirname "$0")" && pwd)
folder=${1:-$here/hunks}

command -v m68k-linux-gnu-as >/dev/null ||
    { echo "make.sh: the assembler is missing: apt-get install binutils-m68k-linux-gnu" >&2; exit 1; }
command -v python3 >/dev/null || { echo "make.sh: Python is missing: apt-get install python3" >&2; exit 1; }

mkdir -p "$folder"
objects=$(mktemp -d)
trap 'rm -rf "$objects"' EXIT

# module KIND SOURCE NAME
module() {
    m68k-linux-gnu-as -m68000 --fatal-warnings -I "$here/modules" -o "$objects/$2.o" "$here/modules/$2.s"
    python3 "$here/elf2hunk.py" "$1" "$objects/$2.o" "$folder/$3"
}

module data romheader romheader
module data romheader256 romheader256
module code kernel kernel.library
module code tables tables.library
module code pulse pulse.device
module code clock clock.resource
module data font font.data
module data message message.data
