"""Runs programs and tells what they cost."""

import dataclasses
import os
import subprocess

from surroundings import now


@dataclasses.dataclass
class Cost:
    wall: float  # seconds
    cpu: float  # seconds, user and system
    memory: float  # the most that was resident, MB

    def __add__(self, other):
        return Cost(max(self.wall, other.wall), self.cpu + other.cpu, max(self.memory, other.memory))


class Measured:
    """A process that was started, and what it had cost when it ended. CPU of its own ended children is in it."""

    def __init__(self, command, environment=None, log=subprocess.DEVNULL, directory=None):
        self._begin = now()
        self._process = subprocess.Popen(
            command, env=environment, stdout=subprocess.DEVNULL, stderr=log, cwd=directory
        )

    @property
    def pid(self):
        return self._process.pid

    def end(self):
        """Waits for the end."""
        _, status, usage = os.wait4(self.pid, 0)
        self._process.returncode = os.waitstatus_to_exitcode(status)
        if self._process.returncode != 0:
            raise SystemExit(f"{self._process.args[0]} ended with {self._process.returncode}")
        return Cost(now() - self._begin, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1000)
