"""Files and a Trash around one move, and whether they are afterwards as the law of prove-trash wants them."""

import collections
import os
import re
import shutil
import tempfile
import urllib.parse
from pathlib import Path

REPORT = b"the report"
GROWN = b", grown"
THEIR_INFO = b"[Trash Info]\nPath=/their/report.log\nDeletionDate=2020-01-01T00:00:00\n"
DEEDS = ("info removed", "info replaced", "file grown", "Trash emptied")
MOVED, NOT_MOVED, MISPLACED, OVER = 0, 1, 3, 4
INFO = re.compile(rb"\[Trash Info\]\nPath=([^\n]+)\nDeletionDate=\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\n")


class Broken(Exception):
    pass


class Answer:
    """What the mover reported, and what it reported of another program."""

    def __init__(self, done, deed=None):
        *lines, last = done.stdout.splitlines() if deed else [*done.stdout.splitlines(), "meddled:"]
        self.status, self.deed = done.returncode, deed
        self.reason = lines[0] if lines else ""
        self.path = Path(lines[1]) if len(lines) > 1 and lines[1] else None
        self.is_unseen, self.is_deleted = "unseen" in last, "deleted" in last
        if (self.status, len(lines)) not in ((MOVED, 0), (NOT_MOVED, 1), (MISPLACED, 2)) or not last.startswith("meddled:"):
            raise Broken(f"exit status {self.status}, and it said {done.stdout!r}")

    def lost_its_info_later(self):
        return self.status == MOVED and self.deed in ("info removed", "info replaced") and self.is_unseen


class Scene:
    """A folder with a file to be moved, and who may be where. What a file is, its contents tell."""

    def __init__(self, parent, kind):
        self.kind = kind
        self.root = Path(tempfile.mkdtemp(prefix="ombrel-trash-", dir=parent))
        self.place, self.data = self.root / "place", self.root / "data"
        self.file, self.trash = self.place / "report.log", self.data / "Trash"
        self.other, self.aside = self.root / "other", self.root / "aside"
        self.places = {}  # by contents
        self.kept = {}  # files that nobody may touch, by path
        self.place.mkdir()
        self.add(REPORT, self.file)
        self.extra = []
        if kind != "no Trash":
            for folder in (self.trash / "files", self.trash / "info"):
                folder.mkdir(parents=True)
            self.keep("older.log")
        if kind == "name taken":
            self.keep("report.log")
            self.keep("report.2.log")
            self.kept[self.trash / "files/report.3.log"] = b"of somebody who wrote no info file"
        if kind in ("replaced", "retaken"):
            self.add(b"another file", self.other)
            self.places[b"another file"].add(self.file)
            self.places[REPORT].add(self.aside)
            self.extra = [kind, self.other, self.aside]
        for path, contents in self.kept.items():
            path.write_bytes(contents)

    def add(self, contents, path):
        path.write_bytes(contents)
        self.places[contents] = {path}

    def keep(self, name):
        self.kept[self.trash / "files" / name] = b"older " + name.encode()
        self.kept[self.trash / "info" / (name + ".trashinfo")] = (
            f"[Trash Info]\nPath=/before/{name}\nDeletionDate=2020-01-01T00:00:00\n".encode())

    def command(self, mover):
        return [mover, self.file, self.trash, *self.extra]

    def check(self, answer=None):
        """The law. Returns whose files are in the Trash, or elsewhere as was told."""
        found = collections.defaultdict(list)
        info = self.trash / "info"
        for path in (Path(folder) / name for folder, _folders, names in os.walk(self.root) for name in names):
            if path in self.kept or path.parent == info or path.name == "filler":
                continue
            found[path.read_bytes().removesuffix(GROWN)].append(path)
        for path, contents in self.kept.items():
            if not path.exists() or path.read_bytes() != contents:
                raise Broken(f"{path.name}, which was there before, is not what it was")
        in_trash = set()
        for contents, places in self.places.items():
            paths = found.pop(contents, [])
            if not paths and contents == REPORT and answer and answer.is_deleted:
                continue
            if len(paths) != 1:
                raise Broken(f"{contents} is in {len(paths)} places")
            path = paths[0]
            if path in places:
                continue
            in_trash.add(contents)
            if answer and (path == answer.path or answer.lost_its_info_later()):
                continue
            if path.parent != self.trash / "files":
                raise Broken(f"{contents} is at {path}")
            told = info / (path.name + ".trashinfo")
            match = INFO.fullmatch(told.read_bytes()) if told.exists() else None
            if not match:
                raise Broken(f"{contents} is in the Trash without a complete info file")
            if Path(os.fsdecode(urllib.parse.unquote_to_bytes(match[1]))) not in places:
                raise Broken(f"{contents} is in the Trash with a wrong origin: {match[1]}")
        if found:
            raise Broken(f"there is {dict(found)}")
        return in_trash

    def check_answer(self, answer):
        """Whether what was reported is what happened."""
        if answer.deed == "info replaced" and self.trash.exists():
            self.kept[self.trash / "info/report.log.trashinfo"] = THEIR_INFO
        in_trash = self.check(answer)
        has_gone = answer.is_deleted and REPORT not in in_trash
        if answer.status == MOVED and in_trash != {REPORT} and not (has_gone and answer.is_unseen):
            raise Broken("it was reported as moved, and is not")
        if answer.status == MOVED and answer.deed == "file grown" and not answer.is_unseen:
            raise Broken("a file was moved that was modified")
        if answer.status == NOT_MOVED and (in_trash or has_gone):
            raise Broken(f"it said {answer.reason!r}, and in the Trash is {in_trash}")
        if answer.status == MISPLACED and not (answer.path in self.misplaced() if answer.path else has_gone):
            raise Broken(f"it said {answer.reason!r}, and at {answer.path} it is not")

    def misplaced(self):
        """Where a file lies that ought not to be there."""
        return {path for path in self.root.rglob("*") if path.is_file() and
                path not in self.places.get(path.read_bytes().removesuffix(GROWN), {path})}

    def remove(self):
        shutil.rmtree(self.root)
