"""The tests, run one program after the other until one fails."""

import os
import re
import resource
import signal
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

MEMORY = 3 << 30
FILE_SIZE = 8 << 30
# The tests of a module, those most likely to notice first; all others follow.
FIRST = {
    "cut": ["unit_cut", "test_cut"],
    "hash": ["unit_hash", "unit_cut"],
    "tables": ["unit_tables"],
    "lookup": ["unit_lookup", "test_lookup"],
    "dbfiles": ["unit_dbfiles", "unit_stream", "unit_tables"],
    "base": ["unit_stream", "unit_dbfiles", "unit_log"],
}
THEN = ["unit_cut", "unit_lookup", "unit_hash", "unit_tables", "unit_dbfiles", "unit_stream",
        "unit_run", "unit_log", "unit_info", "unit_query", "unit_docs", "test_faults", "test_cut",
        "test_verify", "test_lookup"]
CASES = "cli"


@dataclass
class Outcome:
    verdict: str  # "passed", "failed", "timeout"
    test: str
    seconds: float
    cpu: float


def stages(base):
    """The test programs of the base build, and the command-line cases last."""
    there = sorted(p.name for p in (base.build / "bin").iterdir()
                   if re.fullmatch(r"(unit|test)_\w+", p.name))
    order = [name for name in THEN if name in there]
    return order + [name for name in there if name not in order] + [CASES]


def ordered(all_stages, path):
    module = path.split("/")[1]
    first = [name for name in FIRST.get(module, []) if name in all_stages]
    return first + [name for name in all_stages if name not in first]


def environment(bench):
    kept = {name: os.environ[name] for name in ("PATH", "HOME") if name in os.environ}
    return {**kept, "TMPDIR": str(bench.folder / "tmp"), "TZ": "UTC", "LC_ALL": "C",
            "STATECUT_CUT_RUNS": "100",
            "GTEST_FAIL_FAST": "1", "GTEST_COLOR": "no", "MALLOC_PERTURB_": "165",
            "STATECUT": str(bench.folder / "bin/statecut"),
            "STATEDB": str(bench.folder / "bin/statedb"),
            "JSONCHECK": str(bench.base.build / "bin/cli_jsoncheck"),
            "PAIR": str(bench.base.folder / "pair")}


def limited(command, bench, log, limit):
    """(exit status or None when the time ran out, seconds, processor seconds)."""
    cpu_limit, wall_limit = limit
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.monotonic()
    # The sanitizers reserve address space without end.
    memory = "unlimited" if bench.sanitized else str(MEMORY)
    command = ["prlimit", f"--as={memory}", f"--fsize={FILE_SIZE}", "--core=0",
               f"--cpu={int(cpu_limit)}", *command]
    with open(log, "wb") as out:
        process = subprocess.Popen(command, cwd=bench.folder / "tmp", env=environment(bench),
                                   stdin=subprocess.DEVNULL, stdout=out, stderr=out,
                                   start_new_session=True)
        try:
            status = process.wait(timeout=wall_limit)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    if status in (-signal.SIGXCPU, -signal.SIGKILL):
        status = None
    return status, time.monotonic() - start, cpu


def failed_test(log):
    """The name of the test that failed, or that ran when the program died."""
    text = Path(log).read_text(errors="replace")
    failed = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", text, re.M)
    begun = re.findall(r"^\[ RUN      \] (\S+)", text, re.M)
    return failed[0] if failed else begun[-1] if begun else ""


def run_program(bench, program, limit):
    log = bench.folder / "output"
    status, seconds, cpu = limited([str(bench.folder / "bin" / program)], bench, log, limit)
    if status == 0:
        return Outcome("passed", program, seconds, cpu)
    test = failed_test(log)
    return Outcome("timeout" if status is None else "failed",
                   f"{program}.{test}" if test else program, seconds, cpu)


def run_cases(bench, limit):
    cases = bench.base.tree / "tests/cli"
    start, cpu_sum = time.monotonic(), 0.0
    for case in sorted(cases.glob("*/*.case")):
        status, _, cpu = limited([str(cases / "run-case"), str(case)], bench,
                                 bench.folder / "output", limit)
        cpu_sum += cpu
        if status != 0:
            return Outcome("timeout" if status is None else "failed",
                           f"cli.{case.parent.name}.{case.stem}",
                           time.monotonic() - start, cpu_sum)
    return Outcome("passed", CASES, time.monotonic() - start, cpu_sum)


def run_stage(bench, stage, limit):
    return run_cases(bench, limit) if stage == CASES else run_program(bench, stage, limit)
