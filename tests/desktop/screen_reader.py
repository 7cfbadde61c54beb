#!/usr/bin/python3
"""Goes through Norvane as somebody with a screen reader does, and writes down what is heard.

Usage: screen_reader.py TRANSCRIPT SIGNAL

TRANSCRIPT gets a line for each thing; its last line is "The end." where all went well, and says what did not
happen otherwise. The file SIGNAL is made when the machine is to get into another state.
"""

import subprocess
import sys
import time

import pyatspi
from gi.repository import GLib

PATIENCE_SECONDS = 30
SPOKEN_STATES = ("checked", "expanded", "busy", "focused")

transcript = open(sys.argv[1], "w", encoding="utf-8")
heard = []


def write(*lines):
    print(*lines, sep="\n", file=transcript, flush=True)


def until(holds, what):
    """Lets events come until there is something, and returns it."""
    end = time.monotonic() + PATIENCE_SECONDS
    while time.monotonic() < end:
        GLib.MainContext.default().iteration(False)
        try:
            found = holds()
        except GLib.GError:  # it went away while it was looked at
            found = None
        if found:
            return found
        time.sleep(0.005)
    write(f"It did not happen: {what}.")
    sys.exit(1)


def application():
    desktop = pyatspi.Registry.getDesktop(0)
    ours = [each for each in desktop if each is not None and each.name == "Norvane"]
    return ours[0] if len(ours) == 1 else None


def things(root):
    yield root
    for child in root:
        yield from things(child)


def find(role, name):
    found = [each for each in things(application()) if each.getRoleName() == role and each.name == name]
    return found[-1] if found else None


def comes(role, name):
    return until(lambda: find(role, name), f"{role} {name}")


def goes(role, name):
    until(lambda: not find(role, name), f"no {role} {name} any more")


def has(thing, state):
    return thing.getState().contains(getattr(pyatspi, "STATE_" + state.upper()))


def spoken(thing):
    """One thing as it is read aloud: name, role, states, value."""
    words = [thing.name.replace("\n", " ")] if thing.name else []
    words += [thing.getRoleName()] + [state for state in SPOKEN_STATES if has(thing, state)]
    interfaces = pyatspi.listInterfaces(thing)
    if "Value" in interfaces:
        value = thing.queryValue()
        words.append(f"{value.currentValue:g} of {value.minimumValue:g} to {value.maximumValue:g}")
    if "Text" in interfaces:
        assert thing.queryText().getText(0, -1) == thing.name
    return ", ".join(words + ([thing.description] if thing.description else []))


def read(title, thing):
    write("", title)
    for each in things(thing):
        role = each.getRoleName()
        # What only holds others together, and lines between them, is passed over.
        if role != "separator" and (each.name or role not in ("panel", "scroll pane")):
            write("  " + spoken(each))


def act(thing, action="press"):
    actions = thing.queryAction()
    names = [actions.getName(i) for i in range(actions.nActions)]
    assert actions.doAction(names.index(action))


def hear(event):
    if event.type == "object:announcement":
        heard.append(event.any_data)
    elif event.type == "object:state-changed:focused" and event.detail1:
        heard.append(event.source.name)


def key(name):
    subprocess.run(["xdotool", "key", name], check=True)


def open_pod(name, role, sign):
    act(comes("toggle button", name))
    until(lambda: has(find("toggle button", name), "expanded") and find(role, sign), f"{name} opens")
    read(f"The panel of {name}", comes("frame", "Norvane"))


subprocess.run(
    ["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus", "--method",
     "org.freedesktop.DBus.Properties.Set", "org.a11y.Status", "IsEnabled", "<true>"],
    check=True, stdout=subprocess.DEVNULL)
pyatspi.Registry.registerEventListener(hear, "object:announcement", "object:state-changed:focused")

until(application, "one application on the desktop")
item = comes("push button", "Norvane")
read("The item in the panel", comes("frame", "Norvane status item"))
act(item)
until(lambda: has(comes("frame", "Norvane"), "active"), "the dashboard has the keyboard")
comes("level bar", "Core 8")
goes("label", "Initializing system telemetry...")
goes("label", "CPU status unavailable.")
read("The panel of CPU", comes("frame", "Norvane"))
open_pod("RAM", "level bar", "Memory Used")
open_pod("Impact", "level bar", "Battery Health")
open_pod("Disk", "push button", "Eject BACKUP")
act(comes("push button", "Eject BACKUP"))
read("A volume is being ejected", comes("progress bar", "Ejecting BACKUP"))

heard.clear()
open(sys.argv[2], "w", encoding="utf-8").close()
until(lambda: heard, "the status line is announced")
write("", "The machine gets into another state", "  " + heard[0])

heard.clear()
for count in range(1, 10):
    key("Tab")
    until(lambda: len(heard) >= count, "the focus goes on")
write("", "Round by Tab", "  " + ", ".join(heard))

act(comes("push button", "Settings"))
settings = comes("frame", "Settings")
until(lambda: has(settings, "active"), "the settings have the keyboard")
switch = comes("toggle button", "Smart Auto-Expand")
was = has(switch, "checked")
act(switch)
until(lambda: has(switch, "checked") != was, "the switch flips")
act(comes("toggle button", "Notify on Low Storage"))
stepper = comes("spin button", "Notify on Low Storage")
before = stepper.queryValue().currentValue
act(stepper, "increment")
until(lambda: stepper.queryValue().currentValue == before + 5, "a step up")
stepper.queryValue().currentValue = before + 20
until(lambda: stepper.queryValue().currentValue == before + 20, "steps up to a value")
assert stepper.queryComponent().grabFocus()
until(lambda: has(stepper, "focused"), "the stepper gets the keyboard")
key("Down")
until(lambda: stepper.queryValue().currentValue == before + 15, "a step down by the keyboard")
read("Settings", settings)
key("Escape")
goes("frame", "Settings")

act(comes("push button", "Norvane"))
act(comes("push button", "Info"))
read("Info", comes("link", "Send Feedback").parent)
key("Escape")
goes("link", "Send Feedback")
write("", "The end.")
