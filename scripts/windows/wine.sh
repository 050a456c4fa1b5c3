# A virtual display and a Wine prefix of their own, for trials of the Windows programs. Sourced.
# What is started here ends here: startWine PREFIX, endWine (also on exit), and what the trials need in between.

# startWine PREFIX: makes the prefix when it is new.
startWine() {
    local numberFile
    numberFile=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1366x900x24 3> "$numberFile" > /dev/null 2>&1 &
    displayServer=$!
    trap endWine EXIT
    for _ in $(seq 100); do [ -s "$numberFile" ] && break; sleep 0.1; done
    DISPLAY=:$(cat "$numberFile")
    rm -f "$numberFile"
    # No Mono and no Gecko: their installers would ask. No menu entries and file types in this user's desktop.
    export DISPLAY WINEPREFIX=$1 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
    export WINEDLLOVERRIDES="mscoree=d;mshtml=d;winemenubuilder.exe=d"
    export LANG=C.UTF-8 LC_ALL=C.UTF-8 # without UTF-8 Wine does not see file names with umlauts
    mkdir -p "$(dirname "$WINEPREFIX")"
    stopPrefix # an old server may still hold a pseudo-terminal that is gone
    wine wineboot -u > /dev/null 2>&1
    wineserver -w # the making of a prefix goes on behind the command
    wine winecfg -v win10 > /dev/null 2>&1
    wineserver -w
    wineserver -p > /dev/null 2>&1 # it stays until it is stopped, so that starts are warm
}

# Ends every Windows program of this prefix.
stopPrefix() {
    wineserver -k > /dev/null 2>&1 || true
    wineserver -w > /dev/null 2>&1 || true
}

endWine() {
    trap - EXIT
    stopPrefix
    kill "$displayServer" 2> /dev/null || true
    wait "$displayServer" 2> /dev/null || true
}

# portsAre NAME=DEVICE...: the serial ports of the prefix. Wine reads them when its server starts.
portsAre() {
    local port
    wine reg delete 'HKLM\Software\Wine\Ports' /f > /dev/null 2>&1 || true
    for port in "$@"; do
        wine reg add 'HKLM\Software\Wine\Ports' /v "${port%%=*}" /d "${port#*=}" /f > /dev/null
    done
    stopPrefix
    wineserver -p > /dev/null 2>&1
}

# waitWindow TITLE [SECONDS]: waits for a window whose title matches and prints its number. (xdotool's own --sync breaks off
# when a window goes away while it looks, and Wine makes and removes several.)
waitWindow() {
    local found
    for _ in $(seq $((${2:-60} * 20))); do
        found=$(xdotool search --onlyvisible --name "$1" 2> /dev/null | head -n 1) || true
        [ -z "$found" ] || { echo "$found"; return 0; }
        sleep 0.05
    done
    echo "no window '$1'" >&2
    return 1
}

milliseconds() { echo $(($(date +%s%N) / 1000000)); }
