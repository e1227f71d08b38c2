#!/usr/bin/env bash
# Compares the functions that the C headers declare with those that the C++ headers call, by an object in which every
# inline function is kept; and looks whether a call of the C++ layer reaches the function of its own name, and a field of
# a value the record's field of its own name.
# Usage: OBJECT INCLUDE_FOLDER
set -euo pipefail

reached=$(nm -u "$1" | grep -oE 'KelvarisSDK_\w+' | sort -u)
declared=$(cat "$2"/kelvarissdk/*.h | grep -v '^#' | tr '\n' ' ' | grep -oE 'KELVARISSDK_API [^;]*;' |
    sed -E 's/^[^(]*(KelvarisSDK_[A-Za-z0-9_]+)\(.*/\1/' | sort)
diff <(echo "$reached") <(echo "$declared") || { echo "< is reached and not declared, > is declared and not reached"; exit 1; }

perl -0777 -ne '
    while (/Call<\w+>\s+(\w+)\([^)]*\) const \{\s*([^}]*)KelvarisSDK_(?!Handle)(\w+)/g) {
        $calls++;
        print "$1 reaches $3\n" if ucfirst $1 ne $3;
    }
    while (/value\.(\w+) =([^;]*);/g) {
        $fields++;
        print "$1 is read from$2\n" unless $2 =~ /record\.$1\b|time|connectError|date/;
    }
    END { print "few: $calls calls, $fields fields\n" if $calls < 85 || $fields < 140 }
    ' "$2"/kelvarissdk/cpp/*.hpp >wrong.txt
if [ -s wrong.txt ]; then
    cat wrong.txt
    exit 1
fi
