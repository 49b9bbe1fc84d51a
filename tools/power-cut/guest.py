#!/usr/bin/python3
"""What runs inside the virtual machine of tools/prove-power-cut, as its first process.

It records one scene on one file system with dm-log-writes, which keeps each write to the disk with its flushes in a log.
Then it builds the states of the disk that a power cut can leave behind, mounts each of them, so that the file system
recovers, checks the law, and runs fsck. What the recovery writes goes to a snapshot, which is dropped afterwards.

A state is one of these:
  prefix   the log up to and with one entry. The log has a cached write when the flush that covers it is done, and a write
           with FUA when it is done itself, so that a prefix that ends with a flush or a mark holds what is certain.
  single   all of an epoch, which is what lies between two flushes, without one of its cached writes
  subset   an epoch up to a random cut. Writes with FUA before the cut are there, of the others some are lost; every other
           time block by block, and the write at the cut may be torn.

The law: the contents of each file exist once and whole, in its place, or in Trash/files with a complete info file that
names its place. What was reported as moved is in the Trash, what was reported as put back is in its place, other files and
older items of the Trash are as they were, and fsck finds nothing. An info file without an item is allowed.
"""

import collections
import ctypes
import fcntl
import json
import os
import random
import re
import struct
import subprocess
import sys
import time
import traceback

MOUNT = "/mnt"
USER = MOUNT + "/user"
FOLDER, TRASH, NOISE = USER + "/Documents", USER + "/.local/share/Trash", USER + "/noise"
INFO = re.compile(rb"\[Trash Info\]\nPath=([^\n]+)\nDeletionDate=\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\n")
SECTOR, BLOCK = 512, 4096
FLUSH, FUA, DISCARD, MARK = 1, 2, 4, 8
DISK = "/dev/dm-0"  # the only device that is mapped at a time
CREATE, REMOVE, RESUME, LOAD, MESSAGE = 3, 4, 6, 9, 14  # commands of the device mapper
MOST_SINGLES, SUBSETS, FSCK_EACH = 40, 20, 4  # of an epoch; of the states that are no prefix

Scene = collections.namedtuple("Scene", "files older fresh busy replaced environment",
                               defaults=("report.pdf", False, False, False, {}))
REPORT = {"report.pdf": 300_000}
THREE = {"notes.txt": 10_000, "report.pdf": 300_000, "film.mov": 1_000_000}
SCENES = {
    "one": Scene({"film.mov": 1_000_000}),
    "new": Scene(REPORT, older=None),  # there is no Trash
    "three": Scene(THREE),  # one after the other; the name of one is taken
    "busy": Scene(THREE, busy=True),  # while other files wait to be written
    "fresh": Scene(THREE, fresh=True),  # written, and synced one by one, just before
    "press": Scene(THREE, environment={"PRESS": "fsync"}),  # the file system commits between the mover's calls
    "presssync": Scene(THREE, environment={"PRESS": "syncfs"}),
    "replaced": Scene(REPORT, replaced=True),  # by another file, which the mover puts back
    "replacedpress": Scene(REPORT, replaced=True, environment={"PRESS": "fsync"}),
    "refused": Scene(REPORT, environment={"FAIL": "3"}),  # the first fsync after the move fails, and the mover puts it back
    "refused2": Scene(REPORT, environment={"FAIL": "4"}),
    "refusedpress": Scene(REPORT, environment={"FAIL": "4", "PRESS": "fsync"}),
}
FSCK = {"ext4": ["e2fsck", "-fn"], "xfs": ["xfs_repair", "-n", "-P"], "btrfs": ["btrfs", "check", "--readonly"]}
MKFS = {"ext4": ["mkfs.ext4", "-q", "-E", "nodiscard,lazy_itable_init=0,lazy_journal_init=0"],
        "xfs": ["mkfs.xfs", "-q", "-K"], "btrfs": ["mkfs.btrfs", "-q", "-K"]}

Item = collections.namedtuple("Item", "name places")
Entry = collections.namedtuple("Entry", "sector count flags offset mark")


def system(name, *arguments):
    libc = ctypes.CDLL(None, use_errno=True)
    if getattr(libc, name)(*(a.encode() if isinstance(a, str) else a for a in arguments)) != 0:
        raise OSError(ctypes.get_errno(), f"{name} {arguments}: {os.strerror(ctypes.get_errno())}")


