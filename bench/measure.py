#!/usr/bin/python3
"""Measures the application beside what a user would run instead, and writes one table; see tools/bench.

usage: measure.py BUILD-FOLDER [--idle SECONDS] [--trace SECONDS] [--trees FOLDER] [--table FILE]
"""

import argparse
import json
import os
import platform
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from collections import Counter
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[1]
sys.dont_write_bytecode = True
sys.path.insert(0, str(SOURCES / "tests/e2e"))

STARTS, CLICKS, OPENINGS = 15, 20, 200
PACE = 0.3  # seconds between two clicks: what is quicker may count as one
DEADLINE = 10.0
FRAMES = 60  # that a screen shows in a second
FILES, FOLDERS = 400_000, 20_000  # of the tree that is walked
HOME_FILES = 200_000  # of the home that is scanned


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--idle", type=float, default=180.0)
    parser.add_argument("--trace", type=float, default=0.0)
    parser.add_argument("--trees", type=Path, default="/var/tmp")
    parser.add_argument("--table", type=Path)
    options = parser.parse_args()
    build = options.build.resolve()
    os.environ["OMBREL"] = str(build / "ombrel")
    os.environ["OMBREL_FAKE_VOLUME"] = str(build / "libfakevolume.so")
    rows, load = [], os.getloadavg()

    def row(what, reached, aim, met, beside="", its=""):
        rows.append((what, reached, beside, its, aim if met else f"{aim}: **missed**"))
        print(f"... {what}: {reached}" + (f" beside {its} of {beside}" if beside else ""), flush=True)

    def ratio(what, ours, beside, theirs, most, shown=lambda seconds: f"{seconds:.2f} s"):
        share = ours / theirs
        row(what, f"{shown(ours)}, **{share:.2f}** of it", f"at most {most:.2f} of it", share <= most, f"`{beside}`", shown(theirs))

    with tempfile.TemporaryDirectory(prefix="ombrel-bench-", dir=options.trees) as folder:
        measure_walk(ratio, build, Path(folder))
        measure_worker(row, build, Path(folder))
        measure_scan(ratio, build, Path(folder))
    measure_status(row, build)
    for tray in (None, "trayer"):
        milliseconds = start(tray)
        row(f"start to the first bar, in {tray or 'the strip'}", f"{milliseconds:.0f} ms", "less than 300 ms", milliseconds < 300)
    for name, microseconds in drawing(build).items():
        share = microseconds / 1e6 * FRAMES * 100
        row(f"drawing, {name}", f"{microseconds:.0f} µs, {share:.1f} % of a frame", "less than 1 % of a frame", share < 1)
    measure_clicks(row)
    measure_window(row, build)
    wakers = measure_idle(row, options.idle, options.trace)

    text = table(rows, options.trees, load[0])
    if options.table:
        options.table.write_text(text)
    print("\n" + text)
    if wakers:
        print(f"\nWhat woke a thread within {options.trace:g} s of idling:")
        for (thread, why), count in sorted(wakers.items()):
            print(f"  {count:4} x  {thread}: {why}")


def table(rows, trees, load):
    processor = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    system = re.search(r'PRETTY_NAME="(.*)"', Path("/etc/os-release").read_text())
    disk = subprocess.run(["findmnt", "-no", "FSTYPE", "-T", trees], capture_output=True, text=True).stdout.strip()
    memory = int(re.search(r"MemTotal: +(\d+)", Path("/proc/meminfo").read_text())[1]) / (1 << 20)
    return "\n".join([
        "# What Ombrel costs",
        "",
        "`tools/bench` writes this table. Times are medians of runs beside each other on one machine, with warm caches: compare",
        "the ratios, not the seconds.",
        "",
        f"Machine: {processor[1] if processor else platform.machine()}, {os.cpu_count()} processors, {memory:.0f} GiB of memory, "
        f"{system[1] if system else 'Linux'}, Linux {'.'.join(platform.release().split('.')[:2])}, {disk or 'an unknown file system'}; its load was "
        f"{load:.1f} at the beginning.",
        "",
        "| measured | Ombrel | beside | which takes | aim |",
        "|---|---|---|---|---|",
        *(f"| {' | '.join(line)} |" for line in rows),
        ""])


