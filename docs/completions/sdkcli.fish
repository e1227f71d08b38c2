# Completion of sdkcli for fish.

# The words behind the program and its options, one a line; fails where an option still lacks its value.
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

# Whether the words typed so far match these patterns, one for one.
function __sdkcli_at
    set -l typed (__sdkcli_typed); or return
    test (count $typed) -eq (count $argv); or return
    for i in (seq (count $argv))
        string match -qr -- "^($argv[$i])\$" $typed[$i]; or return
    end
end

# Whether what stands between the program and the cursor matches this pattern as a whole.
function __sdkcli_behind
    set -l words (commandline -opc)
    set -e words[1]
    string match -qr -- "^($argv[1])\$" "$words"
end

# What the daemon of this command line answers, if it does so within half a second: each text under a key.
function __sdkcli_ask -a what key
    set -l words (commandline -opc)
    set -l typed (__sdkcli_typed)
    set -l daemon $words[1..(math (count $words) - (count $typed))]
    set daemon[1] (string replace -r '^~/' $HOME/ -- $daemon[1])
    timeout 0.5 $daemon show $what 2>/dev/null | awk -F'"' -v key=$key '$2 == key { print $4 }'
end

# The next part of the servers whose tags begin with the place typed so far: countries, cities, numbers.
function __sdkcli_places
    set -l place (__sdkcli_typed)
    set -e place[1]
    __sdkcli_ask servers tag |
        awk -F- -v start=(string join - -- $place | string collect -a) -v part=(math (count $place) + 1) '
            { parts = $1; for (i = 2; i < part; ++i) parts = parts "-" $i }
            part == 1 || parts == start { print $part }' | sort -u
end

complete -c sdkcli -f

complete -c sdkcli -n '__sdkcli_behind ""' -s i -l ip -d 'The address of the daemon'
complete -c sdkcli -n '__sdkcli_behind "-i|--ip"' -a '(__fish_print_hostnames)'
complete -c sdkcli -n '__sdkcli_behind "|(-i|--ip) [^ ]+"' -s p -l port -d 'The port of the daemon'
complete -c sdkcli -n '__sdkcli_behind ""' -s h -l help -d 'Show the usage text'

complete -c sdkcli -n __sdkcli_at -a state -d 'Show the state of the session'
complete -c sdkcli -n __sdkcli_at -a headercompression -d 'Switch header compression'
complete -c sdkcli -n __sdkcli_at -a connect -d 'Connect to a server'
complete -c sdkcli -n __sdkcli_at -a connectmethod -d 'Store how to choose a server'
complete -c sdkcli -n __sdkcli_at -a disconnect -d 'Disconnect'
complete -c sdkcli -n __sdkcli_at -a encryption -d 'Switch encryption of the tunnel'
complete -c sdkcli -n __sdkcli_at -a jumbo -d 'Switch jumbo packets'
complete -c sdkcli -n __sdkcli_at -a login -d 'Log in'
complete -c sdkcli -n __sdkcli_at -a directory -d 'Set or reset the domain of the directory server'
complete -c sdkcli -n __sdkcli_at -a gateway -d 'Set or reset the URI of the directory gateway'
complete -c sdkcli -n __sdkcli_at -a esni -d 'Switch encrypted server name indication'
complete -c sdkcli -n __sdkcli_at -a logout -d 'Log out'
complete -c sdkcli -n __sdkcli_at -a mode -d 'Set the bonding mode'
complete -c sdkcli -n __sdkcli_at -a overflow -d 'Set the overflow speed'
complete -c sdkcli -n __sdkcli_at -a packetaggr -d 'Switch packet aggregation'
complete -c sdkcli -n __sdkcli_at -a ports -d 'Set the forwarded ports'
complete -c sdkcli -n __sdkcli_at -a show -d 'Show settings and lists'
complete -c sdkcli -n __sdkcli_at -a safebrowsing -d 'Control safe browsing'
complete -c sdkcli -n __sdkcli_at -a startupconnect -d 'Connect when the daemon starts'
complete -c sdkcli -n __sdkcli_at -a stats -d 'Print statistics as they come'
complete -c sdkcli -n __sdkcli_at -a adapter -d 'Set what belongs to one adapter'
complete -c sdkcli -n __sdkcli_at -a transport -d 'Set the transport of the tunnel'
complete -c sdkcli -n __sdkcli_at -a privacy -d 'No action'
complete -c sdkcli -n __sdkcli_at -a version -d 'Show the version of the daemon'
complete -c sdkcli -n __sdkcli_at -a daemon -d 'End the daemon'
complete -c sdkcli -n __sdkcli_at -a dns -d 'Set the DNS servers'
complete -c sdkcli -n __sdkcli_at -a captiveportal -d 'Find captive portals and log in there'
complete -c sdkcli -n __sdkcli_at -a localproxy -d 'Switch the local proxy'
complete -c sdkcli -n __sdkcli_at -a firewall -d 'Set the firewall'
complete -c sdkcli -n __sdkcli_at -a route -d 'Switch the default route'
complete -c sdkcli -n __sdkcli_at -a streamingbypass -d 'Edit what bypasses the tunnel'
complete -c sdkcli -n __sdkcli_at -a streaming -d 'Edit what counts as streaming'
complete -c sdkcli -n __sdkcli_at -a speedtest -d 'Run a speed test'
complete -c sdkcli -n __sdkcli_at -a streamtest -d 'Run a stream test'

