#!/usr/bin/python3
"""Goes through Norvane as somebody with a screen reader does, and writes down what is heard.

Usage: screen_reader.py TRANSCRIPT SIGNAL

Reads each panel, hears a change of the status line, presses pods, flips a switch, goes in steps, ejects a volume
and goes round by Tab. TRANSCRIPT gets a line for each thing; its last line is "The end." where all went well, and
says what did not happen otherwise. The file SIGNAL is made when the machine is to get into another state.
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


def write(line=""):
    print(line, file=transcript, flush=True)


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


def find(role, name, among=None):
    root = among or application()
    found = [each for each in things(root) if each.getRoleName() == role and each.name == name]
    return found[-1] if found else None


def comes(role, name):
    return until(lambda: find(role, name), f"{role} {name}")


def has(thing, state):
    return thing.getState().contains(getattr(pyatspi, "STATE_" + state.upper()))


def spoken(thing):
    """One thing as it is read aloud: name, role, states, value."""
    words = [thing.name.replace("\n", " ")] if thing.name else []
    words.append(thing.getRoleName())
    words += [state for state in SPOKEN_STATES if has(thing, state)]
    interfaces = pyatspi.listInterfaces(thing)
    if "Value" in interfaces:
        value = thing.queryValue()
        words.append(f"{value.currentValue:g} of {value.minimumValue:g} to {value.maximumValue:g}")
    if thing.description:
        words.append(thing.description)
    return ", ".join(words)


def read(title, thing):
    write()
    write(title)
    for each in things(thing):
        role = each.getRoleName()
        # What only holds others together, and lines between them, is passed over.
        if role == "separator" or role in ("panel", "scroll pane") and not each.name:
            continue
        write("  " + spoken(each))
        if "Text" in pyatspi.listInterfaces(each):
            assert each.queryText().getText(0, -1) == each.name


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


def dashboard():
    return comes("frame", "Norvane")


def open_pod(name, sign):
    act(comes("toggle button", name))
    until(lambda: has(find("toggle button", name), "expanded") and find(*sign), f"{name} opens")
    read(f"The panel of {name}", dashboard())


subprocess.run(
    ["gdbus", "call", "--session", "--dest", "org.a11y.Bus", "--object-path", "/org/a11y/bus", "--method",
     "org.freedesktop.DBus.Properties.Set", "org.a11y.Status", "IsEnabled", "<true>"],
    check=True, stdout=subprocess.DEVNULL)
for kind in ("object:announcement", "object:state-changed:focused"):
    pyatspi.Registry.registerEventListener(hear, kind)

until(application, "one application on the desktop")
item = comes("push button", "Norvane")
read("The item in the panel", comes("frame", "Norvane status item"))
act(item)
until(lambda: has(dashboard(), "active"), "the dashboard has the keyboard")
comes("level bar", "Core 8")
until(lambda: not find("label", "Initializing system telemetry..."), "the status line knows something")
until(lambda: not find("label", "CPU status unavailable."), "the panel knows something")
read("The panel of CPU", dashboard())
open_pod("RAM", ("level bar", "Memory Used"))
open_pod("Impact", ("level bar", "Battery Health"))
open_pod("Disk", ("push button", "Eject BACKUP"))

act(comes("push button", "Eject BACKUP"))
read("A volume is being ejected", comes("progress bar", "Ejecting BACKUP"))

heard.clear()
open(sys.argv[2], "w", encoding="utf-8").close()
until(lambda: heard, "the status line is announced")
write()
write("The machine gets into another state")
write("  " + heard[0])

heard.clear()
write()
write("Round by Tab")
for _ in range(9):
    before = len(heard)
    key("Tab")
    until(lambda: len(heard) > before, "the focus goes on")
write("  " + ", ".join(heard))

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
until(lambda: not find("frame", "Settings"), "Escape closes the settings")

act(comes("push button", "Norvane"))
act(comes("push button", "Info"))
read("Info", until(lambda: find("link", "Send Feedback"), "the info opens").parent)
key("Escape")
until(lambda: not find("link", "Send Feedback"), "Escape closes the info")
write()
write("The end.")