# ---- beside what a user would run instead


def medians(commands, folder, runs=11):
    """The median time of each command in seconds; they take turns, after a run each that does not count."""
    times = {name: [] for name in commands}
    for count in range(runs + 1):
        for name, command in commands.items():
            begin = time.perf_counter()
            subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                           env=os.environ | {"HOME": str(folder)})
            if count:
                times[name].append(time.perf_counter() - begin)
    return {name: statistics.median(each) for name, each in times.items()}


def measure_walk(ratio, build, folder):
    tree, threads = folder / "tree", min(4, len(os.sched_getaffinity(0)))
    subprocess.run([build / "bench/walk-make-tree", tree, str(FILES), str(FOLDERS)], check=True)
    took = medians({"ours": [build / "bench/walk", tree, str(threads)], "du": ["du", "-s", tree],
                    "gdu": ["gdu", "-n", "-p", "-c", tree]}, folder)
    what = f"a walk through {FILES:,} files in {FOLDERS:,} folders, {threads} threads"
    ratio(what, took["ours"], "du -s", took["du"], 0.52)
    ratio(what, took["ours"], "gdu -npc", took["gdu"], 0.5)
    one = ["taskset", "-c", str(min(os.sched_getaffinity(0)))]
    took = medians({"ours": [*one, build / "bench/walk", tree, "1"], "du": [*one, "du", "-s", tree]}, folder)
    ratio("the same on one processor, one thread", took["ours"], "du -s", took["du"], 0.97)
    shutil.rmtree(tree)


def measure_worker(row, build, folder):
    empty = folder / "empty"
    empty.mkdir()
    said = subprocess.run([build / "bench/walk-worker", build / "ombrel", empty, "400"], check=True, capture_output=True, text=True)
    nothing, measuring, _listing = (float(each) * 1000 for each in said.stdout.split())
    row("a worker that measures an empty folder", f"{measuring:.2f} ms, {measuring - nothing:.2f} ms more", "at most 0.60 ms more",
        measuring - nothing <= 0.6, "`/bin/true`", f"{nothing:.2f} ms")


def measure_scan(ratio, build, folder):
    figures = folder / "scan.json"
    subprocess.run([SOURCES / "bench/measure-scan", build / "ombrel", folder, str(HOME_FILES), figures], check=True,
                   stdout=subprocess.DEVNULL)
    ours, by_hand = (each["median"] for each in json.loads(figures.read_text())["results"])
    candidates = float(Path(f"{figures}.candidates").read_text())
    home = f"a home of {HOME_FILES:,} files"
    ratio(f"a scan of {home}, until the candidates are shown", candidates, "bench/scan-by-hand", by_hand, 0.42)
    ratio(f"`ombrel --report` of {home}, with the guide's places", ours, "bench/scan-by-hand", by_hand, 0.55)


def measure_status(row, build):
    report = build / "hyperfine.json"
    subprocess.run(["hyperfine", "-N", "--warmup", "20", "--runs", "400", "--export-json", report, "df /",
                    f"{build / 'ombrel'} --status"], check=True, capture_output=True)
    df, ombrel = (each["median"] * 1000 for each in json.loads(report.read_text())["results"])
    row("`ombrel --status`", f"{ombrel:.2f} ms, {ombrel - df:.2f} ms more", "at most 2 ms more", ombrel - df <= 2, "`df /`",
        f"{df:.2f} ms")


# ---- without a display


def drawing(build):
    """The median time of one picture, the slowest style of each kind."""
    result = subprocess.run([build / "bench/drawing_bench", "--benchmark_format=json", "--benchmark_repetitions=7",
                             "--benchmark_min_time=0.05", "--benchmark_report_aggregates_only=true"],
                            capture_output=True, text=True, check=True)
    slowest = {}
    for each in json.loads(result.stdout)["benchmarks"]:
        if each["aggregate_name"] == "median":
            kind, style = each["run_name"].split("/")
            # The time on the processor: others may be busy.
            slowest[kind] = max(slowest.get(kind, (0, "")), (each["cpu_time"], style))
    return {f"{kind} ({style})": microseconds for kind, (microseconds, style) in slowest.items()}


