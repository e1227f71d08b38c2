# Completion of sdkcli for bash.

# What the daemon of this command line answers, if it does so within half a second: each text under a key.
_sdkcli_ask() {
    timeout 0.5 "${daemon[@]}" show "$1" 2>/dev/null | awk -F'"' -v key="$2" '$2 == key { print $4 }'
}

# The next part of the servers whose tags begin with these parts: countries, cities, numbers.
_sdkcli_places() {
    local IFS=-
    _sdkcli_ask servers tag | awk -F- -v start="$*" -v part=$(($# + 1)) '
        { parts = $1; for (i = 2; i < part; ++i) parts = parts "-" $i }
        part == 1 || parts == start { print $part }' | sort -u
}

# Offers lines, which may hold anything, as words.
_sdkcli_offer_lines() {
    local line
    while IFS= read -r line; do
        [[ -n $line && $line == "${cur//\\/}"* ]] && COMPREPLY+=("$(printf %q "$line")")
    done
}

_sdkcli() {
    local cur=${COMP_WORDS[COMP_CWORD]} offer='' options='-i --ip -p --port -h --help'
    local -a daemon=("${1/#\~\//$HOME/}") typed=("${COMP_WORDS[@]:1:COMP_CWORD-1}")
    COMPREPLY=()

    if [[ ${typed[0]-} == -i || ${typed[0]-} == --ip ]]; then
        if ((${#typed[@]} == 1)); then
            mapfile -t COMPREPLY < <(compgen -A hostname -- "$cur")
            return
        fi
        daemon+=("${typed[@]:0:2}")
        typed=("${typed[@]:2}")
        options='-p --port'
    fi
    if [[ ${typed[0]-} == -p || ${typed[0]-} == --port ]]; then
        ((${#typed[@]} >= 2)) || return
        daemon+=("${typed[@]:0:2}")
        typed=("${typed[@]:2}")
        options=''
    fi

    # The number of words typed, and the words.
    case "${#typed[@]} ${typed[*]}" in
    '0 ')
        offer="state headercompression connect connectmethod disconnect encryption jumbo login directory
            gateway esni logout mode overflow packetaggr ports show safebrowsing startupconnect stats adapter
            transport privacy version daemon dns captiveportal localproxy firewall route streamingbypass
            streaming speedtest streamtest $options"
        ;;
    '1 show')
        offer='countries cities servers settings privacy adapters currentserver user directory connectmethod
            localproxy firewall streamingbypass disconnect streaming speedtest'
        ;;
    '1 login') offer='auto oauth' ;;
    '1 connect' | '1 connectmethod')
        offer='closest public private p2p proxy'
        [[ ${typed[0]} == connect ]] && offer+=' last'
        _sdkcli_offer_lines < <(_sdkcli_places)
        ;;
    '2 connect '* | '3 connect '* | '2 connectmethod '* | '3 connectmethod '*)
        _sdkcli_offer_lines < <(_sdkcli_places "${typed[@]:1}")
        ;;
    '1 mode') offer='redundant speed streaming' ;;
    '1 transport') offer='auto tcp tcp-multi udp https' ;;
    '1 encryption' | '1 esni' | '1 headercompression' | '1 jumbo' | '1 localproxy' | '1 packetaggr' | \
        '1 startupconnect' | '2 route default' | '2 captiveportal login' | '2 safebrowsing enable' | \
        '3 adapter encryption '* | '3 streamingbypass service '*)
        offer='on off'
        ;;
    '1 route') offer='default' ;;
    '1 daemon') offer='exit' ;;
    '1 captiveportal') offer='check login' ;;
    '1 adapter') offer='datalimit encryption overlimitratelimit priority ratelimit resetusage' ;;
    '2 adapter datalimit') offer='daily dailyboost monthly' ;;
    '2 adapter '* | '3 adapter datalimit '* | '3 captiveportal login on')
        _sdkcli_offer_lines < <(_sdkcli_ask adapters adapterID)
        ;;
    '3 adapter priority '*) offer='always secondary backup never' ;;
    '3 adapter ratelimit '* | '4 adapter datalimit daily '* | '4 adapter datalimit monthly '*)
        offer='unlimited'
        ;;
    '1 firewall') offer='mode domains ipv4 ipv6 ports' ;;
    '1 streaming') offer='domains ipv4 ipv6 ports' ;;
    '1 streamingbypass') offer='domains ipv4 ipv6 ports service' ;;
    '2 firewall mode') offer='off allowlist denylist' ;;
    '2 streamingbypass service') _sdkcli_offer_lines < <(_sdkcli_ask streamingbypass title) ;;
    '2 firewall '* | '2 streaming '* | '2 streamingbypass '*) offer='add rem set' ;;
    '1 safebrowsing')
        offer='initialize config enable errors stats redirects loglevel token homenetwork override settings
            start stop update'
        ;;
    '2 safebrowsing loglevel') offer='trace debug info warning error' ;;
    '2 safebrowsing override') offer='none unsafe safe' ;;
    [2-6]' stats '*) offer='current day week month total' ;;
    esac
    local -a static
    mapfile -t static < <(compgen -W "$offer" -- "$cur")
    COMPREPLY+=("${static[@]}")
}

complete -F _sdkcli sdkcli
