#!/usr/bin/python3
"""Measures the application as a whole and prints a table of what is aimed at and what is reached; see tools/bench.

usage: measure.py BUILD-FOLDER [--idle SECONDS] [--trace SECONDS]
"""

import argparse
import json
import os
import re
import shutil
import statistics
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[1]
sys.dont_write_bytecode = True
sys.path.insert(0, str(SOURCES / "tests/e2e"))

STARTS, CLICKS, OPENINGS = 15, 20, 200
PACE = 0.3  # seconds between two clicks: what is quicker may count as one
DEADLINE = 10.0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--idle", type=float, default=180.0)
    parser.add_argument("--trace", type=float, default=70.0)
    options = parser.parse_args()
    build = options.build.resolve()
    os.environ["OMBREL"] = str(build / "ombrel")
    os.environ["OMBREL_FAKE_VOLUME"] = str(build / "libfakevolume.so")
    rows, load = [], os.getloadavg()

    def row(what, target, reached, met):
        rows.append((what, target, reached, "" if met else "MISSED"))
        print(f"... {what}: {reached}", flush=True)

    for name, microseconds in drawing(build).items():
        row(f"drawing, {name}", "< 100 µs", f"{microseconds:.0f} µs", microseconds < 100)
    more = status(build)
    row("ombrel --status beside /bin/true", "<= 2 ms more", f"{more:.2f} ms more", more <= 2)
    for tray in (None, "trayer"):
        milliseconds = start(tray)
        row(f"start to the first bar, {tray or 'strip'}", "< 300 ms", f"{milliseconds:.0f} ms", milliseconds < 300)
    measure_clicks(row)
    wakers = measure_idle(row, options.idle, options.trace)

    widths = [max(len(line[column]) for line in rows) for column in range(3)]
    print()
    for line in [("measured", "target", "reached", ""), *rows]:
        print("  ".join([*(cell.ljust(width) for cell, width in zip(line, widths)), line[3]]).rstrip())
    print(f"\nOther work on the machine makes the figures worse; its load was {load[0]:.1f} at the begin, "
          f"{os.getloadavg()[0]:.1f} at the end, on {os.cpu_count()} processors.")
    if wakers:
        print(f"\nWhat woke a thread within {options.trace:g} s of idling:")
        for (thread, why), count in sorted(wakers.items()):
            print(f"  {count:4} x  {thread}: {why}")


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


def status(build):
    """By how many milliseconds `ombrel --status` takes longer than a process that does nothing; medians."""
    report = build / "hyperfine.json"
    subprocess.run(["hyperfine", "-N", "--warmup", "20", "--runs", "400", "--export-json", report, "/bin/true",
                    f"{build / 'ombrel'} --status"], check=True, capture_output=True)
    nothing, ombrel = (each["median"] for each in json.loads(report.read_text())["results"])
    return (ombrel - nothing) * 1000


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
        row("left click to the popover", "< 60 ms", f"{milliseconds:.0f} ms", milliseconds < 60)
        time.sleep(1)
        memory, files = private_megabytes(application.pid), descriptors(application.pid)
        for _opening in range(OPENINGS):
            open_and_close()
        time.sleep(1)
        growth, more = private_megabytes(application.pid) - memory, descriptors(application.pid) - files
        row(f"private memory after {OPENINGS} openings", "< 1 MB more", f"{growth:+.2f} MB", growth < 1)
        row(f"descriptors after {OPENINGS} openings", "as many", f"{more:+d} of {files}", more == 0)
    finally:
        place.close()


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
        row(f"processor while idle for {passed:.0f} s", "< 0.05 %", f"{percent:.4f} %", percent < 0.05)
        wakes = [f"{name} {switches - before.get(task, (0, 0, 0))[2]}" for task, (name, _time, switches) in after.items()]
        row(f"times a thread slept in {passed:.0f} s", "the timer's", ", ".join(wakes), True)
        memory = private_megabytes(application.pid)
        row("private memory", "< 30 MB", f"{memory:.1f} MB", memory < 30)
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
