# Completion of sdkcli for fish.

# Prints the words behind the program and its options, one a line; fails where an option still lacks its value.
function __sdkcli_typed
    set -l words (commandline -opc)
    set -e words[1]
    for option in '-i|--ip' '-p|--port'
        if string match -qr -- "^($option)\$" "$words[1]"
            test (count $words) -ge 2; or return 1
            set -e words[1..2]
        end
    end
    test (count $words) -eq 0; or printf '%s\n' $words
end

# Says whether what stands between the program and the cursor matches this pattern as a whole.
function __sdkcli_behind
    set -l words (commandline -opc)
    set -e words[1]
    string match -qr -- "^($argv[1])\$" "$words"
end

# Prints the values under a key of what the daemon of this command line shows, if it answers within half a second.
function __sdkcli_ask -a what key
    set -l words (commandline -opc)
    set -l typed (__sdkcli_typed)
    set -l daemon $words[1..(math (count $words) - (count $typed))]
    set daemon[1] (string replace -r '^~/' $HOME/ -- $daemon[1])
    timeout 0.5 $daemon show $what 2>/dev/null | awk -v wanted=$key '
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
end

# Prints the next part of the servers whose tags begin with the place typed so far: countries, cities or numbers.
function __sdkcli_places
    set -l place (__sdkcli_typed)
    set -e place[1]
    __sdkcli_ask servers tag |
        awk -F- -v start=(string join - -- $place | string collect -a) -v part=(math (count $place) + 1) '
            { parts = $1; for (i = 2; i < part; ++i) parts = parts "-" $i }
            part == 1 || parts == start { print $part }' | sort -u
end

