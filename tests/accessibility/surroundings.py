"""A home, a display without a screen and a session bus of their own for one run of the program."""

import os
import subprocess
import tempfile


class Surroundings:
    """Use with `with`: everything that was started ends, and every file goes."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="corvane-")
        self.processes = []

    def __enter__(self):
        home = self.folder.name
        for name in ("config", "data", "cache", "run"):
            os.mkdir(os.path.join(home, name), 0o700)
        for name in ("WAYLAND_DISPLAY", "LANGUAGE", "AT_SPI_BUS_ADDRESS", "NO_AT_BRIDGE", "QT_ACCESSIBILITY"):
            os.environ.pop(name, None)
        os.environ.update(
            HOME=home,
            XDG_CONFIG_HOME=f"{home}/config",
            XDG_DATA_HOME=f"{home}/data",
            XDG_CACHE_HOME=f"{home}/cache",
            XDG_RUNTIME_DIR=f"{home}/run",
            LC_ALL="C.UTF-8",
            QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
        )
        os.environ["DISPLAY"] = ":" + self._start_and_read(
            lambda fd: ["Xvfb", "-displayfd", fd, "-screen", "0", "1280x1000x24", "-nolisten", "tcp", "-noreset"])
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self._start_and_read(
            lambda fd: ["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--print-address={fd}"])
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.terminate()
            process.wait(10)
        self.folder.cleanup()

    def start(self, *command, **options):
        process = subprocess.Popen(command, **options)
        self.processes.append(process)
        return process

    def _start_and_read(self, command):
        """Starts a command that writes its address to a descriptor, and returns the address."""
        reading, writing = os.pipe()
        self.start(*command(str(writing)), pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            return pipe.readline().strip()
