#compdef kelvarissim
# Completion of kelvarissim for zsh.

_arguments \
    '--port[listens on this port (9330); 0 picks a free one]:N:' \
    '--verbose[logs each request (<-) and each report (->) on standard error]' \
    '--interval[time between two periodic reports (1000)]:MS:' \
    '--traffic[connects at the start and lives through days of lively traffic]' \
    '--seed[which days --traffic lives through (1)]:N:' \
    '--speed[how much faster they pass than real ones (1)]:FACTOR:' \
    '--silent[upgrades and obeys, but reports nothing]' \
    '--delay[handles each request that much later, in order]:MS:' \
    '*--lock[answers that request with a locked setting; repeatable]:REQUEST=REASON:' \
    '--drop-after[drops each link after N requests on it, set_app_name included]:N:' \
    '--close-frame-after[sends a WebSocket close frame after N requests instead]:N:' \
    '--connect-error[makes every connect fail with this error type]:TYPE:' \
    '--disconnect-reason[why the last session ended (USERINITIATED)]:REASON:' \
    '--safebrowsing-error[the safe browsing service refuses with this code]:CODE:' \
    '--help[prints this text]' \
    && return 0
