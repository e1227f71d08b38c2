#!/usr/bin/env bash
# Looks for what was declared and then forgotten in the tests: calls and fields that have no line in the golden files, keys
# and requests that no test spells, which the simulated daemon may mistake as the library does. Usage: SOURCE_FOLDER
set -euo pipefail
cd "$1"

text=$(cat sdklibrary/include/kelvarissdk/*.h)
flat=$(tr '\n' ' ' <<<"$text")
{
    # Two calls each, which have a test of their own.
    grep -oP 'KelvarisSDK_\K\w+(?=\(\s*KelvarisSDK_Handle\*[^;]*\bcallback\b)' <<<"$flat" |
        grep -vxE '(Start|Stop)SafeBrowsing' | sort |
        diff - <(sed 1d tests/golden/calls.txt | cut -d' ' -f1 | sort) || true

    for key in $(tr -d '\n' <sdklibrary/engine/keys.h | grep -oP 'StaticString const \w+\{\s*"\K\w+'); do
        grep -qF "\"$key\"" tests/*.* tests/golden/transcripts/* || echo "no test has the key $key"
    done
    for request in $(awk 'NR > 1 { for (i = 4; i <= NF; ++i) print $i }' tests/golden/calls.txt); do
        grep -qF "\"$request\"" tests/*.* || grep -qF "> $request" tests/golden/transcripts/* ||
            echo "no test awaits the request $request"
    done

    # A field that may hide in a record's padding too, and the sizes in the table of records.
    awk 'FNR == NR { if (/^[A-Z]/) { sub(/\|.*/, "", $2); record = $1; size[$1 " " $2] = 1 } else place[record " " $1] = 1; next }
        /struct KelvarisSDK_[A-Za-z]+ \{/ { record = substr($3, 13); next }
        /^}/ { record = "" }
        record && match($0, /^    [a-zA-Z][^;\/]*;/) {
            field = substr($0, 5, RLENGTH - 5); gsub(/\[.*/, "", field); sub(/.* /, "", field)
            if (!((record " " field) in place)) print "no place of " record " " field
        }
        match($0, /^ \* +KelvarisSDK_[A-Za-z]+ +[0-9]+/) {
            for (i = 2; i < NF; i += 2) if (!((substr($i, 13) " " $(i + 1)) in size))
                print "the table of sizes says " $i " " $(i + 1)
        }' tests/golden/records.txt sdklibrary/include/kelvarissdk/*.h
} | { ! grep .; }
