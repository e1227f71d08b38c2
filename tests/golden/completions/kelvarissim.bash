# Completion of kelvarissim for bash.

_kelvarissim() {
    COMPREPLY=()
    case $3 in
    --port | --interval | --seed | --speed | --delay | --lock | --drop-after | --close-frame-after | --connect-error | --disconnect-reason | --safebrowsing-error) ;;
    *) mapfile -t COMPREPLY < <(compgen -W '--port --verbose --interval --traffic --seed --speed --silent --delay --lock --drop-after --close-frame-after --connect-error --disconnect-reason --safebrowsing-error --help' -- "$2") ;;
    esac
}

complete -F _kelvarissim kelvarissim
