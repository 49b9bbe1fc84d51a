"""What a screen reader meets in the front end of Linux is what it meets in that of macOS, which runs on test doubles: the same
texts, controls, states and names, in the same order."""

import os
import re
import subprocess

from cleanup_case import CleanupCase
from application import FAKE_VOLUME
from waiting import wait_until

CONTROLS = ("push button", "check box", "radio button")
# The front ends group what belongs together in their own ways: macOS has a group with a label for each text, Linux one object
# whose description joins the texts. Both are compared as "group NAME" and "texts ONE · OTHER".
SEPARATOR = " · "
ONLY_ON_MACOS = "push button Open Time Machine"  # Linux has nothing to open


def of_linux(root):
    """The lines of the tree below an object."""
    lines = []
    for each in root.children:
        if not each.has("showing"):
            continue
        role, name, description = each.role, each.name, each.description.replace("\n", " ")
        state = [word for word, holds in (("checked", each.has("checked")), ("disabled", not each.has("enabled"))) if holds]
        if role == "combo box":
            lines.append(line(role, each.label, [name, *state]))
            continue
        if role == "progress bar":
            lines.append(line(role, name, [description] if description else []))
        elif role in CONTROLS:
            lines.append(line(role, name, state))
        elif role == "heading":
            lines += [f"group {name}", f"texts {description}"]
        elif role == "list":
            lines.append(f"list {name}")
        elif role == "panel":  # in the place of results
            lines += [f"group {name}", f"texts {description}"]
            continue
        elif role == "list item":
            below = of_linux(each)
            boxes = [text for text in below if text.startswith("check box ")]
            lines += [f"group {name}", *boxes, f"texts {description}", *(text for text in below if text not in boxes)]
            continue
        elif role == "label" and description and ": " in name:  # a card; Linux also explains what a figure counts
            title, value = name.split(": ", 1)
            lines += [f"group {title}", f"texts {value}{SEPARATOR}{description}"]
        elif role == "label" and name:
            lines.append(f"label {name}")
        lines += of_linux(each)
    return lines


def line(role, name, more):
    return f"{role} {name}" + (f" ({', '.join(more)})" if more else "")


def of_macos(said):
    """The lines of the program that runs the front end of macOS, with what belongs together put into one."""
    lines, index = [], 0
    while index < len(said):
        role, _space, rest = said[index].strip().partition(" ")
        end = index + 1
        while end < len(said) and indentation(said[end]) > indentation(said[index]):
            end += 1
        if role == "group":
            below = [each.strip() for each in said[index + 1:end]]
            boxes = [each for each in below if each.startswith("check box ")]
            texts = [each.removeprefix("label ") for each in below if each.startswith("label ")]
            if texts[0] != rest:
                raise AssertionError(f"the first text of the group {rest!r} is {texts[0]!r}")
            lines += [f"group {rest}", *boxes, "texts " + SEPARATOR.join(texts[1:]),
                      *(each for each in below if each not in boxes and not each.startswith("label "))]
            index = end
            continue
        if role == "list":  # the texts before it are its heading
            start = len(lines) - 1 - lines[::-1].index(f"label {rest}")
            lines[start:] = [f"group {rest}",
                             "texts " + SEPARATOR.join(each.removeprefix("label ") for each in lines[start + 1:])]
        lines.append(said[index].strip())
        index += 1
    return lines


def indentation(text):
    return len(text) - len(text.lstrip())


class SameContents(CleanupCase):
    maxDiff = None

    def macos(self, home):
        """The lines of each part of the macOS application."""
        printed = subprocess.run([os.environ["OMBREL_APPKIT_CONTENTS"]], check=True, text=True, stdout=subprocess.PIPE,
                                 timeout=60, env=self.desktop.environment_of(home.folder, {
                                     "LD_PRELOAD": str(FAKE_VOLUME),
                                     "OMBREL_FAKE_VOLUME_FILE": str(self.desktop.volume.path)})).stdout
        parts = re.split(r"^== (\w+)\n", printed, flags=re.MULTILINE)
        return {name: lines.splitlines() for name, lines in zip(parts[1::2], parts[2::2])}

    def test_texts_controls_states_and_names_are_the_same(self):
        home = self.make_home()
        macos = self.macos(home)
        application = self.start(home=home)
        popover = self.open_and_read_popover(application, application.wait_for_strip().rect)
        self.compare(macos["popover"], popover)
        self.press(popover, "Free Up Space…")
        window = self.window(application)
        self.compare(macos["files"], window)
        self.click_on(next(each for each in window.find_all("radio button") if each.name == "Storage Guide"))
        self.wait_for_text(window, " storage areas covered")
        wait_until(lambda: len(self.rows(window)) == 60, "all avenues")
        wait_until(lambda: "Not measured yet" not in str(of_linux(window)), "the measured guide")
        self.compare(macos["guide"], window)

    def compare(self, macos, linux):
        def comparable(lines):
            return [re.sub(r"^label Updated \d\d:\d\d.*", "label Updated", each) for each in lines]

        expected = [each + " (disabled)" if each == ONLY_ON_MACOS else each for each in of_macos(macos)]
        self.assertGreater(len(expected), 10)
        self.assertEqual(comparable(expected), comparable(of_linux(linux)))