# ---- on a desktop


def desktop(tray=None):
    from desktop import Desktop

    return Desktop(tray, accessibility=False)


def launch(place):
    return place.start(environment={"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": None})


def wait(condition, what):
    """Returns the time when `condition` was seen to be true, looking every millisecond."""
    deadline = time.monotonic() + DEADLINE
    while not condition():
        if time.monotonic() > deadline:
            raise SystemExit(f"waited in vain for {what}")
        time.sleep(0.001)
    return time.monotonic()


def start(tray):
    """From the start of the process to coloured pixels on the screen: the median, in milliseconds."""
    from pictures import coloured_columns
    from screen import Rect

    place = desktop(tray)
    try:
        corner = Rect(1000 - 60, 0, 60, 24)
        times = []
        for _run in range(STARTS):
            begin = time.monotonic()
            application = launch(place)
            times.append(wait(lambda: coloured_columns(place.screen.picture(corner)) > 3, "the bar") - begin)
            application.close()
            wait(lambda: coloured_columns(place.screen.picture(corner)) == 0, "the bar to go")
        return statistics.median(times) * 1000
    finally:
        place.close()


def private_megabytes(pid):
    text = Path(f"/proc/{pid}/smaps_rollup").read_text()
    return sum(int(number) for number in re.findall(r"^Private_(?:Clean|Dirty): +(\d+) kB", text, re.M)) / 1024


def descriptors(pid):
    return len(os.listdir(f"/proc/{pid}/fd"))


def measure_clicks(row):
    """How quickly the popover is painted, and what many openings leave behind."""
    from pictures import coloured_columns, same
    from screen import LEFT, Rect, middle

    place = desktop()
    screen = place.screen
    try:
        application = launch(place)
        strip = application.wait_for_strip().rect
        wait(lambda: coloured_columns(screen.picture(strip)) > 3, "the bar")

        def probes():
            # The first and the last that is painted; small, so that looking takes no time.
            return [screen.picture(rect) for rect in areas]

        def shows(pictures):
            return all(same(one, other) for one, other in zip(probes(), pictures))

        screen.click(*middle(strip))
        popover = application.wait_for_popover().rect
        areas = [Rect(popover.x + 10, popover.y + 10, 90, 24),
                 Rect(popover.x + popover.width - 90, popover.y + popover.height - 50, 80, 40)]
        screen.steady_picture(popover)
        opened = probes()
        screen.key("Escape")
        application.wait_until_popover_closed()
        screen.steady_picture(popover)
        closed = probes()
        if any(same(one, other) for one, other in zip(opened, closed)):
            raise SystemExit("the popover cannot be told from what is behind it")

        def open_and_close():
            time.sleep(PACE)
            screen.move_to(*middle(strip))
            screen.press_button(LEFT)
            begin = time.monotonic()
            screen.release_button(LEFT)
            end = wait(lambda: shows(opened), "the popover")
            screen.key("Escape")
            wait(lambda: shows(closed), "the popover to close")
            return end - begin

        milliseconds = statistics.median(open_and_close() for _click in range(CLICKS)) * 1000
        row("left click to the popover", f"{milliseconds:.0f} ms", "less than 60 ms", milliseconds < 60)
        time.sleep(1)
        memory, files = private_megabytes(application.pid), descriptors(application.pid)
        for _opening in range(OPENINGS):
            open_and_close()
        time.sleep(1)
        growth, more = private_megabytes(application.pid) - memory, descriptors(application.pid) - files
        row(f"private memory after {OPENINGS} openings", f"{growth:+.2f} MB", "less than 1 MB more", growth < 1)
        row(f"descriptors after {OPENINGS} openings", f"{more:+d} of {files}", "as many", more == 0)
    finally:
        place.close()


