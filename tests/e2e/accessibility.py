"""accessibility.py BOOK: a client of AT-SPI that reads and edits the book shown by a running Vellumark.

Checks the text, the caret, the selection and the insertion of the display; that every control of the main window and
of each tool window has a name; and that each tool window opens and closes by its menu entry.
"""
import subprocess
import sys
import time

import gi
gi.require_version("Atspi", "2.0")
import pyatspi

failures = 0


def check(condition, message):
    global failures
    if not condition:
        failures += 1
        print("FAILED:", message)


def wait_for(find, what, seconds=60):
    """The first true result of `find`."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        try:
            found = find()
        except Exception:  # objects vanish while windows open and close
            found = None
        if found:
            return found
        time.sleep(0.1)
    print("FAILED:", what, "did not appear")
    sys.exit(1)


def walk(accessible):
    yield accessible
    for child in accessible:
        if child is not None:
            yield from walk(child)


def shown(accessible):
    return accessible.getState().contains(pyatspi.STATE_SHOWING)


def application():
    for candidate in pyatspi.Registry.getDesktop(0):
        if candidate is not None and candidate.name.lower() == "vellumark":
            return candidate
    return None


def windows():
    return [window for window in application() if window is not None and shown(window)]


def window_named(part):
    return next((window for window in windows() if part in window.name), None)


def display():
    window = window_named("VMK: ")
    for accessible in walk(window):
        if accessible.getRole() in (pyatspi.ROLE_DOCUMENT_FRAME, pyatspi.ROLE_TEXT, pyatspi.ROLE_DOCUMENT_TEXT,
                                    pyatspi.ROLE_DOCUMENT_WEB, pyatspi.ROLE_ENTRY):
            try:
                if "</FictionBook>" in accessible.queryText().getText(0, -1):
                    return accessible
            except NotImplementedError:
                pass
    return None


def key(*names):
    subprocess.run(["xdotool", "key", "--delay", "40", *names], check=True)


NAMED = {pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_COMBO_BOX, pyatspi.ROLE_ENTRY,
         pyatspi.ROLE_RADIO_BUTTON, pyatspi.ROLE_SPIN_BUTTON, pyatspi.ROLE_LIST, pyatspi.ROLE_TABLE,
         pyatspi.ROLE_TOGGLE_BUTTON, pyatspi.ROLE_MENU_ITEM, pyatspi.ROLE_TEXT}


def check_names(window):
    count = 0
    for accessible in walk(window):
        if accessible.getRole() not in NAMED or not shown(accessible):
            continue
        count += 1
        parent = accessible.parent
        # The field or the button of a drop-down belongs to it.
        inside = parent is not None and parent.getRole() in (pyatspi.ROLE_COMBO_BOX, pyatspi.ROLE_SPIN_BUTTON)
        check(accessible.name or inside,
              f"{window.name}: a {accessible.getRoleName()} without a name, description {accessible.description!r}")
    return count


def check_display(book):
    area = wait_for(display, "the display")
    text = area.queryText()
    content = text.getText(0, -1)
    check("<p>One line.</p>" in content, "the display's text is not that of the book")
    check("שלום עולם" in content and "за́мок" in content, "right-to-left or combining text is missing")
    check(text.characterCount == len(content), f"{text.characterCount} characters, text of {len(content)}")

    start = content.index("One line.")
    area.queryComponent().grabFocus()
    text.setCaretOffset(start)
    wait_for(lambda: text.caretOffset == start, "the caret at the word")
    text.addSelection(start, start + 3) if text.getNSelections() == 0 else text.setSelection(0, start, start + 3)
    wait_for(lambda: text.getNSelections() == 1, "the selection")
    check(text.getSelection(0) == (start, start + 3), f"the selection is {text.getSelection(0)}")
    check(text.getText(*text.getSelection(0)) == "One", "the selected text is not the word")

    editable = area.queryEditableText()
    editable.insertText(start, "zebra ", 6)
    wait_for(lambda: "<p>zebra One line.</p>" in text.getText(0, -1), "the inserted text")
    editable.deleteText(start, start + 6)
    wait_for(lambda: "<p>One line.</p>" in text.getText(0, -1), "the text without the insertion")
    editable.insertText(start, "ибис ", 5)
    wait_for(lambda: "<p>ибис One line.</p>" in text.getText(0, -1), "the inserted Cyrillic text")

    # A word of another direction is edited by position like any other.
    position = text.getText(0, -1).index("עולם")
    editable.insertText(position, "טוב ", 4)
    wait_for(lambda: "שלום טוב עולם" in text.getText(0, -1), "the inserted Hebrew word")
    return area


def check_saved(book):
    key("F4")
    wait_for(lambda: "ибис One line." in open(book, encoding="utf-8").read(), "the saved insertion")
    saved = open(book, encoding="utf-8").read()
    check("שלום טוב עולם" in saved and "за́мок" in saved, "right-to-left or combining text was not saved")


# The menu entries that open a tool window.
TOOLS = ["find/replace", "book cleaner", "html fragment editor", "spell check", "insert special symbols", "tag list",
         "in-line tags", "settings", "binary list", "about"]


def menu_entries():
    """(name, accessible) of all entries of the menus, open or not."""
    found = {}
    for accessible in walk(window_named("VMK: ")):
        if accessible.getRole() == pyatspi.ROLE_MENU_ITEM and accessible.name and accessible.childCount == 0:
            found[accessible.name] = accessible
    return found


def press(accessible):
    action = accessible.queryAction()
    for i in range(action.nActions):
        if action.getName(i).lower() in ("press", "trigger", "click"):
            return action.doAction(i)
    return action.doAction(0)


def check_tools():
    entries = menu_entries()
    check(len(entries) > 30, f"only {len(entries)} menu entries")
    opened = 0
    for name, entry in entries.items():
        if not any(tool in name.lower() for tool in TOOLS):
            continue
        before = {window.name for window in windows()}
        # An open menu has its entries enabled or disabled as the book requires.
        menu = entry.parent
        while menu is not None and menu.getRole() != pyatspi.ROLE_MENU_ITEM and not menu.name:
            menu = menu.parent
        press(menu)
        wait_for(lambda: shown(entry), f"the menu of \"{name}\"", 15)
        press(entry)
        try:
            window = wait_for(lambda: next((w for w in windows() if w.name not in before), None), f"a window of \"{name}\"", 15)
        except SystemExit:
            check(False, f"\"{name}\" opens no window")
            continue
        opened += 1
        controls = check_names(window)
        print(f"{window.name.strip()}: {controls} named controls")
        caption = window.name
        window_id = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{caption}$"], capture_output=True,
                                   text=True).stdout.split()
        if window_id:
            subprocess.run(["xdotool", "windowfocus", window_id[-1]])
        key("Escape")
        wait_for(lambda: caption not in {w.name for w in windows()}, f"the end of \"{caption}\"", 15)
    check(opened >= 8, f"only {opened} tool windows opened")


def main():
    book = sys.argv[1]
    wait_for(application, "the program")
    wait_for(lambda: window_named("VMK: "), "the main window")
    main_id = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "VMK: "], capture_output=True,
                             text=True).stdout.split()[0]
    subprocess.run(["xdotool", "windowfocus", main_id])
    check_display(book)
    check_saved(book)
    count = check_names(window_named("VMK: "))
    print(f"main window: {count} named controls")
    check_tools()
    sys.exit(1 if failures else 0)


main()
