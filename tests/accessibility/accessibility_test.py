#!/usr/bin/env python3
"""Walks through what the program shows to assistive technology: in each tab, in the menu and in alerts every control
has a role and a name, and can be used.

    accessibility_test.py PROGRAM WRITE_DEMO_SETTINGS
"""

import subprocess
import sys
import time
import warnings

from surroundings import Surroundings

PATIENCE = 20
TIME_OF_A_CALL = 5000  # milliseconds

# They hold or surround controls, and are none themselves.
LAYOUT_ROLES = {"filler", "panel", "layered pane", "scroll pane", "viewport", "separator", "scroll bar", "frame"}

EXPECTED = {
    "General": {("text", "Name"), ("text", "Version"), ("check box", "Accounts")},
    "Accounts": {
        ("list", "Accounts"),
        ("list item", "Demo Account, demo@example.com"),
        ("push button", "Add..."),
        ("push button", "Remove..."),
        ("label", "Name:"),
        ("text", "Name:"),
        ("text", "Vendor ID:"),
        ("text", "E-mail:"),
        ("password text", "Password:"),
        ("check box", "Show password"),
    },
    "Advanced": {("push button", "Reset Cache...")},
    "prompt": {
        ("text", "Vendor ID"),
        ("push button", "Create Account"),
        ("push button", "Cancel"),
        ("text", "Please enter the vendor ID of the new account:"),
    },
    "reset": {("push button", "Cancel"), ("push button", "Reset Cache")},
}


class Program:
    """The program as assistive technology sees it."""

    def __init__(self, atspi):
        self.atspi = atspi

    def application(self):
        desktop = self.atspi.get_desktop(0)
        for position in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(position)
            if child is not None and "corvane" in child.get_name().lower():
                child.clear_cache()
                return child
        return None

    def nodes(self):
        """Everything that is on screen."""
        application = self.application()
        return list(self._below(application)) if application else []

    def _below(self, node):
        for position in range(node.get_child_count()):
            child = node.get_child_at_index(position)
            if child is None or not child.get_state_set().contains(self.atspi.StateType.SHOWING):
                continue
            yield child
            yield from self._below(child)

    def texts(self):
        return {(node.get_role_name(), node.get_name()) for node in self.nodes()}

    def press(self, role, name):
        node = next(node for node in self.nodes() if (node.get_role_name(), node.get_name()) == (role, name))
        actions = [node.get_action_name(position).lower() for position in range(node.get_n_actions())]
        action = next((action for action in ("press", "toggle") if action in actions), None)
        assert action, f"{name} cannot be pressed, but: {actions}"
        node.do_action(actions.index(action))


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            if condition():
                return
        except Exception as error:  # what is asked for may go while it is asked
            print("again after:", error)
        time.sleep(0.1)
    raise AssertionError("did not happen: " + what)


def faults(program, place):
    found = []
    for node in program.nodes():
        role, name = node.get_role_name(), node.get_name()
        if role in ("", "invalid", "unknown"):
            found.append(f"{place}: no role: {role!r} {name!r}")
        elif role not in LAYOUT_ROLES and not name.strip():
            found.append(f"{place}: no name: {role!r} in {path_of(node)}")
    return found


def path_of(node):
    names = []
    while node is not None and len(names) < 12:
        names.append(f"{node.get_role_name()}({node.get_name()})")
        node = node.get_parent()
    return " < ".join(names)


def look_at(program, place):
    """Waits for the place and returns its faults."""
    try:
        wait_until(lambda: EXPECTED[place] <= program.texts(), place)
    except AssertionError:
        missing = EXPECTED[place] - program.texts()
        return [f"{place}: missing: {missing}", f"{place}: there are {sorted(program.texts())}"]
    found = faults(program, place)
    print(f"{place}: {len(program.nodes())} nodes, {len(found)} faults")
    return found


def walk(program):
    wait_until(lambda: program.application() is not None, "the program shows itself")
    found = []
    for tab in ("General", "Accounts", "Advanced"):
        program.press("check box", tab)
        found += look_at(program, tab)
    program.press("push button", "Reset Cache...")
    found += look_at(program, "reset")
    program.press("push button", "Cancel")
    wait_until(lambda: ("push button", "Reset Cache") not in program.texts(), "the alert goes")
    program.press("check box", "Accounts")
    wait_until(lambda: ("push button", "Add...") in program.texts(), "the Accounts tab")
    program.press("push button", "Add...")
    found += look_at(program, "prompt")
    program.press("push button", "Cancel")
    wait_until(lambda: ("push button", "Create Account") not in program.texts(), "the prompt goes")
    return found


def main():
    warnings.simplefilter("ignore", DeprecationWarning)  # newer names are not in every supported release
    program_file, write_demo_settings = sys.argv[1:]
    with Surroundings() as surroundings:
        # It connects to the display and the bus of the environment.
        import gi

        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi

        Atspi.set_timeout(TIME_OF_A_CALL, TIME_OF_A_CALL)

        settings = f"{surroundings.folder.name}/config/corvane/settings.plist"
        subprocess.run([write_demo_settings, settings], check=True)
        surroundings.start(program_file, "localhost:1", "/nonexistent")
        found = walk(Program(Atspi))
    for fault in found:
        print(fault)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