# Prints what may follow, each with what it means behind a tab.
function __sdkcli_offers
    set -l typed (__sdkcli_typed); or return
    # The number of words typed stands behind the words.
    switch "$typed "(count $typed)
        case ' 0'
            echo adapter\t'set what belongs to one adapter'
            echo captiveportal\t'find captive portals and log in there'
            echo headercompression\t'switch header compression'
            echo connect\t'connect to a server'
            echo connectmethod\t'store how to choose a server'
            echo daemon\t'end the daemon'
            echo directory\t'set or reset the domain of the directory server'
            echo dns\t'set the DNS servers'
            echo disconnect\t'disconnect'
            echo encryption\t'switch encryption of the tunnel'
            echo esni\t'switch encrypted server name indication'
            echo gateway\t'set or reset the URI of the directory gateway'
            echo jumbo\t'switch jumbo packets'
            echo login\t'log in'
            echo logout\t'log out'
            echo mode\t'set the bonding mode'
            echo overflow\t'set the overflow threshold'
            echo packetaggr\t'switch packet aggregation'
            echo ports\t'set the forwarded ports'
            echo route\t'switch the default route'
            echo show\t'show settings and lists'
            echo speedtest\t'run a speed test'
            echo streamtest\t'run a stream test'
            echo startupconnect\t'connect when the daemon starts'
            echo state\t'show the state of the session'
            echo stats\t'print statistics as they come'
            echo streaming\t'edit what counts as streaming'
            echo streamingbypass\t'edit what bypasses the tunnel'
            echo transport\t'set the transport of the tunnel'
            echo version\t'show the version of the daemon'
            echo firewall\t'set the firewall'
            echo localproxy\t'switch the local proxy'
            echo privacy\t'no action'
            echo safebrowsing\t'control safe browsing'
        case 'adapter 1'
            echo datalimit
            echo encryption\t'<adapter id> <on|off>'
            echo overlimitratelimit\t'<adapter id> <speed in bits per second|0 to stop using>'
            echo priority\t'<adapter id> <always|secondary|backup|never>'
            echo ratelimit\t'<adapter id> <speed in bits per second|unlimited>'
            echo resetusage\t'<adapter id>'
        case 'adapter datalimit 2'
            echo daily\t'<adapter id> <data usage in bytes|unlimited>'
            echo dailyboost\t'<adapter id> <additional bytes>'
            echo monthly\t'<adapter id> <data usage in bytes|unlimited> <day of the month to reset on|0 for last 30 days>'
        case 'adapter datalimit daily 3' \
            'adapter datalimit dailyboost 3' \
            'adapter datalimit monthly 3' \
            'adapter encryption 2' \
            'adapter overlimitratelimit 2' \
            'adapter priority 2' \
            'adapter ratelimit 2' \
            'adapter resetusage 2' \
            'captiveportal login on 3'
            __sdkcli_ask adapters adapterID | string replace -r '$' \t'adapter id'
        case 'adapter datalimit daily * 4' \
            'adapter datalimit monthly * 4' \
            'adapter ratelimit * 3'
            echo unlimited
        case 'adapter encryption * 3' \
            'captiveportal login 2' \
            'headercompression 1' \
            'encryption 1' \
            'esni 1' \
            'jumbo 1' \
            'packetaggr 1' \
            'route default 2' \
            'startupconnect 1' \
            'streamingbypass service * 3' \
            'localproxy 1' \
            'safebrowsing enable 2'
            echo on
            echo off
        case 'adapter priority * 3'
            echo always
            echo secondary
            echo backup
            echo never
        case 'captiveportal 1'
            echo check
            echo login\t'<on|off> <adapter id>'
        case 'connect 1'
            echo closest
            echo public
            echo private
            echo p2p
            echo last
            echo proxy
            __sdkcli_places | string replace -r '$' \t'country'
        case 'connect * 2' \
            'connectmethod * 2'
            __sdkcli_places | string replace -r '$' \t'city'
        case 'connect * * 3' \
            'connectmethod * * 3'
            __sdkcli_places | string replace -r '$' \t'number'
        case 'connectmethod 1'
            echo closest
            echo public
            echo private
            echo p2p
            echo proxy
            __sdkcli_places | string replace -r '$' \t'country'
        case 'daemon 1'
            echo exit
        case 'dns 1' \
            'dns * 2' \
            'dns * 3'
            __sdkcli_ask privacy dnsAddresses | string replace -r '$' \t'ip address'
        case 'login 1'
            echo auto
            echo oauth\t'[access token]'
        case 'mode 1'
            echo redundant
            echo speed
            echo streaming
        case 'ports *'
            __sdkcli_ask settings protocol | string replace -r '$' \t'port/proto'
        case 'route 1'
            echo default\t'<on|off>'
        case 'show 1'
            echo servers\t'servers that the account may use'
            echo settings\t'settings of the tunnel'
            echo privacy\t'DNS servers'
            echo adapters\t'adapters with their limits and usage'
            echo currentserver\t'the server in use'
            echo user\t'data of the account'
            echo directory\t'directory settings'
            echo connectmethod\t'how a server is chosen'
            echo streamingbypass\t'what bypasses the tunnel'
            echo disconnect\t'why the last session ended'
            echo streaming\t'what counts as streaming'
            echo speedtest\t'results of speed and stream tests'
            echo countries\t'servers that the account may use'
            echo cities\t'servers that the account may use'
            echo localproxy\t'whether the local proxy is on'
            echo firewall\t'mode and lists of the firewall'
        case 'stats * 2' \
            'stats * * 3' \
            'stats * * 4' \
            'stats * * 5' \
            'stats * * 6'
            echo current
            echo day
            echo week
            echo month
            echo total
        case 'streaming 1'
            echo domains\t'<add|rem|set> <domain> ...'
            echo ipv4\t'<add|rem|set> <ip address> ...'
            echo ipv6\t'<add|rem|set> <ip address> ...'
            echo ports\t'<add|rem|set> [port/proto] ...'
        case 'streaming domains 2' \
            'streaming ipv4 2' \
            'streaming ipv6 2' \
            'streaming ports 2' \
            'streamingbypass domains 2' \
            'streamingbypass ipv4 2' \
            'streamingbypass ipv6 2' \
            'streamingbypass ports 2' \
            'firewall domains 2' \
            'firewall ipv4 2' \
            'firewall ipv6 2' \
            'firewall ports 2'
            echo add
            echo rem
            echo set
        case 'streaming domains rem *' \
            'streaming domains set *'
            __sdkcli_ask streaming domains | string replace -r '$' \t'domain'
        case 'streaming ipv4 rem *' \
            'streaming ipv4 set *'
            __sdkcli_ask streaming ipv4 | string replace -r '$' \t'ip address'
        case 'streaming ipv6 rem *' \
            'streaming ipv6 set *'
            __sdkcli_ask streaming ipv6 | string replace -r '$' \t'ip address'
        case 'streaming ports rem *' \
            'streaming ports set *'
            __sdkcli_ask streaming protocol | string replace -r '$' \t'port/proto'
        case 'streamingbypass 1'
            echo domains\t'<add|rem|set> <domain> ...'
            echo ipv4\t'<add|rem|set> <ip address> ...'
            echo ipv6\t'<add|rem|set> <ip address> ...'
            echo ports\t'<add|rem|set> <port/proto> ...'
            echo service\t'<service name> <on|off>'
        case 'streamingbypass domains rem *' \
            'streamingbypass domains set *'
            __sdkcli_ask streamingbypass domains | string replace -r '$' \t'domain'
        case 'streamingbypass ipv4 rem *' \
            'streamingbypass ipv4 set *'
            __sdkcli_ask streamingbypass ipv4 | string replace -r '$' \t'ip address'
        case 'streamingbypass ipv6 rem *' \
            'streamingbypass ipv6 set *'
            __sdkcli_ask streamingbypass ipv6 | string replace -r '$' \t'ip address'
        case 'streamingbypass ports rem *' \
            'streamingbypass ports set *'
            __sdkcli_ask streamingbypass protocol | string replace -r '$' \t'port/proto'
        case 'streamingbypass service 2'
            __sdkcli_ask streamingbypass title | string replace -r '$' \t'service name'
        case 'transport 1'
            echo auto
            echo tcp
            echo tcp-multi
            echo udp
            echo https
        case 'firewall 1'
            echo domains\t'<add|rem|set> <domain> ...'
            echo ipv4\t'<add|rem|set> <ip address> ...'
            echo ipv6\t'<add|rem|set> <ip address> ...'
            echo mode\t'<off|allowlist|denylist>'
            echo ports\t'<add|rem|set> [port/proto] ...'
        case 'firewall domains rem *' \
            'firewall domains set *'
            __sdkcli_ask firewall domains | string replace -r '$' \t'domain'
        case 'firewall ipv4 rem *' \
            'firewall ipv4 set *'
            __sdkcli_ask firewall ipv4 | string replace -r '$' \t'ip address'
        case 'firewall ipv6 rem *' \
            'firewall ipv6 set *'
            __sdkcli_ask firewall ipv6 | string replace -r '$' \t'ip address'
        case 'firewall mode 2'
            echo off
            echo allowlist
            echo denylist
        case 'firewall ports rem *' \
            'firewall ports set *'
            __sdkcli_ask firewall protocol | string replace -r '$' \t'port/proto'
        case 'safebrowsing 1'
            echo config\t'<string>'
            echo enable\t'<on|off>'
            echo errors\t'[duration in seconds]'
            echo homenetwork\t'[retries delay timeout]'
            echo initialize\t'<string>'
            echo loglevel\t'<trace|debug|info|warning|error>'
            echo override\t'<none|unsafe|safe>'
            echo redirects\t'[duration in seconds]'
            echo settings
            echo start\t'<string>'
            echo stats
            echo stop
            echo token\t'<string>'
            echo update\t'<string>'
        case 'safebrowsing loglevel 2'
            echo trace
            echo debug
            echo info
            echo warning
            echo error
        case 'safebrowsing override 2'
            echo none
            echo unsafe
            echo safe
    end
end

complete -c sdkcli -f
complete -c sdkcli -n '__sdkcli_behind ""' -s i -l ip -d 'the address of the daemon'
complete -c sdkcli -n '__sdkcli_behind "-i|--ip"' -a '(__fish_print_hostnames)'
complete -c sdkcli -n '__sdkcli_behind "|(-i|--ip) [^ ]+"' -s p -l port -d 'the port of the daemon'
complete -c sdkcli -n '__sdkcli_behind ""' -s h -l help -d 'show the usage text'
complete -c sdkcli -a '(__sdkcli_offers)'
