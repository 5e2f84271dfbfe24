# Sourced by ./bench/run and ./bench/soak: a display, a sound server with a null sink and a radio of our own, and the
# programs that are measured there. What they say is kept in build/bench/.

bin=build/release/bin
stage=build/bench
sink=bench

# Builds what people run and what is measured with it.
build_release() {
    mkdir -p build
    { cmake --preset release && cmake --build --preset release; } >build/bench-build.log 2>&1 || {
        cat build/bench-build.log >&2
        exit 1
    }
}

# wait_for COMMAND...: until it succeeds; ends the script where that takes more than 10 s.
wait_for() {
    local deadline=$((SECONDS + 10))
    until "$@" >/dev/null 2>&1; do
        if [ $SECONDS -gt $deadline ]; then
            echo "Waited in vain for: $*" >&2
            exit 1
        fi
        sleep 0.02
    done
}

end_stage() {
    jobs -pr | xargs -r kill 2>/dev/null || true
    wait
    rm -rf "$runtime"
}

# Sets $streams and $playlists to the addresses of the radio's stations, in the order of the table.
start_stage() {
    rm -rf $stage
    export HOME=$PWD/$stage/home
    mkdir -p "$HOME"
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME XDG_CACHE_HOME
    # Of its own, so that nobody's sound server is found; below /tmp, because a socket's path must be short.
    runtime=$(mktemp -d)
    trap end_stage EXIT
    export XDG_RUNTIME_DIR=$runtime PULSE_SERVER=unix:$runtime/pulse/native QT_QPA_PLATFORM=xcb
    unset PLUMTIDE_AUDIO_OUTPUT PLUMTIDE_DIRECTORY_KEY WAYLAND_DISPLAY
    # A Plumtide that runs already would be shown in place of the one that is measured.
    export DBUS_SESSION_BUS_ADDRESS=disabled:

    Xvfb -displayfd 3 -screen 0 1180x760x24 -nolisten tcp 3>$stage/display >$stage/xvfb.log 2>&1 &
    pulseaudio -n --exit-idle-time=-1 --daemonize=no --use-pid-file=no -L "module-null-sink sink_name=$sink" \
        -L "module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0" 2>$stage/pulseaudio.log &
    $bin/localradio --port 0 --log $stage/requests >$stage/localradio.log 2>&1 &
    wait_for grep -q listening $stage/localradio.log
    wait_for pactl info
    wait_for test -s $stage/display
    DISPLAY=:$(cat $stage/display)
    export DISPLAY
    local radio
    radio=$(sed -n 's#^localradio: listening on \(.*\)/$#\1#p' $stage/localradio.log)
    export PLUMTIDE_DIRECTORY_URL=$radio/ PLUMTIDE_TUNEIN_URL=$radio
    mapfile -t streams < <($bin/localradio --list | sed -n "s#^ *\"\(/stream/.*\)\".*#$radio\1#p")
    mapfile -t playlists < <($bin/localradio --list | sed -n "s#^ *\"tunein\": \"\(.*\)\".*#$radio\1#p")
}

said() { grep -qF -- "$1" $stage/plumtide.log; }
# What it says of the station before does not count.
said_after_connecting() { sed -n '/status: Connecting/,$p' $stage/plumtide.log | grep -qF -- "$1"; }

# Opens the window with its station list and the keyboard in the first row; sets $plumtide to the process.
start_plumtide() {
    : >$stage/plumtide.log
    QT_LOGGING_RULES="plumtide.status.debug=true" $bin/plumtide 2>>$stage/plumtide.log &
    plumtide=$!
    wait_for said "status: Download Complete"
    wait_for xdotool search --onlyvisible --name '^Plumtide$' windowfocus
}

# start_mpv ARGUMENT...: sets $mpv to the process.
start_mpv() {
    mpv --no-video --no-config --no-terminal "$@" >$stage/mpv.log 2>&1 &
    mpv=$!
}

# Starts an mpv that waits for commands, a line each, on $mpv_commands.
start_idle_mpv() {
    mpv_commands=$stage/mpv-commands
    mkfifo $mpv_commands
    # A writer that stays: without one mpv would not get past opening it, and would end with the first that closes it.
    exec 4<>$mpv_commands
    start_mpv --idle --input-ipc-client=fd://5 5<$mpv_commands
}

# Starts other players without a window, which wait on a session bus of their own; sets $players to the names there of
# those that do.
start_players() {
    local as_user=()
    # vlc does not run for root.
    [ "$(id -u)" -ne 0 ] || as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    mkdir -p $stage/players
    chmod 755 "$runtime" "$runtime/pulse"
    chmod 777 $stage/players "$runtime/pulse/native"
    cat >$stage/bus.conf <<END
<busconfig><listen>unix:path=$runtime/bus</listen><auth>EXTERNAL</auth><policy context="default"><allow user="*"/>
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
END
    dbus-daemon --config-file=$stage/bus.conf --nofork 2>$stage/bus.log &
    wait_for test -S "$runtime/bus"
    chmod 777 "$runtime/bus"
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$runtime/bus
    HOME=$PWD/$stage/players "${as_user[@]}" audacious --headless >$stage/audacious.log 2>&1 &
    HOME=$PWD/$stage/players "${as_user[@]}" cvlc --intf dbus --aout pulse --no-video >$stage/vlc.log 2>&1 &
    sleep 3
    players=()
    local player
    for player in audacious vlc; do
        if dbus-send --session --print-reply --dest="org.mpris.MediaPlayer2.$player" /org/mpris/MediaPlayer2 \
            org.freedesktop.DBus.Peer.Ping >/dev/null 2>&1; then
            players+=("$player")
        else
            echo "$player does not answer on its session bus, and is left out"
        fi
    done
}

# end PROCESS...
end() {
    kill "$@"
    wait "$@" 2>/dev/null || true
}

# listened NUMBER: whether streams have been asked for so often since the stage was started.
listened() { [ "$(grep -c '"event":"request".*"target":"/stream/' $stage/requests)" -ge "$1" ]; }

# sounding NUMBER: whether that many streams play at the sink.
sounding() { [ "$(pactl list short sink-inputs | wc -l)" -eq "$1" ]; }

# Lets what a start stirs up calm down.
settle() { sleep 5; }

# Of the process $1, in megabytes.
anonymous_memory() { awk '/^Anonymous:/ { printf "%.2f\n", $2 * 1024 / 1e6 }' "/proc/$1/smaps_rollup"; }

# The running counts of the threads of the process $1. The processor time is that of the scheduler, which is finer than
# the clock ticks that are told of a whole process.
counts() {
    grep -sHoE '^[0-9]+' /proc/"$1"/task/*/schedstat || true
    grep -sH '^voluntary_ctxt_switches' /proc/"$1"/task/*/status || true
}

# watch SECONDS PROCESS: a line of processor time in milliseconds a minute, voluntary context switches a second and
# private anonymous memory in megabytes.
watch() {
    local before
    before=$(counts "$2")
    sleep "$1"
    awk -F '[: \t]+' -v seconds="$1" -v memory="$(anonymous_memory "$2")" '
        NR == FNR { before[$1] = $NF; next }
        $1 ~ /schedstat$/ { nanoseconds += $NF - before[$1] }
        $1 ~ /status$/ { switches += $NF - before[$1] }
        END { print nanoseconds / 1e6 * 60 / seconds, switches / seconds, memory }
    ' <(echo "$before") <(counts "$2")
}
