#compdef sdkcli
# Completion of sdkcli for zsh.

# Prints the values under a key of what the daemon of this command line shows, if it answers within half a second.
_sdkcli_ask() {
    timeout 0.5 $daemon show $1 2>/dev/null | awk -v wanted=$2 '
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
    local -a place=($typed[2,-1])
    _sdkcli_ask servers tag | awk -F- -v start=${(j:-:)place} -v part=$#typed '
        { parts = $1; for (i = 2; i < part; ++i) parts = parts "-" $i }
        part == 1 || parts == start { print $part }' | sort -u
}

_sdkcli() {
    local -a daemon=(${~${(Q)words[1]}}) typed=("${(@Q)words[2,CURRENT-1]}") offers values
    local what expl
    local -a options=(
        {-i,--ip}':the address of the daemon'
        {-p,--port}':the port of the daemon'
        {-h,--help}':show the usage text'
    )

    if [[ $typed[1] == (-i|--ip) ]]; then
        if (( $#typed == 1 )); then
            _hosts
            return
        fi
        daemon+=($typed[1,2])
        shift 2 typed
        options=({-p,--port}':the port of the daemon')
    fi
    if [[ $typed[1] == (-p|--port) ]]; then
        if (( $#typed == 1 )); then
            _message port
            return
        fi
        daemon+=($typed[1,2])
        shift 2 typed
        options=()
    fi

    # The number of words typed stands behind the words.
    case "$typed $#typed" in
    (' 0')
        offers=(
            'adapter:set what belongs to one adapter'
            'captiveportal:find captive portals and log in there'
            'headercompression:switch header compression'
            'connect:connect to a server'
            'connectmethod:store how to choose a server'
            'daemon:end the daemon'
            'directory:set or reset the domain of the directory server'
            'dns:set the DNS servers'
            'disconnect:disconnect'
            'encryption:switch encryption of the tunnel'
            'esni:switch encrypted server name indication'
            'gateway:set or reset the URI of the directory gateway'
            'jumbo:switch jumbo packets'
            'login:log in'
            'logout:log out'
            'mode:set the bonding mode'
            'overflow:set the overflow threshold'
            'packetaggr:switch packet aggregation'
            'ports:set the forwarded ports'
            'route:switch the default route'
            'show:show settings and lists'
            'speedtest:run a speed test'
            'streamtest:run a stream test'
            'startupconnect:connect when the daemon starts'
            'state:show the state of the session'
            'stats:print statistics as they come'
            'streaming:edit what counts as streaming'
            'streamingbypass:edit what bypasses the tunnel'
            'transport:set the transport of the tunnel'
            'version:show the version of the daemon'
            'firewall:set the firewall'
            'localproxy:switch the local proxy'
            'privacy:no action'
            'safebrowsing:control safe browsing'
        )
        ;;
    ('adapter 1')
        offers=(
            'datalimit'
            'encryption:<adapter id> <on|off>'
            'overlimitratelimit:<adapter id> <speed in bits per second|0 to stop using>'
            'priority:<adapter id> <always|secondary|backup|never>'
            'ratelimit:<adapter id> <speed in bits per second|unlimited>'
            'resetusage:<adapter id>'
        )
        ;;
    ('adapter datalimit 2')
        offers=(
            'daily:<adapter id> <data usage in bytes|unlimited>'
            'dailyboost:<adapter id> <additional bytes>'
            'monthly:<adapter id> <data usage in bytes|unlimited> <day of the month to reset on|0 for last 30 days>'
        )
        ;;
    ('adapter datalimit daily 3'| \
        'adapter datalimit dailyboost 3'| \
        'adapter datalimit monthly 3'| \
        'adapter encryption 2'| \
        'adapter overlimitratelimit 2'| \
        'adapter priority 2'| \
        'adapter ratelimit 2'| \
        'adapter resetusage 2'| \
        'captiveportal login on 3')
        what='adapter id' values=(${(f)"$(_sdkcli_ask adapters adapterID)"})
        ;;
    ('adapter datalimit daily '*' 4'| \
        'adapter datalimit monthly '*' 4'| \
        'adapter ratelimit '*' 3')
        offers=(
            'unlimited'
        )
        ;;
    ('adapter encryption '*' 3'| \
        'captiveportal login 2'| \
        'headercompression 1'| \
        'encryption 1'| \
        'esni 1'| \
        'jumbo 1'| \
        'packetaggr 1'| \
        'route default 2'| \
        'startupconnect 1'| \
        'streamingbypass service '*' 3'| \
        'localproxy 1'| \
        'safebrowsing enable 2')
        offers=(
            'on'
            'off'
        )
        ;;
    ('adapter priority '*' 3')
        offers=(
            'always'
            'secondary'
            'backup'
            'never'
        )
        ;;
    ('captiveportal 1')
        offers=(
            'check'
            'login:<on|off> <adapter id>'
        )
        ;;
    ('connect 1')
        offers=(
            'closest'
            'public'
            'private'
            'p2p'
            'last'
            'proxy'
        )
        what='country' values=(${(f)"$(_sdkcli_places)"})
        ;;
    ('connect '*' 2'| \
        'connectmethod '*' 2')
        what='city' values=(${(f)"$(_sdkcli_places)"})
        ;;
    ('connect '*' '*' 3'| \
        'connectmethod '*' '*' 3')
        what='number' values=(${(f)"$(_sdkcli_places)"})
        ;;
    ('connectmethod 1')
        offers=(
            'closest'
            'public'
            'private'
            'p2p'
            'proxy'
        )
        what='country' values=(${(f)"$(_sdkcli_places)"})
        ;;
    ('daemon 1')
        offers=(
            'exit'
        )
        ;;
    ('dns 1'| \
        'dns '*' 2'| \
        'dns '*' 3')
        what='ip address' values=(${(f)"$(_sdkcli_ask privacy dnsAddresses)"})
        ;;
    ('login 1')
        offers=(
            'auto'
            'oauth:[access token]'
        )
        ;;
    ('mode 1')
        offers=(
            'redundant'
            'speed'
            'streaming'
        )
        ;;
    ('ports '*)
        what='port/proto' values=(${(f)"$(_sdkcli_ask settings protocol)"})
        ;;
    ('route 1')
        offers=(
            'default:<on|off>'
        )
        ;;
    ('show 1')
        offers=(
            'servers:servers that the account may use'
            'settings:settings of the tunnel'
            'privacy:DNS servers'
            'adapters:adapters with their limits and usage'
            'currentserver:the server in use'
            'user:data of the account'
            'directory:directory settings'
            'connectmethod:how a server is chosen'
            'streamingbypass:what bypasses the tunnel'
            'disconnect:why the last session ended'
            'streaming:what counts as streaming'
            'speedtest:results of speed and stream tests'
            'countries:servers that the account may use'
            'cities:servers that the account may use'
            'localproxy:whether the local proxy is on'
            'firewall:mode and lists of the firewall'
        )
        ;;
    ('stats '*' 2'| \
        'stats '*' '*' 3'| \
        'stats '*' '*' 4'| \
        'stats '*' '*' 5'| \
        'stats '*' '*' 6')
        offers=(
            'current'
            'day'
            'week'
            'month'
            'total'
        )
        ;;
    ('streaming 1')
        offers=(
            'domains:<add|rem|set> <domain> ...'
            'ipv4:<add|rem|set> <ip address> ...'
            'ipv6:<add|rem|set> <ip address> ...'
            'ports:<add|rem|set> [port/proto] ...'
        )
        ;;
    ('streaming domains 2'| \
        'streaming ipv4 2'| \
        'streaming ipv6 2'| \
        'streaming ports 2'| \
        'streamingbypass domains 2'| \
        'streamingbypass ipv4 2'| \
        'streamingbypass ipv6 2'| \
        'streamingbypass ports 2'| \
        'firewall domains 2'| \
        'firewall ipv4 2'| \
        'firewall ipv6 2'| \
        'firewall ports 2')
        offers=(
            'add'
            'rem'
            'set'
        )
        ;;
    ('streaming domains rem '*| \
        'streaming domains set '*)
        what='domain' values=(${(f)"$(_sdkcli_ask streaming domains)"})
        ;;
    ('streaming ipv4 rem '*| \
        'streaming ipv4 set '*)
        what='ip address' values=(${(f)"$(_sdkcli_ask streaming ipv4)"})
        ;;
    ('streaming ipv6 rem '*| \
        'streaming ipv6 set '*)
        what='ip address' values=(${(f)"$(_sdkcli_ask streaming ipv6)"})
        ;;
    ('streaming ports rem '*| \
        'streaming ports set '*)
        what='port/proto' values=(${(f)"$(_sdkcli_ask streaming protocol)"})
        ;;
    ('streamingbypass 1')
        offers=(
            'domains:<add|rem|set> <domain> ...'
            'ipv4:<add|rem|set> <ip address> ...'
            'ipv6:<add|rem|set> <ip address> ...'
            'ports:<add|rem|set> <port/proto> ...'
            'service:<service name> <on|off>'
        )
        ;;
    ('streamingbypass domains rem '*| \
        'streamingbypass domains set '*)
        what='domain' values=(${(f)"$(_sdkcli_ask streamingbypass domains)"})
        ;;
    ('streamingbypass ipv4 rem '*| \
        'streamingbypass ipv4 set '*)
        what='ip address' values=(${(f)"$(_sdkcli_ask streamingbypass ipv4)"})
        ;;
    ('streamingbypass ipv6 rem '*| \
        'streamingbypass ipv6 set '*)
        what='ip address' values=(${(f)"$(_sdkcli_ask streamingbypass ipv6)"})
        ;;
    ('streamingbypass ports rem '*| \
        'streamingbypass ports set '*)
        what='port/proto' values=(${(f)"$(_sdkcli_ask streamingbypass protocol)"})
        ;;
    ('streamingbypass service 2')
        what='service name' values=(${(f)"$(_sdkcli_ask streamingbypass title)"})
        ;;
    ('transport 1')
        offers=(
            'auto'
            'tcp'
            'tcp-multi'
            'udp'
            'https'
        )
        ;;
    ('firewall 1')
        offers=(
            'domains:<add|rem|set> <domain> ...'
            'ipv4:<add|rem|set> <ip address> ...'
            'ipv6:<add|rem|set> <ip address> ...'
            'mode:<off|allowlist|denylist>'
            'ports:<add|rem|set> [port/proto] ...'
        )
        ;;
    ('firewall domains rem '*| \
        'firewall domains set '*)
        what='domain' values=(${(f)"$(_sdkcli_ask firewall domains)"})
        ;;
    ('firewall ipv4 rem '*| \
        'firewall ipv4 set '*)
        what='ip address' values=(${(f)"$(_sdkcli_ask firewall ipv4)"})
        ;;
    ('firewall ipv6 rem '*| \
        'firewall ipv6 set '*)
        what='ip address' values=(${(f)"$(_sdkcli_ask firewall ipv6)"})
        ;;
    ('firewall mode 2')
        offers=(
            'off'
            'allowlist'
            'denylist'
        )
        ;;
    ('firewall ports rem '*| \
        'firewall ports set '*)
        what='port/proto' values=(${(f)"$(_sdkcli_ask firewall protocol)"})
        ;;
    ('safebrowsing 1')
        offers=(
            'config:<string>'
            'enable:<on|off>'
            'errors:[duration in seconds]'
            'homenetwork:[retries delay timeout]'
            'initialize:<string>'
            'loglevel:<trace|debug|info|warning|error>'
            'override:<none|unsafe|safe>'
            'redirects:[duration in seconds]'
            'settings'
            'start:<string>'
            'stats'
            'stop'
            'token:<string>'
            'update:<string>'
        )
        ;;
    ('safebrowsing loglevel 2')
        offers=(
            'trace'
            'debug'
            'info'
            'warning'
            'error'
        )
        ;;
    ('safebrowsing override 2')
        offers=(
            'none'
            'unsafe'
            'safe'
        )
        ;;
    esac
    (( $#offers )) && _describe -t words word offers
    (( $#values )) && _wanted values expl $what compadd -a values
    (( $#typed == 0 && $#options )) && _describe -o -t options option options
}

_sdkcli "$@"
