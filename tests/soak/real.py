#!/usr/bin/python3
"""The real program on a display and a bus of its own, while everything around it is killed and comes again.

    real.py PROGRAM [MINUTES [SEED]]

Panels, a compositor, window managers and the bus itself end at random moments, with clicks in between. Whenever
they have been left alone for a while there is exactly one item; memory and descriptors stay bounded, and the
program ends with 0 when it is asked to.
"""
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PANELS = (
    ["trayer", "--edge", "top", "--height", "24", "--widthtype", "request"],
    ["tint2"],
    ["xfce4-panel", "--disable-wm-check"],
)
MANAGERS = (["openbox", "--sm-disable"], ["xfwm4"])
COMPOSITOR = ["picom", "--backend", "xrender", "--config", "/dev/null"]
WATCHER = "org.kde.StatusNotifierWatcher"
# A panel and a window manager that start at once on a busy machine, and a bus that is looked for ever more seldom.
SETTLING_SECONDS = 40
# Above the highest of the first half.
SPARE_RSS_KIB = 6 * 1024
SPARE_DESCRIPTORS = 4
# The lowest part of a popover has the button that ends the program.
QUIT_HEIGHT = 70


class Broken(Exception):
    pass


class Desktop:
    def __init__(self, folder):
        self.folder = folder
        self.children = {}
        self.socket = f"{folder}/bus"
        self.env = {"PATH": os.environ["PATH"], "HOME": folder, "XDG_CONFIG_HOME": folder, "XDG_CACHE_HOME": folder,
                    "NO_AT_BRIDGE": "1", "GTK_A11Y": "none", "DBUS_SYSTEM_BUS_ADDRESS": "",
                    "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.socket}"}
        os.makedirs(f"{folder}/norvane")
        os.makedirs(f"{folder}/services")
        with open(f"{folder}/norvane/defaults.ini", "w") as file:
            file.write("[defaults]\nhasSeenWelcome=true\n")
        # Where xfce4-panel keeps its settings.
        xfconf = "/usr/share/dbus-1/services/org.xfce.Xfconf.service"
        if os.path.exists(xfconf):
            shutil.copy(xfconf, f"{folder}/services")
        with open(f"{folder}/bus.conf", "w") as file:
            file.write(f"<busconfig><type>session</type><listen>unix:path={self.socket}</listen>"
                       f"<servicedir>{folder}/services</servicedir><policy context='default'>"
                       "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/><allow own='*'/></policy></busconfig>")

    def start(self, name, command, **more):
        with open(f"{self.folder}/{name}.log", "a") as log:
            self.children[name] = subprocess.Popen(
                command, env=self.env, stdin=subprocess.DEVNULL, stdout=more.get("stdout", log), stderr=log,
                pass_fds=more.get("pass_fds", ()), start_new_session=True)

    def is_alive(self, name):
        return name in self.children and self.children[name].poll() is None

    def kill(self, name):
        child = self.children.pop(name, None)
        if child is None:
            return False
        was_alive = child.poll() is None
        try:
            os.killpg(child.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        child.wait()
        return was_alive

    def start_display(self):
        ours, theirs = os.pipe()
        self.start("display", ["Xvfb", "-displayfd", str(theirs), "-screen", "0", "1600x1000x24", "-nolisten", "tcp",
                               "-noreset"], pass_fds=(theirs,))
        os.close(theirs)
        with os.fdopen(ours) as report:
            self.env["DISPLAY"] = ":" + report.readline().strip()

    def start_bus(self):
        if os.path.exists(self.socket):
            os.unlink(self.socket)
        self.start("bus", ["dbus-daemon", f"--config-file={self.folder}/bus.conf", "--nofork"])

    def ask(self, *command):
        done = subprocess.run(command, env=self.env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True, timeout=60, check=False)
        return done.stdout

    def windows(self):
        """Of the program, as they are seen: number, x, y, width, height."""
        found = []
        for window in self.ask("xdotool", "search", "--onlyvisible", "--class", "^norvane$").split():
            lines = self.ask("xdotool", "getwindowgeometry", "--shell", window).split()
            told = dict(line.split("=", 1) for line in lines if "=" in line)
            if "HEIGHT" in told:
                found.append([window] + [int(told[name]) for name in ("X", "Y", "WIDTH", "HEIGHT")])
        return found

    def pictures(self):
        """The items that panels show as pictures."""
        if not self.is_alive("bus"):
            return 0
        return self.ask("dbus-send", "--session", "--print-reply", "--reply-timeout=3000", f"--dest={WATCHER}",
                        "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get", f"string:{WATCHER}",
                        "string:RegisteredStatusNotifierItems").count('string "')

    def items(self):
        return sum(1 for window in self.windows() if window[4] < 100) + self.pictures()

    def click(self, x, y):
        self.ask("xdotool", "mousemove", str(x), str(y), "click", "1")


class Soak:
    def __init__(self, desktop, program, chance):
        self.desktop = desktop
        self.program = program
        self.chance = chance
        self.panels = [command for command in PANELS if shutil.which(command[0])]
        self.managers = [command for command in MANAGERS if shutil.which(command[0])]
        self.kills = dict.fromkeys(("panel", "compositor", "manager", "bus"), 0)
        self.clicks = 0
        self.samples = []

    def change(self, name, commands, gone=0.5):
        """Ends it, if it is there; and mostly starts one of them, at once or later."""
        self.kills[name] += self.desktop.kill(name)
        time.sleep(self.chance.choice((0, 0, gone, 3 * gone)))
        if commands and self.chance.random() < 0.8:
            self.desktop.start(name, self.chance.choice(commands))

    def change_bus(self):
        self.kills["bus"] += self.desktop.kill("bus")
        time.sleep(self.chance.uniform(0, 2))
        self.desktop.start_bus()

    def click(self):
        self.clicks += 1
        windows = self.desktop.windows()
        if not windows or self.chance.random() < 0.2:
            # Another start shows the dashboard of the first; it may stand in a panel where it cannot be clicked.
            if self.chance.random() < 0.5:
                self.desktop.ask(self.program)
            else:
                self.desktop.click(self.chance.randrange(1600), 990)
            return
        _, x, y, width, height = self.chance.choice(windows)
        lowest = height if height < 100 else height - QUIT_HEIGHT
        self.desktop.click(x + self.chance.randrange(width), y + self.chance.randrange(max(lowest, 1)))

    def act(self):
        choice = self.chance.random()
        if choice < 0.5:
            self.click()
        elif choice < 0.7:
            self.change("panel", self.panels)
        elif choice < 0.82:
            self.change("compositor", [COMPOSITOR] if shutil.which(COMPOSITOR[0]) else [])
        elif choice < 0.92:
            self.change("manager", self.managers)
        else:
            self.change_bus()
        time.sleep(self.chance.uniform(0, 1.5))

    def expect_life(self):
        if not self.desktop.is_alive("norvane"):
            with open(f"{self.desktop.folder}/norvane.log") as log:
                raise Broken(f"the program ended with {self.desktop.children['norvane'].returncode}: "
                             + log.read()[-2000:])

    def settle(self):
        """Everything that is not killed is let come up; then there is one item, and it stays the only one."""
        deadline = time.monotonic() + SETTLING_SECONDS
        seen = []
        while len(seen) < 3 or set(seen[-3:]) != {1}:
            if time.monotonic() > deadline:
                around = {name: child.args[0] for name, child in self.desktop.children.items() if child.poll() is None}
                raise Broken(f"not one item but {seen[-5:]} beside {around}")
            time.sleep(0.7)
            self.expect_life()
            seen.append(self.desktop.items())
        pid = self.desktop.children["norvane"].pid
        with open(f"/proc/{pid}/status") as status:
            rss = next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))
        self.samples.append((rss, len(os.listdir(f"/proc/{pid}/fd"))))

    def expect_bounds(self):
        half = len(self.samples) // 2
        if half < 3:
            return "too few samples to judge its growth by"
        (rss, descriptors), (late_rss, late_descriptors) = (
            tuple(max(column) for column in zip(*part)) for part in (self.samples[:half], self.samples[half:]))
        if late_rss > rss + SPARE_RSS_KIB:
            raise Broken(f"memory grew from {rss} to {late_rss} KiB")
        if late_descriptors > descriptors + SPARE_DESCRIPTORS:
            raise Broken(f"descriptors grew from {descriptors} to {late_descriptors}")
        return f"at most {rss} and then {late_rss} KiB, {descriptors} and then {late_descriptors} descriptors"

    def expect_end(self):
        program = self.desktop.children["norvane"]
        program.send_signal(signal.SIGTERM)
        try:
            status = program.wait(20)
        except subprocess.TimeoutExpired as error:
            raise Broken("it does not end") from error
        if status != 0:
            raise Broken(f"it ended with {status}")

    def run(self, minutes):
        self.desktop.start_display()
        self.desktop.start_bus()
        self.desktop.start("norvane", [self.program])
        end = time.monotonic() + 60 * minutes
        while time.monotonic() < end:
            for _ in range(self.chance.randrange(2, 9)):
                self.act()
                self.expect_life()
            self.settle()
        bounds = self.expect_bounds()
        self.expect_end()
        return bounds


def main():
    program = os.path.abspath(sys.argv[1])
    minutes = float(sys.argv[2]) if len(sys.argv) > 2 else 10
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else int(time.time())
    folder = tempfile.mkdtemp(prefix="norvane-real-")
    desktop = Desktop(folder)
    soak = Soak(desktop, program, random.Random(seed))
    verdict = "BROKEN"
    try:
        verdict = soak.run(minutes) + ": it lived"
        return 0
    except Broken as broken:
        verdict = f"BROKEN: {broken}; what was said is in {folder}"
        return 1
    finally:
        for name in list(desktop.children)[::-1]:
            desktop.kill(name)
        kills = ", ".join(f"{name} {count}" for name, count in soak.kills.items())
        print(f"real: seed {seed}, {minutes:g} minutes, killed: {kills}; {soak.clicks} clicks, "
              f"{len(soak.samples)} settlings, {verdict}")
        if not verdict.startswith("BROKEN"):
            shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
