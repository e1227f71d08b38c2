#compdef kelvaris-monitor
# Completion of kelvaris-monitor for zsh. The program itself tells its commands and options.

_kelvaris_monitor_help() { # SECTION [COMMAND]: the words that begin the section's lines
    command kelvaris-monitor "${@:2}" --help 2>/dev/null |
        sed -nE "/^$1:/I,/^\$/ s/^( +(-[a-z], *)?(--[a-z-]+)|  ([a-z]+)).*/\3\4/p"
}

local command i
for ((i = 2; i < CURRENT; ++i)); do
    case $words[i] in
    --address | --port) ((++i)) ;;
    -*) ;;
    *) command=$words[i] && break ;;
    esac
done
# Behind --exec stand a program and its words.
local exec=${words[(i)--exec]}
if [[ $command == watch && $exec -lt $CURRENT ]]; then
    shift $exec words
    ((CURRENT -= exec))
    _normal
    return
fi
case $command:$words[CURRENT-1] in
*:--address) _hosts && return ;;
*:--port | *:--interval | *:--count | *:--timeout | *:--exec-timeout) _message value && return ;;
wait:--for) compadd -- daemon network state:LOGGED_OUT state:LOGGING_IN state:LOGGED_IN state:AUTO_CONNECTING state:CONNECTING state:DISCONNECTING state:CONNECTED state:OVERLIMIT && return ;;
esac
if [[ $PREFIX == -* ]]; then
    compadd -- $(_kelvaris_monitor_help Options $command)
elif [[ -z $command ]]; then
    compadd -- $(_kelvaris_monitor_help Subcommands)
elif [[ $command == watch ]]; then
    compadd -- link state server settings adapters connections session streams error
elif [[ $command == record ]]; then
    _files
fi
