# Makes of the lines of "kelvaris-monitor watch link state connections" one line for a status bar each:
#   kelvaris-monitor watch link state connections | jq -n -c --unbuffered -f bar.jq
# The object is what waybar reads; "-r --arg text 1" prints its text alone.
def rate: # of bits per second
    if . >= 1e9 then "\(. / 1e8 | round / 10)G"
    elif . >= 1e6 then "\(. / 1e5 | round / 10)M"
    else "\(. / 1e3 | round)k"
    end;

foreach inputs as $change ({};
    if $change.event == "snapshot" then $change.data else .[$change.event] = $change.data end;

    [.connections.connections[]? | select(.connected)] as $lines
    | if .link.link != "up" then
        {text: "away", tooltip: "The daemon doesn't answer.", class: "away"}
      elif .state.state != "CONNECTED" then
        {text: (.state.state // "unknown" | ascii_downcase), tooltip: "", class: "off"}
      else
        {
            text: "↓\([$lines[].receiveBps] | add // 0 | rate) ↑\([$lines[].sendBps] | add // 0 | rate)",
            tooltip: [$lines[] | "\(.adapterID | @html) ↓\(.receiveBps | rate) ↑\(.sendBps | rate) \(.latencyMs) ms"] | join("\n"),
            class: "on"
        }
      end
    | if $ARGS.named.text then .text else . end
)
