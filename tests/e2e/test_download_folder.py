"""Which folder is the person's download folder, and that only files there may move."""

import os
import unittest
from pathlib import Path

from linux_home import LinuxCase, fill, set_back, shown


class DownloadFolder(LinuxCase):
    """Where the person's downloads are, by the list of the user's folders."""

    def setUp(self):
        super().setUp()
        self.download(self.home / "Downloads")

    def download(self, folder):
        """Puts into a folder what may move; returns its name."""
        file = folder / "old.deb"
        fill(file, 5 * 1024)
        set_back(file, 100)
        return file

    def set_folders(self, *lines, configuration=None):
        file = (configuration or self.home / ".config") / "user-dirs.dirs"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(b"".join(os.fsencode(line) + b"\n" for line in ("# The user's folders", *lines)))

    def assert_moves(self, *files, **environment):
        self.assertEqual(self.movable(self.report(**environment)), sorted(map(shown, files)))

    def test_without_a_list_it_is_the_usual_one(self):
        self.assert_moves(self.home / "Downloads/old.deb")

    def test_a_value_of_any_spelling_moves_it_and_nothing_in_the_usual_one_is_offered(self):
        for value, folder in (("$HOME/Téléchargements", "Téléchargements"),
                              ("$HOME/Téléchargements/", "Téléchargements"),
                              ("$HOME/deep/er/still", "deep/er/still"),
                              (f"{self.home}/Absolute", "Absolute"),
                              ('$HOME/we\\"ird', 'we"ird'),
                              ("$HOME/back\\\\slash", "back\\slash"),
                              ("$HOME/dol\\$lar", "dol$lar"),
                              ('$HOME/a\\"b\\\\c\\$HOME', 'a"b\\c$HOME'),
                              ("$HOME/with a space", "with a space"),
                              (b"$HOME/no-utf8-\xff", b"no-utf8-\xff")):
            with self.subTest(value=value):
                self.set_folders('XDG_DESKTOP_DIR="$HOME/Desktop"', f'XDG_DOWNLOAD_DIR="{os.fsdecode(value)}"',
                                 'XDG_DOCUMENTS_DIR="$HOME/Documents"')
                file = self.download(Path(os.fsdecode(os.path.join(os.fsencode(self.home), os.fsencode(folder)))))
                self.assert_moves(file)

    def test_a_folder_that_is_not_there_offers_nothing(self):
        self.set_folders('XDG_DOWNLOAD_DIR="$HOME/nowhere"')
        self.assert_moves()

    def test_the_list_is_where_the_configuration_is(self):
        self.set_folders('XDG_DOWNLOAD_DIR="$HOME/wrong"')
        self.download(self.home / "wrong")
        configuration = self.home / "configuration"
        self.set_folders('XDG_DOWNLOAD_DIR="$HOME/right"', configuration=configuration)
        file = self.download(self.home / "right")
        self.assert_moves(file, XDG_CONFIG_HOME=str(configuration))
        self.assert_moves(self.home / "wrong/old.deb", XDG_CONFIG_HOME="configuration")
        self.assert_moves(self.home / "Downloads/old.deb", XDG_CONFIG_HOME=str(self.home / "nowhere"))

    def test_a_value_that_cannot_be_meant_counts_as_unset(self):
        for folder in ("", "relative", "Documents", "Stuff", "Stuff/Pictures"):
            self.download(self.home / folder)
        others = ('XDG_DOCUMENTS_DIR="$HOME/Documents"', 'XDG_PICTURES_DIR="$HOME/Stuff/Pictures"')
        for value in ("$HOME/", "$HOME", "$HOME/.", "$HOME/relative/..", "$HOME/..", "/", str(self.home), f"{self.home}/",
                      str(self.folder), "relative", "./relative", "$HOME/Documents", "$HOME/Documents/",
                      f"{self.home}/Documents", "$HOME/Stuff", "$HOME/Stuff/", ""):
            line = f'XDG_DOWNLOAD_DIR="{value}"'
            alone = [] if "Documents" in value or "Stuff" in value else [(line,)]  # these are fine without the others
            for lines in (*alone, (line, *others), (*others, line)):
                with self.subTest(lines=lines):
                    self.set_folders(*lines)
                    self.assert_moves(self.home / "Downloads/old.deb")

    def test_a_remark_is_no_value(self):
        self.set_folders('#XDG_DOWNLOAD_DIR="$HOME/remark"')
        self.download(self.home / "remark")
        self.assert_moves(self.home / "Downloads/old.deb")

    def test_outside_of_the_home_folder_nothing_is_movable(self):
        outside = self.folder / "outside"
        self.addCleanup(self.space.run, ["rm", "-rf", outside])
        self.download(outside)
        for value in (outside, "$HOME/../outside", "$HOME/Downloads/../../outside"):
            with self.subTest(value=value):
                self.set_folders(f'XDG_DOWNLOAD_DIR="{value}"')
                self.assert_moves()

    def test_a_link_instead_of_the_folder_is_not_followed(self):
        self.download(self.home / "Elsewhere")
        (self.home / "Link").symlink_to("Elsewhere")
        self.set_folders('XDG_DOWNLOAD_DIR="$HOME/Link"')
        self.assert_moves()

    def test_a_value_that_leads_to_another_folder_of_the_user_counts_as_unset(self):
        self.download(self.home / "Stuff")
        (self.home / "Documents").symlink_to("Stuff")
        (self.home / "Link").symlink_to("Stuff")
        linked = self.folder / "linked home"
        linked.symlink_to(self.home)
        self.addCleanup(linked.unlink)
        for value, environment in (("$HOME/Stuff", {}), ("$HOME/Link", {}), (f"{self.home}/Stuff", {"HOME": str(linked)}),
                                   (f"{self.home}/Documents", {"HOME": str(linked)}), (self.home, {"HOME": str(linked)})):
            with self.subTest(value=value):
                self.set_folders(f'XDG_DOWNLOAD_DIR="{value}"')
                self.assert_moves(self.home / "Downloads/old.deb", **environment)


if __name__ == "__main__":
    unittest.main()
