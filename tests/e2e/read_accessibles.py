"""Reads the name, and the text where there is one, of every accessible of the program
named on the command line, as a screen reader does. Fails when the program is not found."""
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi


def read(node):
    node.get_name()
    text = node.get_text_iface()
    if text is not None:
        Atspi.Text.get_text(text, 0, Atspi.Text.get_character_count(text))
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child is not None:
            read(child)


desktop = Atspi.get_desktop(0)
apps = [desktop.get_child_at_index(i) for i in range(desktop.get_child_count())]
found = [app for app in apps if app is not None and app.get_name() == sys.argv[1]]
for app in found:
    read(app)
sys.exit(0 if found else 1)
