# Reads the name and any text of every accessible of the program named in argv[1], as a
# screen reader does; fails when no such program is on the accessibility bus.
import sys
import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi


def read(node):
    node.get_name()
    if (text := node.get_text_iface()) is not None:
        Atspi.Text.get_text(text, 0, Atspi.Text.get_character_count(text))
    for child in filter(None, map(node.get_child_at_index, range(node.get_child_count()))):
        read(child)


desktop = Atspi.get_desktop(0)
found = [a for a in map(desktop.get_child_at_index, range(desktop.get_child_count())) if a is not None and a.get_name() == sys.argv[1]]
list(map(read, found))
sys.exit(0 if found else 1)
