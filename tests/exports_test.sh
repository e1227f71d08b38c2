#!/usr/bin/env bash
# Compares the library's dynamic symbols with the functions that the headers declare, and looks for a block above each
# function, record and enumeration. Usage: LIBRARY INCLUDE_FOLDER
set -euo pipefail

exported=$(nm -D --defined-only "$1" | awk '{ print $3 }' | sort)
declared=$(cat "$2"/kelvarissdk/*.h | grep -v '^#' | tr '\n' ' ' | grep -oE 'KELVARISSDK_API [^;]*;' |
    sed -E 's/^[^(]*(KelvarisSDK_[A-Za-z0-9_]+)\(.*/\1/' | sort)

if ! difference=$(diff <(echo "$exported") <(echo "$declared")); then
    echo "< is exported and not declared, > is declared and not exported:"
    echo "$difference"
    exit 1
fi
undocumented=$(awk '
    /^(KELVARISSDK_API|typedef struct|enum) / && above !~ /\*\/$/ { print FILENAME ": " $0 }
    { above = $0 }' "$2"/kelvarissdk/*.h)
if [ -n "$undocumented" ]; then
    echo "No block stands above:"
    echo "$undocumented"
    exit 1
fi
count=$(wc -l <<<"$exported")
echo "$count functions"
