#!/bin/sh
# demo.sh: builds Vantorel and takes it on the tour of examples/tour.txt, in out/demo/tour.
# demo.sh FILE...: loads, analyses and lists ROMs of your own. Installs what is missing first.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
script=$(mktemp)
trap 'rm -f "$script"' EXIT

# The commands for one file, on the prompt's standard input.
commands() {
    quote='"'
    case $1 in *\"*) quote="'" ;; esac
    path=$(printf '%s' "$1" | sed 's/\$/$$/g') # a single "$" would be a reference
    echo "# The next ROM: load it, analyse it, list its components and its modules"
    echo "loadrom $quote$path$quote"
    echo analyserom
    echo rom
    echo modules
}

# Runs the commands in $script, and shows each behind its prompt as a terminal would.
session() {
    "$here/out/demo/vantorel" <"$script" | awk '
        NR == FNR { typed[NR] = $0; next }
        {
            while (index($0, "VanCLI> ") == 1) {
                $0 = substr($0, 9)
                line = typed[++number]
                if (line ~ /^(#.*)?$/) print line
                else if (line !~ /^echo "== /) print "VanCLI> " line
            }
            if ($0 != "") print
        }' "$script" -
}

[ $# -le 20 ] || { echo "demo.sh: at most 20 ROMs, please" >&2; exit 1; }
for file; do
    [ -f "$file" ] && [ -r "$file" ] || { echo "demo.sh: $file cannot be read" >&2; exit 1; }
    case $file in *\"*\'* | *\'*\"*) echo "demo.sh: $file has both kinds of quotes in its name" >&2; exit 1 ;; esac
    [ "$(printf '%s' "$file" | wc -l)" -eq 0 ] || { echo "demo.sh: a file's name has a line feed" >&2; exit 1; }
    commands "$(realpath "$file")" >>"$script"
done

cd "$here"
tools/need.sh cmake ninja-build g++
echo "Building out/demo/vantorel, which takes a minute the first time..." >&2
cmake --preset demo >/dev/null
targets=vantorel
[ $# -gt 0 ] || targets="vantorel vantorel-fixture" # the tour's floppy has to be made
# shellcheck disable=SC2086  # one word a target
cmake --build --preset demo --target $targets >out/demo/build.log || { cat out/demo/build.log >&2; exit 1; }

if [ $# -gt 0 ]; then
    printf '# All ROMs loaded\nroms\nexit\n' >>"$script"
    session
    cat <<END

To go on, start the prompt here with: out/demo/vantorel
docs/commands.md lists the commands, "exit" ends it; "rlwrap out/demo/vantorel" adds history.
END
    exit 0
fi

rm -rf out/demo/tour
mkdir -p out/demo/tour/parts
cp -R examples/hunks out/demo/tour/hunks
cp -R examples/hashes "out/demo/tour/Vantorel Hashes"
cp "Vantorel Hashes/missassemble.ini" "Vantorel Hashes/misshints.ini" "out/demo/tour/Vantorel Hashes"
cd out/demo/tour
../tests/vantorel-fixture adf modules.adf ofs Modules Libs/kernel.library=hunks/kernel.library \
    Libs/tables.library=hunks/tables.library Devs/pulse.device=hunks/pulse.device Docs/message=hunks/message.data
# The two sessions of the tour, each to its "exit".
sed '/^exit$/q' "$here/examples/tour.txt" >"$script"
session
sed '1,/^exit$/d' "$here/examples/tour.txt" >"$script"
session
cmp tour.rom again.rom
cat <<END

That was examples/tour.txt. It has made, in out/demo/tour:
    tour.rom                       a ROM of 512K for 0xF80000, from the modules in hunks/
    tour.hi.bin, tour.lo.bin       the same for a pair of EPROMs
    tour-cd32.bin, tour-a1000.adf  the ROM file of a CD32, a Kickstart disk for the A1000
    moved.rom                      the first for 0xE00000, built from its parts
    again.rom                      moved back: the same as tour.rom, byte for byte
    missassembler.tmp              the code of pulse.device
    pulse.device                   the module, with relocs found by comparing tour.rom and moved.rom
    third.rom, third.RTB           a ROM of 256K for 0x200000 with it, and where its addresses stand
    modules.zip                    the files of the floppy modules.adf
    parts/, "Vantorel Hashes"/     its components as files, and what they are known by
To go on, start the prompt: cd out/demo/tour && ../vantorel
Try "loadrom tour.rom" and "rom"; docs/commands.md lists all commands, "exit" ends it. ./demo.sh FILE... shows ROMs of your own.
END
