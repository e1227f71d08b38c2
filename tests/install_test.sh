#!/usr/bin/env bash
# Installs the build tree, moves what was installed, and builds and runs the examples against it, found by pkg-config
# and by find_package. Usage: BUILD_FOLDER WORK_FOLDER
set -euo pipefail

python=$(realpath "$(dirname "$0")/../python") # isn't installed with the rest
rm -rf "$2"
mkdir -p "$2/pkg-config"
cd "$2"
cmake --install "$1" --prefix "$PWD/first" >/dev/null
mv first prefix
prefix=$PWD/prefix
examples=$(find "$prefix" -path '*/libkelvarissdk-dev/examples')

# No other folder than the installed one is searched, in which the .pc file stands.
PKG_CONFIG_LIBDIR=$(dirname "$(find "$prefix" -name kelvarissdk.pc)")
export PKG_CONFIG_LIBDIR
read -ra flags < <(pkg-config --cflags --libs kelvarissdk)
for source in "$examples"/*.c "$examples"/*.cpp; do
    [ -e "$source" ] || continue
    name=$(basename "${source%.*}")
    case $source in
    *.c) cc -std=c99 -Wall -Wextra -Wpedantic -Werror "$source" "${flags[@]}" -o "pkg-config/$name" ;;
    *) c++ -std=c++17 -Wall -Wextra -Wpedantic -Werror "$source" "${flags[@]}" -o "pkg-config/$name" ;;
    esac
done
# What an example needs besides stands in its head.
for source in "$examples"/cpp/*.cpp; do
    name=$(basename "${source%.*}")
    own=("-std=$(sed -n 's|^// *c++ -std=\([^ ]*\) .*|\1|p' "$source")" -pthread)
    [ "$name" != glib ] || read -ra own < <(echo "${own[@]}" "$(env -u PKG_CONFIG_LIBDIR pkg-config --cflags --libs glib-2.0)")
    c++ -Wall -Wextra -Wpedantic -Werror "$source" "${flags[@]}" "${own[@]}" -o "pkg-config/$name"
done
env -u PKG_CONFIG_LIBDIR cmake -S "$examples" -B cmake -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build cmake >/dev/null

coproc SIM { exec "$prefix/bin/kelvarissim" --port 0; }
trap 'kill "$SIM_PID"' EXIT
read -r line <&"${SIM[0]}"
port=${line##*:}

# What each prints must begin with the state that the tool names. Those that watch end on Ctrl-C alone.
expected=$("$prefix/bin/sdkcli" -p "$port" state | awk -F'"' '/state/ { print $4 }')
[ -n "$expected" ]
LD_LIBRARY_PATH=$(pkg-config --variable=libdir kelvarissdk)
export LD_LIBRARY_PATH
run() { # OUTPUT_FILE COMMAND ...
    "${@:2}" "$port" 1 >"$1"
    head -n 1 "$1" | grep -qx "$expected" || { echo "$2 printed:" && cat "$1" && exit 1; }
}
for program in pkg-config/*; do
    name=${program#*/}
    [[ $name == watch_* ]] && continue
    run first.txt "$program"
    run second.txt "cmake/$name"
    diff first.txt second.txt
done
if command -v python3 >/dev/null; then
    for program in "$examples/state.py" "$examples"/python/*.py; do
        PYTHONPATH=$python run python.txt python3 -B "$program"
    done
fi
