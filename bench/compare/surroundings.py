"""What a program needs around it: a home, a session bus, a screen, the report service."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import time


class Scratch:
    """Where measured programs write. Nothing is removed before the end: a file system that has just lost many files
    is slow to make new ones, and that would count against whoever comes next."""

    def __init__(self, folder):
        self._path = pathlib.Path(folder)

    def __enter__(self):
        shutil.rmtree(self._path, ignore_errors=True)
        self._path.mkdir(parents=True)
        return self

    def __exit__(self, *_):
        shutil.rmtree(self._path, ignore_errors=True)

    def folder(self):
        return pathlib.Path(tempfile.mkdtemp(dir=self._path))


class Home:
    """A throw-away home with a session bus of its own."""

    def __init__(self, scratch):
        self.path = scratch.folder()
        runtime = self.path / "run"
        runtime.mkdir(mode=0o700)
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": str(self.path),
            "XDG_CONFIG_HOME": str(self.path / "config"),
            "XDG_DATA_HOME": str(self.path / "data"),
            "XDG_CACHE_HOME": str(self.path / "cache"),
            "XDG_RUNTIME_DIR": str(runtime),
            "QT_QPA_PLATFORM": "offscreen",
            "LANG": "C.UTF-8",
            "TZ": "UTC",
        }
        self._bus = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"],
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            env=self.environment,
            text=True,
        )
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._bus.stdout.readline().strip()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._bus.terminate()
        self._bus.wait()

    @property
    def settings_file(self):
        return self.path / "config/corvane/settings.plist"

    def reports(self):
        return sorted((self.path / "data").glob("*/ToImport/*.txt"))


class Screen:
    """An X server without a screen."""

    def __enter__(self):
        reading, writing = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x800x24", "-nolisten", "tcp"],
            pass_fds=[writing],
            stderr=subprocess.DEVNULL,
        )
        os.close(writing)
        with os.fdopen(reading) as stream:
            self.name = ":" + stream.readline().strip()
        return self

    def __exit__(self, *_):
        self._server.terminate()
        self._server.wait()


class Service:
    """The demo service at the ports for which the benchmarks' program was built."""

    def __init__(self, build, latency=0, report_size=5000):
        self._command = [
            build.demo_service,
            "--port", str(build.service_port),
            "--update-port", str(build.update_port),
            "--ca-file", build.ca_file,
            "--latency", str(latency),
            "--report-size", str(report_size),
        ]  # fmt: skip

    def __enter__(self):
        self._process = subprocess.Popen(self._command, stdout=subprocess.PIPE, text=True)
        for line in self._process.stdout:
            if line.startswith("READY"):
                return self
        raise SystemExit("the demo service does not start")

    def __exit__(self, *_):
        self._process.terminate()
        self._process.wait()


def now():
    """Seconds on the clock that the observed program uses, too."""
    return time.clock_gettime(time.CLOCK_MONOTONIC)
