"""Which errors are explained by a fault that was injected, and which are not.

A fault opens a window; each error has a kind and the time in which it came about. An error is explained when a window
that names its kind lies in that time. Everything else fails the run. All times are of the monotonic clock.
"""

import fnmatch
import threading
import time


TOLD_OF_A_KIND = 20  # as they come; the rest is only counted


class Window:
    """The time of one fault, and for a while after it.

    kinds:  patterns of kinds of errors that it explains, "rtsp.*"
    after:  seconds that the system has to be itself again when the fault is over
    """

    def __init__(self, fault, kinds, after):
        self.fault = fault
        self.kinds = kinds
        self.after = after
        self.begin = time.monotonic()
        self.end = None  # under way

    def explains(self, kind, since, until):
        last = float("inf") if self.end is None else self.end + self.after
        return self.begin <= until and since <= last and any(fnmatch.fnmatchcase(kind, one) for one in self.kinds)


class Judge:
    """Any thread."""

    def __init__(self, tell):
        self.lock = threading.Lock()
        self.windows = []
        self.injected = {}    # by fault and kind
        self.unexplained = []
        self.tell = tell

    def open(self, fault, kinds, after):
        window = Window(fault, kinds, after)
        with self.lock:
            self.windows.append(window)
        return window

    @staticmethod
    def close(window):
        window.end = time.monotonic()

    def error(self, kind, detail, since=None, until=None):
        """since: when what failed began, for what ends in a time-out; until: when it was seen"""
        until = time.monotonic() if until is None else until
        since = until if since is None else since
        with self.lock:
            for window in reversed(self.windows):
                if window.explains(kind, since, until):
                    name = (window.fault, kind)
                    self.injected[name] = self.injected.get(name, 0) + 1
                    return
            self.unexplained.append((until, kind, detail))
            is_told = sum(1 for _, one, _ in self.unexplained if one == kind) <= TOLD_OF_A_KIND
        if is_told:
            self.tell("ERROR %s: %s" % (kind, detail))

    def failed(self):
        with self.lock:
            return bool(self.unexplained)
