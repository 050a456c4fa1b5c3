# A virtual display and a Wine prefix of their own, for trials of the Windows programs. Sourced.
# What is started here ends here: startWine PREFIX, endWine (also on exit), and what the trials need in between.

failures=0
pictures=0
started=() # what ends with the trial

# startWine PREFIX: makes the prefix when it is new.
startWine() {
    local numberFile
    numberFile=$(mktemp)
    Xvfb -displayfd 3 -screen 0 1366x900x24 3> "$numberFile" > /dev/null 2>&1 &
    started+=($!)
    trap endWine EXIT
    for _ in $(seq 100); do [ -s "$numberFile" ] && break; sleep 0.1; done
    DISPLAY=:$(cat "$numberFile")
    rm -f "$numberFile"
    # No Mono and no Gecko: their installers would ask. No menu entries and file types in this user's desktop.
    export DISPLAY WINEPREFIX=$1 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
    export WINEDLLOVERRIDES="mscoree=d;mshtml=d;winemenubuilder.exe=d"
    export LANG=C.UTF-8 LC_ALL=C.UTF-8 # without UTF-8 Wine does not see file names with umlauts
    export HOME=$WINEPREFIX-home # Wine's desktop and documents are links to there
    mkdir -p "$HOME"
    stopPrefix # an old server may still hold a pseudo-terminal that is gone
    wine wineboot -u > /dev/null 2>&1
    wineserver -w # the making of a prefix goes on behind the command
    wine winecfg -v win10 > /dev/null 2>&1
    for font in Tahoma "Segoe UI" "MS Shell Dlg" "MS Shell Dlg 2"; do # Windows' own are not here
        wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d "DejaVu Sans" /f > /dev/null 2>&1
    done
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
    kill "${started[@]}" 2> /dev/null || true
    wait "${started[@]}" 2> /dev/null || true
}

# startSimulator NAME: a simulated handheld behind a pseudo-terminal; the files NAME.port, NAME.bin, NAME.log. It reads
# its commands from descriptor `simulator`.
startSimulator() {
    rm -f "$1.port"
    exec {simulator}> >(exec build/windows-tools/bin/handregler-sim --link "$1.port" --flash "$1.bin" > "$1.log" 2>&1)
    started+=($!)
    for _ in $(seq 50); do [ -e "$1.port" ] && break; sleep 0.1; done
}

endSimulator() {
    echo quit >&"$simulator"
    exec {simulator}>&-
    sleep 0.5 # its memory is written
}

# portsAre NAME=DEVICE...: the serial ports of the prefix. Wine reads them when its server starts.
portsAre() {
    local port
    wine reg delete 'HKLM\Software\Wine\Ports' /f > /dev/null 2>&1 || true
    for port in "$@"; do
        wine reg add 'HKLM\Software\Wine\Ports' /v "${port%%=*}" /d "${port#*=}" /f > /dev/null 2>&1
    done
    stopPrefix
    wineserver -p > /dev/null 2>&1
}

# describe PORT TEXT: an adapter of this name behind the port, as its driver enters it under Windows.
describe() {
    local guid='{86E0D1E0-8089-11D0-9CE4-08003E301F73}' system='HKLM\System\CurrentControlSet'
    local bus=FTDIBUS number=VID_0403+PID_6001+A1
    local device="$system\\Enum\\$bus\\$number\\0000"
    local class="$system\\Control\\DeviceClasses\\$guid\\##?#$bus#$number#0000#$guid"
    {
        wine reg add "$device" /v DeviceDesc /d "$2" /f
        wine reg add "$device" /v ClassGUID /d '{4D36E978-E325-11CE-BFC1-08002BE10318}' /f
        wine reg add "$device\\Device Parameters" /v PortName /d "$1" /f
        wine reg add "$class" /v DeviceInstance /d "$bus\\$number\\0000" /f
        wine reg add "$class\\#" /v SymbolicLink /d "\\\\?\\$bus#$number#0000#$guid" /f
        wine reg add "$class\\#\\Control" /v Linked /t REG_DWORD /d 1 /f
    } > /dev/null 2>&1
}

# waitWindow TITLE [SECONDS]: waits for a window whose title matches and gives it the keys. (xdotool's own --sync breaks off
# when a window goes away while it looks, and Wine makes and removes several.)
waitWindow() {
    for _ in $(seq $((${2:-60} * 20))); do
        window=$(xdotool search --onlyvisible --name "$1" 2> /dev/null | head -n 1) || true
        if [ -n "$window" ]; then
            xdotool windowfocus "$window" 2> /dev/null || true
            return 0
        fi
        sleep 0.05
    done
    echo "no window '$1'; there are:" >&2
    xdotool search --onlyvisible --name . 2> /dev/null | while read -r other; do xdotool getwindowname "$other" >&2; done
    return 1
}

# Keys one after the other, as a person presses them.
keys() { for key in "$@"; do sleep 0.3; xdotool key "$key"; done; }
types() { sleep 0.3; xdotool key ctrl+a; sleep 0.3; xdotool type --delay 30 "$1"; }

milliseconds() { echo $(($(date +%s%N) / 1000000)); }

fails() { ! "$@"; }
picture() { import -window root "$trial/$((++pictures))-$1.png"; }

# check TEXT COMMAND...: says whether the command did.
check() {
    local text=$1
    shift
    if "$@" > /dev/null 2>&1; then echo "ok    $text"; else echo "FAILED $text"; failures=$((failures + 1)); fi
}