complete -c sdkcli -n '__sdkcli_at show' -a countries -d 'Servers'
complete -c sdkcli -n '__sdkcli_at show' -a cities -d 'Servers'
complete -c sdkcli -n '__sdkcli_at show' -a servers -d 'Servers that the account may use'
complete -c sdkcli -n '__sdkcli_at show' -a settings -d 'Settings of the tunnel'
complete -c sdkcli -n '__sdkcli_at show' -a privacy -d 'DNS servers'
complete -c sdkcli -n '__sdkcli_at show' -a adapters -d 'Adapters with their limits and usage'
complete -c sdkcli -n '__sdkcli_at show' -a currentserver -d 'The server in use'
complete -c sdkcli -n '__sdkcli_at show' -a user -d 'Data of the account'
complete -c sdkcli -n '__sdkcli_at show' -a directory -d 'Directory settings'
complete -c sdkcli -n '__sdkcli_at show' -a connectmethod -d 'How a server is chosen'
complete -c sdkcli -n '__sdkcli_at show' -a localproxy -d 'Whether the local proxy is on'
complete -c sdkcli -n '__sdkcli_at show' -a firewall -d 'Mode and lists of the firewall'
complete -c sdkcli -n '__sdkcli_at show' -a streamingbypass -d 'What bypasses the tunnel'
complete -c sdkcli -n '__sdkcli_at show' -a disconnect -d 'Why the last session ended'
complete -c sdkcli -n '__sdkcli_at show' -a streaming -d 'What counts as streaming'
complete -c sdkcli -n '__sdkcli_at show' -a speedtest -d 'Results of speed and stream tests'

complete -c sdkcli -n '__sdkcli_at login' -a 'auto oauth'
complete -c sdkcli -n '__sdkcli_at "connect|connectmethod"' -a 'closest public private p2p proxy'
complete -c sdkcli -n '__sdkcli_at connect' -a last
complete -c sdkcli -n '__sdkcli_at "connect|connectmethod"' -a '(__sdkcli_places)' -d Country
complete -c sdkcli -n '__sdkcli_at "connect|connectmethod" .+' -a '(__sdkcli_places)' -d City
complete -c sdkcli -n '__sdkcli_at "connect|connectmethod" .+ .+' -a '(__sdkcli_places)' -d Server

complete -c sdkcli -n '__sdkcli_at mode' -a 'redundant speed streaming'
complete -c sdkcli -n '__sdkcli_at transport' -a 'auto tcp tcp-multi udp https'
complete -c sdkcli -n '__sdkcli_at "encryption|esni|headercompression|jumbo|localproxy"' -a 'on off'
complete -c sdkcli -n '__sdkcli_at "packetaggr|startupconnect"' -a 'on off'
complete -c sdkcli -n '__sdkcli_at route' -a default
complete -c sdkcli -n '__sdkcli_at route default' -a 'on off'
complete -c sdkcli -n '__sdkcli_at daemon' -a exit
complete -c sdkcli -n '__sdkcli_at captiveportal' -a 'check login'
complete -c sdkcli -n '__sdkcli_at captiveportal login' -a 'on off'
complete -c sdkcli -n '__sdkcli_at captiveportal login on' -a '(__sdkcli_ask adapters adapterID)' -d Adapter

complete -c sdkcli -n '__sdkcli_at adapter' \
    -a 'datalimit encryption overlimitratelimit priority ratelimit resetusage'
complete -c sdkcli -n '__sdkcli_at adapter datalimit' -a 'daily dailyboost monthly'
complete -c sdkcli -n '__sdkcli_at adapter "(?!datalimit).*"; or __sdkcli_at adapter datalimit .+' \
    -a '(__sdkcli_ask adapters adapterID)' -d Adapter
complete -c sdkcli -n '__sdkcli_at adapter priority .+' -a 'always secondary backup never'
complete -c sdkcli -n '__sdkcli_at adapter encryption .+' -a 'on off'
complete -c sdkcli -n '__sdkcli_at adapter ratelimit .+' -a unlimited
complete -c sdkcli -n '__sdkcli_at adapter datalimit "daily|monthly" .+' -a unlimited

complete -c sdkcli -n '__sdkcli_at "firewall|streaming|streamingbypass"' -a 'domains ipv4 ipv6 ports'
complete -c sdkcli -n '__sdkcli_at "firewall|streaming|streamingbypass" "domains|ipv4|ipv6|ports"' \
    -a 'add rem set'
complete -c sdkcli -n '__sdkcli_at firewall' -a mode
complete -c sdkcli -n '__sdkcli_at firewall mode' -a 'off allowlist denylist'
complete -c sdkcli -n '__sdkcli_at streamingbypass' -a service
complete -c sdkcli -n '__sdkcli_at streamingbypass service' \
    -a '(__sdkcli_ask streamingbypass title)' -d Service
complete -c sdkcli -n '__sdkcli_at streamingbypass service .+' -a 'on off'

for periods in '' '.+' '.+ .+' '.+ .+ .+' '.+ .+ .+ .+'
    complete -c sdkcli -n "__sdkcli_at stats .+ $periods" -a 'current day week month total'
end

complete -c sdkcli -n '__sdkcli_at safebrowsing' \
    -a 'initialize config enable errors stats redirects loglevel token homenetwork'
complete -c sdkcli -n '__sdkcli_at safebrowsing' -a 'override settings start stop update'
complete -c sdkcli -n '__sdkcli_at safebrowsing enable' -a 'on off'
complete -c sdkcli -n '__sdkcli_at safebrowsing loglevel' -a 'trace debug info warning error'
complete -c sdkcli -n '__sdkcli_at safebrowsing override' -a 'none unsafe safe'