def measure_window(row, build):
    """The window with 400 finds, on a display of its own."""
    place = desktop()
    try:
        said = subprocess.run([build / "bench/cleanup_window_bench"], check=True, capture_output=True, text=True,
                              env=place.environment).stdout
    finally:
        place.close()
    for what, most in (("400 finds: the first screenful is painted after", 100), ("400 finds: the longest stall meanwhile", 50),
                       ("scrolling: a frame", 16)):
        milliseconds = float(re.search(re.escape(what) + r" +median +([0-9.]+) ms", said)[1])
        row(what.replace("400 finds: ", "the window with 400 finds: ").replace("scrolling:", "scrolling in it:"),
            f"{milliseconds:.1f} ms", f"less than {most} ms", milliseconds < most)


# ---- doing nothing


def threads(pid):
    """By thread: its name, its nanoseconds on a processor, and how often it went to sleep."""
    found = {}
    for task in Path(f"/proc/{pid}/task").iterdir():
        nanoseconds = int((task / "schedstat").read_text().split()[0])
        switches = int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", (task / "status").read_text(), re.M)[1])
        found[task.name] = ((task / "comm").read_text().strip(), nanoseconds, switches)
    return found


def measure_idle(row, seconds, trace_seconds):
    from pictures import coloured_columns

    place = desktop()
    try:
        application = launch(place)
        strip = application.wait_for_strip().rect
        wait(lambda: coloured_columns(place.screen.picture(strip)) > 3, "the bar")
        time.sleep(3)  # what belongs to starting
        before, begin = threads(application.pid), time.monotonic()
        time.sleep(seconds)
        after, passed = threads(application.pid), time.monotonic() - begin
        busy = sum(nanoseconds for _name, nanoseconds, _switches in after.values()) - sum(
            nanoseconds for _name, nanoseconds, _switches in before.values())
        percent = busy / 1e9 / passed * 100
        row(f"processor while idle for {passed:.0f} s", f"{percent:.4f} %", "less than 0.05 %", percent < 0.05)
        wakes = [f"{name} {switches - before.get(task, (0, 0, 0))[2]}" for task, (name, _time, switches) in after.items()]
        print(f"... times a thread slept in {passed:.0f} s: {', '.join(wakes)}", flush=True)
        memory = private_megabytes(application.pid)
        row("private memory while idle", f"{memory:.1f} MB", "less than 30 MB", memory < 30)
        return trace(place, application.pid, trace_seconds) if trace_seconds and shutil.which("strace") else {}
    finally:
        place.close()


def trace(place, pid, seconds):
    """What ended the waits of each thread, counted; empty where tracing is not allowed."""
    log = place.folder / "trace"
    names = {task: name for task, (name, _time, _switches) in threads(pid).items()}
    files = {entry.name: os.readlink(entry) for entry in Path(f"/proc/{pid}/fd").iterdir()}
    tracer = place.spawn(["strace", "-f", "-e", "trace=poll,ppoll,select,pselect6,epoll_wait,futex,nanosleep,"
                          "clock_nanosleep,restart_syscall", "-p", str(pid), "-o", str(log)])
    time.sleep(seconds)
    tracer.terminate()
    tracer.wait()
    wakes = []
    for line in log.read_text(errors="replace").splitlines():
        match = re.match(r"(\d+) +(?:<\.\.\. )?(\w+)(?: resumed>|\().*\) += (.+)$", line)
        if match and not match[3].startswith("?") and "EAGAIN" not in match[3]:
            wakes.append((names.get(match[1], "a thread of its own"), match[2], match[3]))
    # Qt has a thread that listens to the X server and to nothing else.
    display = {files.get(fd) for name, _call, result in wakes if name == "QXcbEventQueue"
               for fd in re.findall(r"fd=(\d+)", result)}

    def reason(call, result):
        if call == "restart_syscall":
            return "the wait that tracing met ended: " + ("a timer" if result == "0" else "a descriptor")
        if "Timeout" in result:
            return f"{call} ran into its time-out: a timer"
        if call == "futex":
            return "futex: another thread"
        targets = {files.get(fd, "a descriptor") for fd in re.findall(r"fd=(\d+)", result)}
        return f"{call}: " + ", ".join("the X server" if target in display else target for target in sorted(targets))

    return Counter((name, reason(call, result)) for name, call, result in wakes)


if __name__ == "__main__":
    main()
