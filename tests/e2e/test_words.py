"""What Ombrel says on Linux: nothing of it speaks of a Mac."""

import os
import re
import subprocess

from cleanup_case import CleanupCase, wait_for

MAC = re.compile(r"\b(mac|macos|macintosh|finder|menu bar)\b", re.IGNORECASE)
STYLE = "macOS Storage Colors"  # the name of a style


class Words(CleanupCase):

    def said(self, *trees):
        """Every text that a screen reader meets."""
        texts = set()
        for tree in trees:
            for each in wait_for(lambda tree=tree: list(tree.walk()), "the tree"):
                texts |= {each.name, each.description, each.label}
        return texts - {""}

    def check(self, texts, *expected):
        for text in expected:
            self.assertIn(text, texts)
        self.assertEqual([text for text in sorted(texts) if MAC.search(text.replace(STYLE, ""))], [])

    def test_the_popover_and_the_menu_speak_of_this_computer(self):
        application = self.start()
        strip = application.wait_for_strip()
        popover = self.open_and_read_popover(application, strip.rect)
        said = self.said(popover)
        for style in ("macOS Storage Colors", "Vivid Theme", "Current Theme", "Rainbow"):
            self.choose_from(popover.find("combo box", label="Bar Style"), style)
            said |= self.said(popover)
        self.check(said, "Show % Used in Panel", "Starts Ombrel silently in the panel when you log in.",
                   "Widths use category totals that were once measured; total disk usage stays live.")
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()
        self.check(self.said(self.open_menu(application, application.strip().rect)), "Free Up Space…", "Show % Used")

    def test_the_window_speaks_of_this_computer(self):
        home = self.make_home()
        application, window = self.open(home)
        self.check(self.said(window), "Storage Used: 500 GB", "Reveal old.log in the file manager",
                   "Not changed for 45 days. It may be your only copy, so open it before deciding. · Review in the file "
                   "manager. This item cannot be selected here. · Uses 31.5 MB · Review First")
        self.press(window, "Select Low-Risk Files")
        self.press(window, "Move to Trash…")
        message = "Move 5 selected items to the Trash?"
        self.check(self.said(self.sheet(application, message)), message)
        self.answer(application, message, "Cancel")
        self.click_on(next(each for each in window.walk() if each.name == "Storage Guide"))
        self.wait_for_text(window, "60 storage areas covered · ")
        self.check(self.said(window), "Managed by Apps or the System", "Old system installers",
                   "The system owns swap, sleep images, indexes, and other runtime storage. · Protected by the System · "
                   "Size not measured here")

    def test_the_terminal_is_told_of_this_computer(self):
        home = self.make_home()
        for option, expected in (("--report", "Review First"), ("--status", "Available"), ("--help", "--report")):
            said = subprocess.run([os.environ["OMBREL"], option], env={"PATH": os.environ["PATH"], "HOME": str(home.folder)},
                                  stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=True).stdout
            self.assertIn(expected, said)
            self.assertFalse(MAC.search(said), said)
            self.assertEqual([line for line in said.splitlines() if len(line) > 80], [])

    def test_an_empty_window_speaks_of_this_computer(self):
        _application, window = self.open(self.make_home({}), ready=False)
        self.wait_for_text(window, "No cleanup files found")
        self.check(self.said(window),
                   "The scan found 0 B it can offer here. Open Storage Guide for space managed by apps or the system.")
