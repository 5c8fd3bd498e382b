"""How much of a run's CPU time is spent by the component, from samples of perf."""

import os
import re
import shutil
import tempfile

import measure

COMPONENT = 'libMaterialAnalysis.so'

# Libraries that work for whoever calls them: a sample in one of them is the nearest caller's. A
# system call is, too.
SERVANTS = re.compile(r'^(libc\.|libm\.|libstdc\+\+\.|libgcc_s\.|ld-linux|\[)')

# Enough of each stack for the frames of those libraries, up to the one that called them.
STACK_BYTES = 4096


def component_share(autotrim, arguments):
    """Runs autotrim under perf. Returns how many samples were taken of the run, and how many of them
    fall to the component. Raises RunFailed where perf is missing or may not take samples."""
    if shutil.which('perf') is None:
        raise measure.RunFailed('the program perf is not there')
    with tempfile.TemporaryDirectory() as directory:
        record = os.path.join(directory, 'perf.data')
        measure.run(['perf', 'record', '--quiet', '--event', 'cpu-clock', '--freq', '499',
                     '--call-graph', f'dwarf,{STACK_BYTES}', '--output', record,
                     autotrim, *arguments])
        said = measure.run(['perf', 'script', '--no-inline', '--input', record,
                            '--fields', 'comm,ip,sym,dso']).output
    owners = [owner_of(sample) for sample in said.split('\n\n') if sample.strip()]
    if not owners:
        raise measure.RunFailed('perf has taken no samples')
    return len(owners), sum(owner == COMPONENT for owner in owners)


def owner_of(sample):
    """Returns the library, or the program, that a sample of perf script falls to; the innermost that
    is known where only servants are."""
    libraries = [os.path.basename(name) for name in re.findall(r'\(([^()]*)\)$', sample, re.M)]
    for library in libraries:
        if not SERVANTS.match(library):
            return library
    return libraries[0] if libraries else ''
