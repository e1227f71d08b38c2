#!/usr/bin/env bash
# Compares the library's dynamic symbols with the functions that the headers declare, each of which carries the library's
# major version, and looks for a block above each function, record and enumeration. With the tool as well, both have to be self-contained.
# Usage: LIBRARY INCLUDE_FOLDER [TOOL]
set -euo pipefail

node=KELVARISSDK_$(readelf -dW "$1" | sed -n 's/.*SONAME.*\.so\.\(.*\)\]/\1/p')
exported=$(nm -D --defined-only "$1" | awk -v node="$node" '
    $3 == node && $2 == "A" { next } # names the version itself
    { print sub("@@" node "$", "", $3) ? $3 : $3 " without " node }' | sort)
declared=$(cat "$2"/kelvarissdk/*.h | grep -v '^#' | tr '\n' ' ' | grep -oE 'KELVARISSDK_API [^;]*;' |
    sed -E 's/^[^(]*(KelvarisSDK_[A-Za-z0-9_]+)\(.*/\1/' | sort)

if ! diff <(echo "$exported") <(echo "$declared"); then
    echo "< is exported and not declared, > is declared and not exported"
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
# Everything else among the dynamic symbols belongs to libc, libm, the loader or the unwinder.
self_contained() { # FILE NEEDED [OPTION_OF_NM]
    # The linker of arm64 keeps weak names of code that it has dropped; no relocation names them.
    foreign=$(awk 'FNR == NR { named[$5]; next } $1 != "w" || $2 in named' <(readelf -rW "$1") <(nm -D ${3+"$3"} "$1") |
        grep -vE '@GLIBC_|@GCC_| w (_ITM_|_ZGTt|__cxa_pure_virtual$|__gmon_start__)|@@KELVARISSDK_| A KELVARISSDK_' || true)
    foreign+=$(readelf -dW "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -vxE "$2" || true)
    if [ -n "$foreign" ]; then
        echo "$1 isn't self-contained:"
        echo "$foreign"
        exit 1
    fi
}
if [ -n "${3-}" ]; then
    own='(libc|libm|ld-linux.*|ld64)\.so\..*'
    self_contained "$1" "$own|libgcc_s\.so\.1"
    # What a program defines itself serves nobody else, and the linker of s390x lists much of it.
    self_contained "$3" "$own" --undefined-only
fi
echo "$(wc -l <<<"$exported") functions"
