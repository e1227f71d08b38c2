# Completion of sdkcli for bash.

# Prints the values under a key of what the daemon of this command line shows, if it answers within half a second.
_sdkcli_ask() {
    timeout 0.5 "${daemon[@]}" show "$1" 2>/dev/null | awk -v wanted="$2" '
index($0, sprintf("%c", 92)) { next } # a text with an escape would have to be decoded
{
    for (line = $0; match(line, /"[^"]*"|[0-9]+/); line = behind) {
        token = substr(line, RSTART, RLENGTH)
        behind = substr(line, RSTART + RLENGTH)
        gsub(/"/, "", token)
        if (behind ~ /^ :/) key = token
        else if (key == "port") port = token
        else if (key == wanted) print (wanted == "protocol" ? port "/" token : token)
    }
}
'
}

# Prints the next part of the servers whose tags begin with the place typed so far: countries, cities or numbers.
_sdkcli_places() {
    local start
    start=$(IFS=- && echo "${typed[*]:1}")
    _sdkcli_ask servers tag | awk -F- -v start="$start" -v part="${#typed[@]}" '
        { parts = $1; for (i = 2; i < part; ++i) parts = parts "-" $i }
        part == 1 || parts == start { print $part }' | sort -u
}

# Offers lines, which may hold anything, as words. What stands before a colon isn't replaced by bash and left out.
_sdkcli_offer_lines() {
    local line
    while IFS= read -r line; do
        if [[ -n $line && $line == "${cur//\\/}"* ]]; then
            printf -v line %q "$line"
            [[ $cur == *:* && $COMP_WORDBREAKS == *:* ]] && line=${line#"${cur%:*}:"}
            COMPREPLY+=("$line")
        fi
    done
}

_sdkcli() {
    local cur offer='' options='-i --ip -p --port -h --help' line=$COMP_LINE word
    local -a daemon=("${1/#\~\//$HOME/}") typed=()
    COMPREPLY=()

    # Bash splits words at colons; those without a blank between them are one.
    for word in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        if [[ -n $line && $line != [[:space:]]* && ${#typed[@]} -gt 0 ]]; then
            typed[-1]+=$word
        else
            typed+=("$word")
        fi
        line=${line#"${line%%[![:space:]]*}"}
        line=${line#"$word"}
    done
    cur=${typed[-1]}
    typed=("${typed[@]:1:${#typed[@]}-2}")

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

    # The number of words typed stands behind the words.
    case "${typed[*]} ${#typed[@]}" in
    ' 0')
        offer='adapter captiveportal headercompression connect connectmethod daemon directory dns disconnect encryption esni gateway jumbo login logout mode overflow packetaggr ports route show speedtest streamtest startupconnect state stats streaming streamingbypass transport version firewall localproxy privacy safebrowsing'
        ;;
    'adapter 1')
        offer='datalimit encryption overlimitratelimit priority ratelimit resetusage'
        ;;
    'adapter datalimit 2')
        offer='daily dailyboost monthly'
        ;;
    'adapter datalimit daily 3' | \
        'adapter datalimit dailyboost 3' | \
        'adapter datalimit monthly 3' | \
        'adapter encryption 2' | \
        'adapter overlimitratelimit 2' | \
        'adapter priority 2' | \
        'adapter ratelimit 2' | \
        'adapter resetusage 2' | \
        'captiveportal login on 3')
        _sdkcli_offer_lines < <(_sdkcli_ask adapters adapterID)
        ;;
    'adapter datalimit daily '*' 4' | \
        'adapter datalimit monthly '*' 4' | \
        'adapter ratelimit '*' 3')
        offer='unlimited'
        ;;
    'adapter encryption '*' 3' | \
        'captiveportal login 2' | \
        'headercompression 1' | \
        'encryption 1' | \
        'esni 1' | \
        'jumbo 1' | \
        'packetaggr 1' | \
        'route default 2' | \
        'startupconnect 1' | \
        'streamingbypass service '*' 3' | \
        'localproxy 1' | \
        'safebrowsing enable 2')
        offer='on off'
        ;;
    'adapter priority '*' 3')
        offer='always secondary backup never'
        ;;
    'captiveportal 1')
        offer='check login'
        ;;
    'connect 1')
        offer='closest public private p2p last proxy'
        _sdkcli_offer_lines < <(_sdkcli_places)
        ;;
    'connect '*' 2' | \
        'connect '*' '*' 3' | \
        'connectmethod '*' 2' | \
        'connectmethod '*' '*' 3')
        _sdkcli_offer_lines < <(_sdkcli_places)
        ;;
    'connectmethod 1')
        offer='closest public private p2p proxy'
        _sdkcli_offer_lines < <(_sdkcli_places)
        ;;
    'daemon 1')
        offer='exit'
        ;;
    'dns 1' | \
        'dns '*' 2' | \
        'dns '*' 3')
        _sdkcli_offer_lines < <(_sdkcli_ask privacy dnsAddresses)
        ;;
    'login 1')
        offer='auto oauth'
        ;;
    'mode 1')
        offer='redundant speed streaming'
        ;;
    'ports '*)
        _sdkcli_offer_lines < <(_sdkcli_ask settings protocol)
        ;;
    'route 1')
        offer='default'
        ;;
    'show 1')
        offer='servers settings privacy adapters currentserver user directory connectmethod streamingbypass disconnect streaming speedtest countries cities localproxy firewall'
        ;;
    'stats '*' 2' | \
        'stats '*' '*' 3' | \
        'stats '*' '*' 4' | \
        'stats '*' '*' 5' | \
        'stats '*' '*' 6')
        offer='current day week month total'
        ;;
    'streaming 1')
        offer='domains ipv4 ipv6 ports'
        ;;
    'streaming domains 2' | \
        'streaming ipv4 2' | \
        'streaming ipv6 2' | \
        'streaming ports 2' | \
        'streamingbypass domains 2' | \
        'streamingbypass ipv4 2' | \
        'streamingbypass ipv6 2' | \
        'streamingbypass ports 2' | \
        'firewall domains 2' | \
        'firewall ipv4 2' | \
        'firewall ipv6 2' | \
        'firewall ports 2')
        offer='add rem set'
        ;;
    'streaming domains rem '* | \
        'streaming domains set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streaming domains)
        ;;
    'streaming ipv4 rem '* | \
        'streaming ipv4 set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streaming ipv4)
        ;;
    'streaming ipv6 rem '* | \
        'streaming ipv6 set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streaming ipv6)
        ;;
    'streaming ports rem '* | \
        'streaming ports set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streaming protocol)
        ;;
    'streamingbypass 1')
        offer='domains ipv4 ipv6 ports service'
        ;;
    'streamingbypass domains rem '* | \
        'streamingbypass domains set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streamingbypass domains)
        ;;
    'streamingbypass ipv4 rem '* | \
        'streamingbypass ipv4 set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streamingbypass ipv4)
        ;;
    'streamingbypass ipv6 rem '* | \
        'streamingbypass ipv6 set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streamingbypass ipv6)
        ;;
    'streamingbypass ports rem '* | \
        'streamingbypass ports set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask streamingbypass protocol)
        ;;
    'streamingbypass service 2')
        _sdkcli_offer_lines < <(_sdkcli_ask streamingbypass title)
        ;;
    'transport 1')
        offer='auto tcp tcp-multi udp https'
        ;;
    'firewall 1')
        offer='domains ipv4 ipv6 mode ports'
        ;;
    'firewall domains rem '* | \
        'firewall domains set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask firewall domains)
        ;;
    'firewall ipv4 rem '* | \
        'firewall ipv4 set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask firewall ipv4)
        ;;
    'firewall ipv6 rem '* | \
        'firewall ipv6 set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask firewall ipv6)
        ;;
    'firewall mode 2')
        offer='off allowlist denylist'
        ;;
    'firewall ports rem '* | \
        'firewall ports set '*)
        _sdkcli_offer_lines < <(_sdkcli_ask firewall protocol)
        ;;
    'safebrowsing 1')
        offer='config enable errors homenetwork initialize loglevel override redirects settings start stats stop token update'
        ;;
    'safebrowsing loglevel 2')
        offer='trace debug info warning error'
        ;;
    'safebrowsing override 2')
        offer='none unsafe safe'
        ;;
    esac
    ((${#typed[@]} > 0)) || offer+=" $options"
    local -a words
    mapfile -t words < <(compgen -W "$offer" -- "$cur")
    COMPREPLY+=("${words[@]}")
}

complete -F _sdkcli sdkcli
