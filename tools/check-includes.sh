#!/bin/sh
# Proves that the includes of src/ never point round, and prints the subjects from the top down.
# A subject is a header with its source: rom/store stands for rom/store.h and rom/store.cpp.
set -eu
cd "$(dirname "$0")/../src"

# A pair for tsort says that the first comes before the second; a subject paired with itself is only named.
order=$(find . -name '*.h' -o -name '*.cpp' | sort | while read -r file; do
    subject=${file#./}
    subject=${subject%.*}
    echo "$subject $subject"
    sed -n 's/^#include "\(.*\)\.h".*/\1/p' "$file" | while read -r used; do
        [ "$used" = "$subject" ] || echo "$subject $used"
    done
done | tsort 2>&1) || {
    echo "$order" >&2
    echo "check-includes: the includes above point round" >&2
    exit 1
}
echo "$order"
