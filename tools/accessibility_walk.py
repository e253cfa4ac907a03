"""Walks the running editor (its process id is the argument) through AT-SPI.

Every control that shows, and every menu item, needs a role and a name that a screen reader can say; in every dialog,
Tab must reach each control, in reading order, Enter have a default button and Escape close it. Prints what is wrong,
with its place in the tree. Ends with 1 if anything is, with 2 if the walk could not be made.
"""

import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

import pyatspi  # noqa: E402

# Containers and decoration that people never land on.
SILENT_ROLES = {
    pyatspi.ROLE_FILLER,
    pyatspi.ROLE_PANEL,
    pyatspi.ROLE_SEPARATOR,
    pyatspi.ROLE_SCROLL_BAR,
    pyatspi.ROLE_SCROLL_PANE,
    pyatspi.ROLE_VIEWPORT,
    pyatspi.ROLE_LAYERED_PANE,
    pyatspi.ROLE_PARAGRAPH,
    pyatspi.ROLE_TABLE_CELL,  # a cell's name is its text, which may be empty
    pyatspi.ROLE_LIST_ITEM,
    pyatspi.ROLE_IMAGE,  # the picture of a notice or a message, which its text says in words
    pyatspi.ROLE_ICON,
}
MENU_ROLES = {pyatspi.ROLE_MENU_ITEM, pyatspi.ROLE_MENU, pyatspi.ROLE_POPUP_MENU, pyatspi.ROLE_CHECK_MENU_ITEM}
TAB_ROLES = {
    pyatspi.ROLE_PUSH_BUTTON,
    pyatspi.ROLE_TOGGLE_BUTTON,
    pyatspi.ROLE_CHECK_BOX,
    pyatspi.ROLE_RADIO_BUTTON,
    pyatspi.ROLE_TEXT,
    pyatspi.ROLE_LIST,
    pyatspi.ROLE_PAGE_TAB_LIST,
}
VIEW_ROLES = {pyatspi.ROLE_TREE, pyatspi.ROLE_TREE_TABLE, pyatspi.ROLE_TABLE}
PATIENCE = 20  # seconds for what takes a moment on an idle machine

complaints, walked = [], []