def device_mapper(command, data=b"", targets=0):
    size = 312 + len(data)
    head = struct.pack("<10IQ264s", 4, 0, 0, size, 312, targets, 0, 0, 0, 0, 0, b"disk")
    with open("/dev/mapper/control", "rb") as control:
        fcntl.ioctl(control, 0xC138FD00 | command, bytearray(head + data))


def map_disk(sectors, kind, arguments):
    text = arguments.encode()
    device_mapper(CREATE)
    device_mapper(LOAD, struct.pack("<QQiI16s", 0, sectors, 0, 0, kind.encode()) + text + bytes(8 - len(text) % 8), 1)
    device_mapper(RESUME)


def prepare_machine():
    """Returns what the command line tells."""
    for kind, folder in ("proc", "/proc"), ("sysfs", "/sys"), ("devtmpfs", "/dev"), ("tmpfs", "/tmp"):
        system("mount", kind, folder, kind, 0, None)
    out = os.open("/dev/ttyS1", os.O_WRONLY)
    os.dup2(out, 1)
    os.dup2(out, 2)
    words = open("/proc/cmdline").read().split()
    told = dict(word.removeprefix("cut.").split("=", 1) for word in words if word.startswith("cut."))
    for folder in "/modules/all", f"/modules/{told['fs']}":
        for name in sorted(os.listdir(folder)):
            fd = os.open(f"{folder}/{name}", os.O_RDONLY)
            system("syscall", 313, fd, "rd_nr=1 rd_size=262144" if name.endswith("-brd.ko") else "", 0)  # finit_module
            os.close(fd)
    return told


class Recording:
    """A scene, played on a fresh file system whose writes go to the log on /dev/vdb."""

    def __init__(self, file_system, options, scene, cheat):
        self.scene, self.items = scene, {}
        self.environment = dict(scene.environment, PRESS_FILE=NOISE + "/press")
        self.environment.update([cheat.split("=", 1)] if cheat else [], LD_PRELOAD="/lib/interference.so")
        sectors = int(open("/sys/block/vda/size").read())
        map_disk(sectors, "log-writes", "/dev/vda /dev/vdb")
        subprocess.run([*MKFS[file_system], DISK], check=True, stdout=subprocess.DEVNULL)
        system("mount", DISK, MOUNT, file_system, 0, options)
        self.make_home()
        self.mark("begin")
        for name in scene.files:
            self.move(name)
        time.sleep(1)
        os.sync()
        system("umount", MOUNT)
        device_mapper(REMOVE)

    def add(self, path, size, contents=None, places=None):
        contents = contents or os.urandom(size)
        with open(path, "xb") as file:
            file.write(contents)
            os.fsync(file.fileno())
        folder = os.open(os.path.dirname(path), os.O_RDONLY)
        os.fsync(folder)
        os.close(folder)
        self.items[contents] = Item(os.path.basename(path) if places else path, places or {path})

    def make_home(self):
        for folder in FOLDER, NOISE:
            os.makedirs(folder)
        self.add(FOLDER + "/kept.txt", 50_000)
        self.add(USER + "/photo.jpg", 120_000)
        with open(NOISE + "/press", "wb") as file:
            file.write(bytes(BLOCK))
        older = self.scene.older
        if older:
            for folder in "/files", "/info":
                os.makedirs(TRASH + folder)
            info = f"[Trash Info]\nPath=/before/{older}\nDeletionDate=2020-01-01T00:00:00\n".encode()
            self.add(f"{TRASH}/files/{older}", 20_000)
            self.add(f"{TRASH}/info/{older}.trashinfo", len(info), info)
        if not self.scene.fresh:
            self.add_files()
        for _ in range(2):
            os.sync()
            time.sleep(1)
        if self.scene.fresh:
            self.add_files()

    def add_files(self):
        for name, size in self.scene.files.items():
            path = f"{FOLDER}/{name}"
            self.add(path, size, places={path, path + ".aside"})
            if self.scene.replaced:
                self.add(path + ".other", size, places={path, path + ".other"})

    def move(self, name):
        if self.scene.busy:
            for number in range(4):
                with open(f"{NOISE}/{name}.{number}", "wb") as file:
                    file.write(os.urandom(128 << 10))
        path = f"{FOLDER}/{name}"
        replaced = ["replaced", path + ".other", path + ".aside"] if self.scene.replaced else []
        done = subprocess.run(["mover", path, TRASH, *replaced], env=self.environment, capture_output=True, text=True)
        put_back = self.scene.replaced or "FAIL" in self.scene.environment
        if done.returncode != bool(put_back):
            raise RuntimeError(f"the mover's answer to {name}: {done}")
        self.mark(f"back:{name}{'.other' if self.scene.replaced else ''}" if put_back else f"moved:{name}")

    @staticmethod
    def mark(text):
        device_mapper(MESSAGE, struct.pack("<Q", 0) + f"mark {text}".encode() + b"\0")


