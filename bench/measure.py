"""Runs a program and says what it cost, from what the system counts for each process."""

import os
import statistics
import subprocess
import tempfile
import time
from dataclasses import dataclass


class RunFailed(Exception):
    """A program that could not be run, or ended with another exit code than 0."""


@dataclass
class Run:
    """What one run of a program cost, its threads and children included."""

    wall: float  # seconds
    cpu: float  # seconds, in the kernel too
    peak: float  # MiB of memory at the most
    output: str  # what it wrote to its standard output


def run(command):
    """Runs a command to its end. Raises RunFailed with what it said last."""
    name = os.path.basename(command[0])
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        begin = time.monotonic()
        try:
            process = subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=output, stderr=errors)
        except OSError as error:
            raise RunFailed(f'{name}: {error.strerror}') from error
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - begin
        # Told, so that it does not wait for the process itself.
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            said = _text(errors).splitlines()
            raise RunFailed(f'{name}: exit code {process.returncode}: {"".join(said[-1:])}')
        return Run(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024, _text(output))


@dataclass
class Ratio:
    """How many times as much something costs as something else, over several rounds."""

    median: float
    least: float
    most: float

    def __str__(self):
        if self.least == self.most:
            return f'{self.median:.2f}'
        return f'{self.median:.2f} ({self.least:.2f}..{self.most:.2f})'


def ratio(costs, base_costs):
    """Compares the costs of rounds, each with that of the same round."""
    quotients = [cost / base for cost, base in zip(costs, base_costs, strict=True)]
    return Ratio(statistics.median(quotients), min(quotients), max(quotients))


def _text(file):
    file.seek(0)
    return file.read().decode(errors='replace')
