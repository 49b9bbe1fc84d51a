"""Waiting for what another process does: always for a condition, always with a bound."""

import time


def wait_until(condition, what, seconds=10.0, interval=0.01):
    """Returns the first true result of `condition`; fails with `what` when there is none in time."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() >= deadline:
            raise AssertionError(f"waited {seconds:g} s in vain for {what}; last seen: {result!r}")
        time.sleep(interval)


def wait_for_equal(expected, read, what, seconds=10.0):
    """Waits until `read()` gives `expected`."""
    seen = [None]

    def matches():
        seen[0] = read()
        return seen[0] == expected

    try:
        wait_until(matches, what, seconds)
    except AssertionError:
        raise AssertionError(f"{what}: expected {expected!r}, last seen {seen[0]!r}") from None


def holds(condition, what, seconds=0.4):
    """Fails when `condition` stops to be true within the time: for what must not happen."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if not condition():
            raise AssertionError(f"{what} did not last")
        time.sleep(0.01)