def read_log(fd):
    """The entries of the log, each with the offset of its data."""
    magic, _version, count, sector_size = struct.unpack("<QQQI", os.pread(fd, 28, 0))
    if magic != 0x6A736677736872 or sector_size != SECTOR:
        raise RuntimeError("this is no log of dm-log-writes")
    entries, offset = [], SECTOR
    for _ in range(count):
        header = os.pread(fd, SECTOR, offset)
        sector, length, flags, size = struct.unpack_from("<QQQQ", header)
        offset += SECTOR
        mark = header[32:32 + size].decode() if flags & MARK else ""
        entries.append(Entry(sector, 0 if flags & MARK else length, flags, offset, mark))
        if not flags & (DISCARD | MARK):
            offset += length * SECTOR
    return entries


class Replay:
    """The states of the disk: /dev/vdc holds what is certain, a snapshot of it what else a state has."""

    def __init__(self, file_system, options, items, seed):
        self.file_system, self.options, self.items = file_system, options, items
        self.random = random.Random(seed)
        self.log, self.base = os.open("/dev/vdb", os.O_RDONLY), os.open("/dev/vdc", os.O_RDWR)
        self.sectors = os.lseek(self.base, 0, os.SEEK_END) // SECTOR
        self.entries = read_log(self.log)
        marks = [(number, *entry.mark.partition(":")[::2]) for number, entry in enumerate(self.entries) if entry.mark]
        self.begin = marks[0][0]
        self.answers = marks[1:]  # what the mover reported, and when
        self.tally = collections.Counter()

    def pieces(self, numbers):
        for entry in (self.entries[number] for number in numbers):
            size = entry.count * SECTOR
            yield entry.sector * SECTOR, bytes(size) if entry.flags & DISCARD else os.pread(self.log, size, entry.offset)

    def settle(self, number):
        """Makes an entry certain."""
        for offset, data in self.pieces([number]):
            os.pwrite(self.base, data, offset)

    def run(self):
        for number in range(self.begin):
            self.settle(number)
        flushes = [number for number in range(self.begin + 1, len(self.entries)) if self.entries[number].flags & FLUSH]
        for first, end in zip([self.begin, *flushes], [*flushes, len(self.entries)]):
            self.replay_epoch(range(first, end))
        return dict(self.tally)

    def replay_epoch(self, epoch):
        writes = [number for number in epoch if self.entries[number].count]
        cached = [number for number in writes if not self.entries[number].flags & FUA]
        for lost in cached[::1 + len(cached) // MOST_SINGLES]:
            if lost != writes[-1]:  # which is a prefix
                self.check("single", epoch[-1], self.pieces(number for number in writes if number != lost),
                           f"{epoch} without {lost}")
        for attempt in range(SUBSETS if writes else 0):
            last = self.random.choice(writes)
            pieces, lost = self.cut(writes[:writes.index(last) + 1], attempt % 2 == 1 or len(writes) == 1)
            if lost and pieces:
                self.check("subset", last, pieces, f"{epoch} cut at {last}, without {lost}")
        for number in epoch:
            self.settle(number)
            if self.entries[number].count or self.entries[number].mark:
                self.check("prefix", number, [], f"up to {number} {self.entries[number].mark}")

    def cut(self, writes, in_blocks):
        """What is left of these writes, and where something is lost. Blocks are as small as the file system writes."""
        pieces, lost, chance = [], [], self.random.choice((0.75, 0.5, 0.25))
        for number, (offset, data) in zip(writes, self.pieces(writes)):
            certain = self.entries[number].flags & FUA and number != writes[-1]
            step = (SECTOR if self.file_system == "xfs" else BLOCK) if in_blocks and not certain else len(data)
            kept = [(offset + at, data[at:at + step]) for at in range(0, len(data), step)
                    if certain or self.random.random() < chance]
            if sum(len(part) for _offset, part in kept) < len(data):
                lost.append(number)
            pieces += kept
        return pieces, lost

    def check(self, kind, last, pieces, what):
        """A state in which the cut was after the entry `last`."""
        answers = {name: answer for number, answer, name in self.answers if number <= last}
        with_fsck = kind == "prefix" or (self.tally["single"] + self.tally["subset"]) % FSCK_EACH == 0
        os.fsync(self.base)
        map_disk(self.sectors, "snapshot", "/dev/vdc /dev/ram0 N 8")
        disk = os.open(DISK, os.O_RDWR)
        for offset, data in pieces:
            os.pwrite(disk, data, offset)
        os.fsync(disk)
        os.close(disk)
        complaints = list(self.complaints(answers, with_fsck))
        device_mapper(REMOVE)
        self.tally.update({kind, "states"} | {column for column, _text in complaints} | ({"bad"} if complaints else set()))
        if complaints and self.tally["bad"] <= 20:
            print(f"VIOLATION {kind} {what}: {'; '.join(text for _column, text in complaints)}", flush=True)

    def complaints(self, answers, with_fsck):
        """The violations of the law: the column of the table, and a sentence."""
        def written():
            return int(open("/sys/block/dm-0/stat").read().split()[4])
        before = written()
        try:
            system("mount", DISK, MOUNT, self.file_system, 0, self.options)
        except OSError as error:
            yield "unmountable", str(error)
            return
        self.tally["recovered"] += written() != before
        try:
            yield from self.lost_or_wrong(answers)
        finally:
            system("umount", MOUNT)
        if with_fsck:
            self.tally["fscks"] += 1
            done = subprocess.run([*FSCK[self.file_system], DISK], stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            if done.returncode:
                yield "fsck", f"fsck: {done.returncode} {done.stdout[-500:]}"

    def lost_or_wrong(self, answers):
        found, wrong, kept = collections.defaultdict(list), [], {path for item in self.items.values() for path in item.places}
        for folder, folders, names in os.walk(MOUNT, onerror=wrong.append):
            folders[:] = [name for name in folders if f"{folder}/{name}" != NOISE]
            for path in (f"{folder}/{name}" for name in names):
                if path in kept or folder != TRASH + "/info":
                    try:
                        with open(path, "rb") as file:
                            found[file.read()].append(path)
                    except OSError as error:
                        wrong.append(error)
                elif not os.path.exists(f"{TRASH}/files/{os.path.basename(path).removesuffix('.trashinfo')}"):
                    self.tally["orphans"] += 1
        yield from (("torn", str(error)) for error in wrong)
        for contents, item in self.items.items():
            paths = found.pop(contents, [])
            if len(paths) != 1:
                yield ("lost", "twice")[bool(paths)], f"{item.name} is in {len(paths)} places: {paths}"
            away = [path for path in paths if path not in item.places]
            yield from (("info", f"{path} has {why}") for path in away if (why := self.wrong_info(item, path)))
            if paths and len(item.places) > 1:
                self.tally["intrash" if away else "inplace"] += 1
            answer = answers.get(item.name)
            if answer and bool(away) != (answer == "moved"):
                yield "forgotten", f"{item.name} was reported as {answer}, and is at {paths}"
        for contents, paths in found.items():
            yield "torn", f"{len(contents)} bytes that nobody wrote are at {paths}"

    @staticmethod
    def wrong_info(item, path):
        """What is wrong with a file that is not in its place, if anything."""
        if os.path.dirname(path) != TRASH + "/files" or len(item.places) == 1:
            return "no reason to be there"
        try:
            with open(f"{TRASH}/info/{os.path.basename(path)}.trashinfo", "rb") as file:
                text = file.read()
        except OSError as error:
            return f"no info file: {error}"
        told = INFO.fullmatch(text)
        if not told:
            return f"an incomplete info file: {text}"
        return None if told[1].decode() in item.places else f"a wrong origin: {told[1]}"


def main():
    try:
        told = prepare_machine()
        file_system, options = told["fs"], told.get("options")
        recording = Recording(file_system, options, SCENES[told["scene"]], told.get("cheat"))
        tally = Replay(file_system, options, recording.items, told["scene"]).run()
        print("RESULT", json.dumps(tally), flush=True)
    except Exception:
        traceback.print_exc(file=sys.stdout)
        sys.stdout.flush()
    os.sync()
    system("reboot", 0x4321FEDC)  # power off


if __name__ == "__main__":
    main()