def wait_for(what, probe):
    """The first true answer of `probe`."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            answer = probe()
        except GLib.GError:  # a control that went away meanwhile
            answer = None
        if answer:
            return answer
        time.sleep(0.02)
    print("waited in vain for " + what, flush=True)
    sys.exit(2)


def has(node, state):
    return node.getState().contains(state)


def children(node):
    return [child for child in node if child]


def descendants(node):
    for child in children(node):
        yield child
        if not has(child, pyatspi.STATE_MANAGES_DESCENDANTS):  # rows of a view: its model names them
            yield from descendants(child)


def is_line(node):
    return node.getRole() == pyatspi.ROLE_FRAME and node.parent.getRole() == pyatspi.ROLE_DIALOG and not len(node)


def check_names(node, path):
    role = node.getRole()
    here = f"{path}/{node.getRoleName()} {node.name!r}"
    shows = has(node, pyatspi.STATE_SHOWING) or role in MENU_ROLES
    if shows and role in (pyatspi.ROLE_UNKNOWN, pyatspi.ROLE_INVALID):
        # The handle of a split pane, for which AT-SPI has no role; keys do not reach it, and the pane is named.
        if node.parent.getRole() != pyatspi.ROLE_SPLIT_PANE or len(node):
            complaints.append(here + ": no role")
    elif shows and not node.name.strip() and role not in SILENT_ROLES and not is_line(node):
        complaints.append(here + ": no name")
    if shows:
        walked.append(role)
    if not has(node, pyatspi.STATE_MANAGES_DESCENDANTS):
        for child in children(node):
            check_names(child, here)


def press(key):
    subprocess.run(["xdotool", "key", key], check=True)


def choose(node):
    """Triggers a menu item or a button. The call returns when the dialog that it opens is closed: nobody waits for it."""
    try:
        node.queryAction().doAction(0)
    except GLib.GError:
        pass


def menu_item(frame, *captions):
    """The enabled item at that path; None without one."""
    node = next(child for child in children(frame) if child.getRole() == pyatspi.ROLE_MENU_BAR)
    for caption in captions:
        if node.getRole() != pyatspi.ROLE_MENU_BAR:
            node = node[0]  # its menu
        offered = [child for child in children(node) if child.name == caption and has(child, pyatspi.STATE_SENSITIVE)]
        if not offered:
            return None
        node = offered[0]
    return node


def choose_item(frame, *captions):
    choose(wait_for("the menu item " + "/".join(captions), lambda: menu_item(frame, *captions)))


def box_of(node):
    return node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)


def goes_back(before, after):
    """Whether `after` is read before `before`: left of it in its row, or above it and not to its right."""
    one, two = box_of(before), box_of(after)
    if two.y + two.height <= one.y:
        return two.x <= one.x
    return two.y < one.y + one.height and two.x + two.width <= one.x


def focused(window):
    """The current page tab says that it has the focus even when it has not."""
    for node in descendants(window):
        if has(node, pyatspi.STATE_FOCUSED) and node.getRole() in TAB_ROLES | VIEW_ROLES:
            return node
    return None


def check_tab_order(window, path):
    stops = [
        node
        for node in descendants(window)
        if node.getRole() in TAB_ROLES
        and has(node, pyatspi.STATE_SHOWING)
        and has(node, pyatspi.STATE_SENSITIVE)
        # Of a group of radio buttons, Tab stops at the chosen one.
        and (node.getRole() != pyatspi.ROLE_RADIO_BUTTON or has(node, pyatspi.STATE_CHECKED))
    ]
    current = wait_for(f"the focus in {path}", lambda: focused(window))
    order = [current]
    while len(stops) > 1:
        before = current
        press("Tab")
        end = time.monotonic() + 2
        while current == before and time.monotonic() < end:
            current = focused(window) or before
        if current == before or current in order:
            break
        order.append(current)
    for stop in stops:
        if stop not in order:
            complaints.append(f"{path}/{stop.getRoleName()} {stop.name!r}: Tab does not reach it")
    backwards = [(a, b) for a, b in zip(order, order[1:] + order[:1]) if goes_back(a, b)]
    if len(backwards) > 1:
        steps = ", ".join(f"{a.name!r} to {b.name!r}" for a, b in backwards)
        complaints.append(f"{path}: Tab goes back more than once a round: {steps}")


def check_dialog(application, open_it, each=lambda dialog: None):
    known = children(application)
    before = next(window for window in known if has(window, pyatspi.STATE_ACTIVE))
    open_it()

    def opened():
        for window in children(application):
            if window not in known and has(window, pyatspi.STATE_ACTIVE):
                return window
        return None

    dialog = wait_for("a dialog", opened)
    path = f"{dialog.getRoleName()} {dialog.name!r}"
    check_names(dialog, "")
    check_tab_order(dialog, path)
    each(dialog)
    defaults = [node for node in descendants(dialog) if has(node, pyatspi.STATE_IS_DEFAULT)]
    if not defaults:
        complaints.append(path + ": no default button")
    press("Escape")
    wait_for("Escape to close " + path, lambda: dialog not in children(application))
    wait_for("the window behind " + path, lambda: has(before, pyatspi.STATE_ACTIVE) and focused(before))


def check_tabs(dialog):
    tabs = [node for node in descendants(dialog) if node.getRole() == pyatspi.ROLE_PAGE_TAB]
    if len(tabs) != 5:
        complaints.append(f"options: {len(tabs)} tabs")
    for tab in tabs:
        choose(tab)
        wait_for(f"the tab {tab.name}", lambda: tab.parent.name == tab.name)
        check_names(dialog, "")
        check_tab_order(dialog, f"options/{tab.name}")


def activate(frame, title, main_item):
    document = wait_for(
        "the document " + title,
        lambda: next((n for n in descendants(frame) if n.name == title and n.getRole() == pyatspi.ROLE_FRAME), None),
    )
    for _ in range(8):
        if has(document, pyatspi.STATE_ACTIVE) or focused(document):
            break
        before = focused(frame)
        press("ctrl+F6")
        wait_for("Ctrl+F6 to leave " + str(before), lambda: focused(frame) not in (None, before))
    wait_for("the menus of " + title, lambda: menu_item(frame, *main_item))
    check_names(frame, "")


def main():
    Atspi.set_timeout(500, PATIENCE * 1000)
    pid = int(sys.argv[1])
    application = wait_for(
        "the editor on the accessibility bus",
        lambda: next((a for a in pyatspi.Registry.getDesktop(0) if a and a.get_process_id() == pid and len(a)), None),
    )
    application.set_cache_mask(Atspi.Cache.NONE)
    frame = wait_for("the frame", lambda: next((w for w in application if has(w, pyatspi.STATE_ACTIVE)), None))

    def dialog(*captions, each=lambda dialog: None):
        check_dialog(application, lambda: choose_item(frame, *captions), each)

    dialog("Tools", "Options...", each=check_tabs)
    dialog("Help", "About")
    dialog("Tools", "SYSEDIT")
    dialog("Tools", "Compare Files...")

    activate(frame, "notes.txt", ("Search", "Find Again"))
    dialog("Search", "Find")
    dialog("Search", "Replace")
    press("x")
    wait_for("the changed document", lambda: any(n.name == "notes.txt [CHANGED]" for n in descendants(frame)))
    choose_item(frame, "File", "Save")
    wait_for("the saved document", lambda: any(n.name == "notes.txt" for n in descendants(frame)))
    dialog("Tools", "File History...")
    activate(frame, "letter.rtf", ("Format", "Font"))
    dialog("Search", "Find")
    activate(frame, "plain.rtf", ("Format", "Font"))

    activate(frame, "win.ini", ("Edit", "Sectons", "Add Section"))
    dialog("Edit", "Sectons", "Add Section")
    press("Down")
    dialog("Edit", "Key / Value", "Add Key / Value")
    dialog("Edit", "Sectons", "Delete Sections")
    for key in ("Right", "Down", "Down"):  # past the comment of the section
        press(key)
    wait_for("an entry", lambda: menu_item(frame, "Edit", "Key / Value", "Delete Key / Value"))
    check_dialog(application, lambda: press("F2"))
    dialog("Edit", "Key / Value", "Delete Key / Value")

    activate(frame, "device.reg", ("Edit", "New"))
    dialog("Edit", "New", "Key")
    press("Down")
    dialog("Edit", "New", "String Value")
    dialog("Edit", "New", "Key")
    dialog("Edit", "Delete")

    for line in dict.fromkeys(complaints):
        print(line)
    print(f"{len(walked)} controls, {len(complaints)} complaints")
    sys.exit(1 if complaints else 0)


main()
