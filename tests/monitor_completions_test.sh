#!/usr/bin/env bash
# Walks the completions of kelvaris-monitor in each shell that is installed: they offer the commands, options and topics
# that its help names, and goals that it takes.
#
#     monitor_completions_test.sh KELVARIS_MONITOR FOLDER_OF_SCRIPTS
set -euo pipefail
monitor=$1
export SCRIPTS=$2
PATH=$(dirname "$monitor"):$PATH
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

bash_offers() { # WORDS ..., of which the last one is completed
    bash --norc -c '
        . /usr/share/bash-completion/bash_completion
        . "$SCRIPTS/kelvaris-monitor.bash"
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE="$*" COMP_POINT=${#COMP_LINE}
        _kelvaris_monitor "$1" "${@: -1}" ""
        printf "%s\n" "${COMPREPLY[@]}"' bash "$@"
}

fish_offers() {
    HOME=$work fish --no-config -c 'source $SCRIPTS/kelvaris-monitor.fish; complete --do-complete "$argv"' -- "$*" |
        cut -f 1
}

# What would be offered goes into a file.
zsh_offers() {
    OFFERS=$work/offers zsh -f -c '
        : >$OFFERS
        compadd() { [[ $1 != -- ]] || print -rl -- "${@[2,-1]}" >>$OFFERS }
        _files() { : }
        words=("$@") CURRENT=$# PREFIX=${@[-1]}
        set --
        source $SCRIPTS/kelvaris-monitor.zsh' zsh "$@"
    grep -e "^${*: -1}" "$work/offers" || true
}

section() { # SECTION [COMMAND]
    "$monitor" "${@:2}" --help | sed -nE "/^$1:/I,/^\$/ s/^( +(-[a-z], *)?(--[a-z-]+)|  ([a-z]+)).*/\3\4/p" | sort
}

shells=()
for shell in bash zsh fish; do
    if command -v "$shell" >"$work/found" && { [ "$shell" != bash ] || [ -e /usr/share/bash-completion/bash_completion ]; }; then
        shells+=("$shell")
    fi
done
[ "${#shells[@]}" -gt 0 ] || { echo "there is no shell to complete in" && exit 77; }

expect() { # FILE_OF_WANTED WORDS ...
    local shell
    [ -s "$1" ] || { echo "nothing to expect of: ${*:2}" && exit 1; }
    for shell in "${shells[@]}"; do
        "${shell}_offers" "${@:2}" | sort | diff -u "$1" - || { echo "$shell differs behind: ${*:2}" && exit 1; }
    done
}

section Subcommands >"$work/commands"
expect "$work/commands" kelvaris-monitor ""
expect "$work/commands" kelvaris-monitor --port 9330 ""
section Options >"$work/options"
expect "$work/options" kelvaris-monitor --
while read -r command; do
    section Options "$command" >"$work/options"
    expect "$work/options" kelvaris-monitor "$command" --
done <"$work/commands"

"$monitor" watch --help | sed -nE 's/.*what to watch, of (.*) \(all\)/\1/p' | sed 's/, /\n/g' | sort >"$work/topics"
expect "$work/topics" kelvaris-monitor watch state ""
grep -e '^s' "$work/topics" >"$work/some"
expect "$work/some" kelvaris-monitor watch s

"${shells[0]}_offers" kelvaris-monitor wait --for "" | sort >"$work/goals"
expect "$work/goals" kelvaris-monitor wait --for ""
while read -r goal; do
    status=0
    "$monitor" --port 1 wait --for "$goal" --timeout 0.001 || status=$?
    [ "$status" -eq 124 ] || { echo "no goal: $goal" && exit 1; }
done <"$work/goals"
