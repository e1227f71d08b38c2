# Completion of kelvaris-monitor for bash. The program itself tells its commands and options.

_kelvaris_monitor_help() { # SECTION [COMMAND]: the words that begin the section's lines
    command kelvaris-monitor "${@:2}" --help 2>/dev/null |
        sed -nE "/^$1:/I,/^\$/ s/^( +(-[a-z], *)?(--[a-z-]+)|  ([a-z]+)).*/\3\4/p"
}

_kelvaris_monitor() {
    local cur prev words cword command='' offered='' i
    _get_comp_words_by_ref -n : cur prev words cword
    COMPREPLY=()
    for ((i = 1; i < cword; ++i)); do
        case ${words[i]} in
        --address | --port) ((++i)) ;;
        -*) ;;
        *) command=${words[i]} && break ;;
        esac
    done
    # Behind --exec stand a program and its words.
    for (( ; i < cword; ++i)); do
        if [[ $command == watch && ${words[i]} == --exec ]]; then
            [[ $prev != --exec ]] || mapfile -t COMPREPLY < <(compgen -c -- "$cur")
            compopt -o default 2>/dev/null
            return
        fi
    done
    case $command:$prev in
    *:--address) mapfile -t COMPREPLY < <(compgen -A hostname -- "$cur") && return ;;
    *:--port | *:--interval | *:--count | *:--timeout | *:--exec-timeout) return ;;
    wait:--for) offered='daemon network state:LOGGED_OUT state:LOGGING_IN state:LOGGED_IN state:AUTO_CONNECTING state:CONNECTING state:DISCONNECTING state:CONNECTED state:OVERLIMIT' ;;
    watch:*) offered='link state server settings adapters connections session streams error' ;;
    :*) offered=$(_kelvaris_monitor_help Subcommands) ;;
    esac
    if [[ $cur == -* ]]; then
        # shellcheck disable=SC2086
        offered=$(_kelvaris_monitor_help Options $command)
    elif [[ $command == record ]]; then
        compopt -o default 2>/dev/null
    fi
    mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$cur")
    __ltrim_colon_completions "$cur"
}

complete -F _kelvaris_monitor kelvaris-monitor
