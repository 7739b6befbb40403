"""Worker processes for what would keep one core busy for long."""

import multiprocessing
import os
import signal


def pool():
    """A pool of processes that see the memory of this one as it is now.

    Ctrl+C is left to this process, which ends the others by leaving the with block."""

    def quiet():
        signal.signal(signal.SIGINT, signal.SIG_IGN)

    return multiprocessing.get_context("fork").Pool(max(2, os.cpu_count() or 2), quiet)
