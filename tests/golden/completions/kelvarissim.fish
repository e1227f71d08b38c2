# Completion of kelvarissim for fish.

complete -c kelvarissim -f
complete -c kelvarissim -l port -x -d 'listens on this port (9330); 0 picks a free one'
complete -c kelvarissim -l verbose -d 'logs each request (<-) and each report (->) on standard error'
complete -c kelvarissim -l interval -x -d 'time between two periodic reports (1000)'
complete -c kelvarissim -l traffic -d 'connects at the start and lives through days of lively traffic'
complete -c kelvarissim -l seed -x -d 'which days --traffic lives through (1)'
complete -c kelvarissim -l speed -x -d 'how much faster they pass than real ones (1)'
complete -c kelvarissim -l silent -d 'upgrades and obeys, but reports nothing'
complete -c kelvarissim -l delay -x -d 'handles each request that much later, in order'
complete -c kelvarissim -l lock -x -d 'answers that request with a locked setting; repeatable'
complete -c kelvarissim -l drop-after -x -d 'drops each link after N requests on it, set_app_name included'
complete -c kelvarissim -l close-frame-after -x -d 'sends a WebSocket close frame after N requests instead'
complete -c kelvarissim -l connect-error -x -d 'makes every connect fail with this error type'
complete -c kelvarissim -l disconnect-reason -x -d 'why the last session ended (USERINITIATED)'
complete -c kelvarissim -l safebrowsing-error -x -d 'the safe browsing service refuses with this code'
complete -c kelvarissim -l help -d 'prints this text'
