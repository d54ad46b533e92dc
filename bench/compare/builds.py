"""The programs of a build with CORVANE_BUILD_BENCHMARKS."""

import pathlib
import re


class Build:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        programs = self.folder / "bench/programs"
        self.program = str(programs / "corvane_bench_program")
        self.observed_program = str(programs / "corvane_bench_observed_program")
        self.start = str(programs / "corvane_bench_start")
        self.empty_window = str(programs / "corvane_bench_empty_window")
        self.ca_file = str(programs / "authority.pem")
        self.demo_service = str(self.folder / "src/demo_service/corvane-demo-service")
        self.functions = str(self.folder / "bench/functions/corvane_benchmarks")
        cache = (self.folder / "CMakeCache.txt").read_text()
        self.service_port = int(re.search(r"^CORVANE_BENCH_SERVICE_PORT:\w+=(\d+)", cache, re.M)[1])
        self.update_port = int(re.search(r"^CORVANE_BENCH_UPDATE_PORT:\w+=(\d+)", cache, re.M)[1])
