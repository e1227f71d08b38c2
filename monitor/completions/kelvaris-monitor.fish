# Completion of kelvaris-monitor for fish. The program itself tells its commands and options.

# The words that begin the lines of a section of the help, each with what it means.
function __kelvaris_monitor_help --argument-names section command
    command kelvaris-monitor $command --help 2>/dev/null |
        sed -nE "/^$section:/I,/^\$/ s/^( +(-[a-z], *)?(--[a-z-]+)|  ([a-z]+))( [A-Z][A-Z .]*)?( \([^)]*\))?( REQUIRED)? *(.*)/\3\4\t\8/p"
end

# The command, and behind --exec the program.
function __kelvaris_monitor_command
    set -l words (commandline -opc)[2..]
    while set -q words[1]
        switch $words[1]
            case --address --port
                set -e words[1]
            case '-*'
            case '*'
                echo $words[1]
                contains -- --exec $words; and echo exec
                return
        end
        set -e words[1]
    end
end

function __kelvaris_monitor_words
    set -l command (__kelvaris_monitor_command)
    set -l previous (commandline -opc)[-1]
    if contains -- exec $command
        if test "$previous" = --exec
            __fish_complete_command
        else
            __fish_complete_path (commandline -ct)
        end
        return
    end
    switch $previous
        case --address
            __fish_print_hostnames
            return
        case --port --interval --count --timeout --exec-timeout
            return
        case --for
            string split ' ' -- 'daemon network state:LOGGED_OUT state:LOGGING_IN state:LOGGED_IN state:AUTO_CONNECTING state:CONNECTING state:DISCONNECTING state:CONNECTED state:OVERLIMIT'
            return
    end
    if string match -q -- '-*' (commandline -ct)
        __kelvaris_monitor_help Options $command
    else if test -z "$command"
        __kelvaris_monitor_help Subcommands
    else if test "$command" = watch
        string split ' ' -- 'link state server settings adapters connections session streams error'
    else if test "$command" = record
        __fish_complete_path (commandline -ct)
    end
end

complete -c kelvaris-monitor -f -a '(__kelvaris_monitor_words)'
