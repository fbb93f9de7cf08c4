#!/bin/sh
# demo.sh: builds Vantorel and shows it at work on a ROM image that is made for the purpose.
# demo.sh FILE...: loads, analyses and lists ROMs of your own. Installs what is missing first.
set -eu

# The commands for one file, on the prompt's standard input.
commands() {
    quote='"'
    case $1 in *\"*) quote="'" ;; esac
    path=$(printf '%s' "$1" | sed 's/\$/$$/g') # a single "$" would be a reference
    echo "echo == The next ROM: load it, analyse it, list its components and its modules"
    echo "loadrom $quote$path$quote"
    echo analyserom
    echo rom
    echo modules
}

here=$(cd "$(dirname "$0")" && pwd)
script=$(mktemp)
trap 'rm -f "$script"' EXIT
for file; do
    [ -f "$file" ] && [ -r "$file" ] || { echo "demo.sh: $file cannot be read" >&2; exit 1; }
    case $file in *\"*\'* | *\'*\"*) echo "demo.sh: $file has both kinds of quotes in its name" >&2; exit 1 ;; esac
    commands "$(realpath "$file")" >>"$script"
done

cd "$here"
tools/need.sh cmake ninja-build g++
cmake --preset demo >/dev/null
cmake --build --preset demo >out/demo/build.log || { cat out/demo/build.log >&2; exit 1; }

if [ $# -eq 0 ]; then
    out/demo/tests/vantorel-fixture standard out/demo/standard.rom
    commands "out/demo/standard.rom" >>"$script"
fi
printf 'echo == All ROMs loaded\nroms\nexit\n' >>"$script"
out/demo/vantorel <"$script"

cat <<END


That was out/demo/vantorel reading these commands:
$(sed 's/^/    /' "$script")

To type your own, start it here with: out/demo/vantorel
"help" lists commands, "exit" ends it; "rlwrap out/demo/vantorel" adds history.
END
