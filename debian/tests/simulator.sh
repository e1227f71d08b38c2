# Starts the simulated daemon for a test that sources this: its port is in $port, and it ends with the test. A foreign
# program is started through $EMULATOR.
simulator_output=$(mktemp)
# shellcheck disable=SC2086
$EMULATOR "$(command -v kelvarissim)" --port 0 >"$simulator_output" &
simulator=$!
trap 'kill $simulator 2>/dev/null || true; rm -f "$simulator_output"' EXIT
until port=$(sed -n 's/.*listening on .*:\([0-9]*\)$/\1/p' "$simulator_output") && [ -n "$port" ]; do
    kill -0 "$simulator"
    sleep 0.05
done

sdkcli() {
    # shellcheck disable=SC2086
    timeout 60 $EMULATOR "$(type -P sdkcli)" -p "$port" "$@"
}
