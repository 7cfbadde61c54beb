# shellcheck shell=bash disable=SC2154  # ./dev has the rest
# A display for machines that have none, and the program shown on it to nobody. Read by ./dev.

# Asks again and again until the command succeeds; fails after so many seconds.
eventually() { # SECONDS COMMAND...
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

# Shows a program to nobody: starts it on a virtual display, clicks its strip, and leaves a picture of the
# screen with the popover open. Succeeds if both were painted and the program ended with success when asked to.
# The body is a subshell, so that whatever happens the display goes away with it.
# shellcheck disable=SC2030,SC2031,SC2317  # DISPLAY is meant to stay inside; the small functions are asked below
show_on_virtual_display() ( # PROGRAM PICTURE [SCALE]
    program=$1 picture=$2 scale=${3:-}
    scratch=$(mktemp -d)
    server='' shown=''
    trap '{ kill -KILL $shown; kill $server && wait; } 2>/dev/null || true; rm -rf "$scratch"' EXIT

    # The server never starts anew by itself: that would lose the resources between two clients.
    exec {answer}< <(exec Xvfb -displayfd 1 -screen 0 1600x1000x24 -nolisten tcp -noreset 2>"$scratch/server.log")
    server=$!
    read -r -t 30 -u "$answer" number || fail "No virtual display: $(cat "$scratch/server.log")"
    export DISPLAY=:$number
    xsetroot -solid '#3c4450'
    if [[ -n $scale ]]; then
        printf 'Xft.dpi: %.0f\n' "$(awk "BEGIN { print 96 * $scale }")" | xrdb -nocpp -merge -
    fi

    # Preferences of its own, so that the picture depends on nobody's: those of somebody who has been welcomed,
    # so that the click leads to the dashboard.
    mkdir -p "$scratch/config/norvane"
    printf '[defaults]\nhasSeenWelcome=true\n' >"$scratch/config/norvane/defaults.ini"
    XDG_CONFIG_HOME=$scratch/config "${launcher[@]}" "$program" &
    shown=$!

    windows() { xdotool search --onlyvisible --class norvane 2>/dev/null || true; }
    alive() { kill -0 "$shown" 2>/dev/null; }
    gone() { ! alive; }
    strip_is_there() {
        alive || fail "The program ended by itself."
        strip=$(windows | head -n 1)
        [[ -n $strip ]]
    }
    popover_is_there() {
        alive || fail "The program ended by itself."
        popover=$(windows | grep -vx "$strip" | head -n 1)
        [[ -n $popover ]]
    }
    middle_of() { # WINDOW
        eval "$(xdotool getwindowgeometry --shell "$1")"
        printf '%s %s' $((X + WIDTH / 2)) $((Y + HEIGHT / 2))
    }
    is_painted() { # WINDOW: more than one colour within its place in the picture
        eval "$(xdotool getwindowgeometry --shell "$1")"
        (($(identify -format %k "${picture}[${WIDTH}x${HEIGHT}+$X+$Y]") > 1))
    }

    eventually 30 strip_is_there || fail "The strip did not appear within 30 seconds."
    # shellcheck disable=SC2046  # two words are wanted
    xdotool mousemove $(middle_of "$strip") click 1
    eventually 30 popover_is_there || fail "No popover appeared within 30 seconds of the click."
    # Let people see a status line that has settled, and bars that have moved.
    sleep 5
    mkdir -p "$(dirname "$picture")"
    rm -f "$picture"
    import -window root "$picture"
    is_painted "$strip" || fail "The strip is blank: $picture"
    is_painted "$popover" || fail "The popover is blank: $picture"

    kill -TERM "$shown"
    eventually 20 gone || fail "The program did not end within 20 seconds of being asked to."
    status=0
    wait "$shown" || status=$?
    shown=''
    ((status == 0)) || fail "The program ended with exit status $status."
)
