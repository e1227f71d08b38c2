#!/usr/bin/env bash
# Builds a host by each compiler that is here and runs it beside the library and the shared jsoncpp, with a decimal comma
# if that is wanted, which reaches a library that shares its C++ runtime.
# Usage: LIBRARY SIMULATOR INCLUDE_FOLDER WORK_FOLDER [comma]
set -euo pipefail

source=$(realpath "$(dirname "$0")/host.cpp")
mkdir -p "$4"
cd "$4"
read -ra jsoncpp < <(pkg-config --cflags --libs jsoncpp)
coproc SIM { exec "$2" --port 0 --verbose 2>requests.txt; }
trap 'kill "$SIM_PID"' EXIT
read -r line <&"${SIM[0]}"

for compiler in c++ clang++; do
    command -v "$compiler" >/dev/null || continue
    "$compiler" -std=c++17 -O1 -I"$3" "$source" "$1" "${jsoncpp[@]}" -pthread -Wl,-rpath,"$(dirname "$1")" -o host
    ./host "${line##*:}" "${@:5}"
    status=0
    ./host "${line##*:}" throw || status=$?
    if [ "$status" != 42 ]; then
        echo "a callback's exception ended the host by itself: status $status"
        exit 1
    fi
done
if grep stat_subscribe requests.txt; then
    echo "statistics were subscribed to without their thread"
    exit 1
fi
