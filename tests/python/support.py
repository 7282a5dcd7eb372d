"""Databases of the tests, and the answers of statedb to compare with. The programs are named by
STATECUT and STATEDB, the source tree by STATECUT_SOURCE."""

import atexit
import functools
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
from typing import Any

STATECUT = os.environ["STATECUT"]
STATEDB = os.environ["STATEDB"]
SOURCE = pathlib.Path(os.environ["STATECUT_SOURCE"])


@functools.cache
def folder() -> pathlib.Path:
    made = pathlib.Path(tempfile.mkdtemp())
    atexit.register(shutil.rmtree, made)
    return made


def run(*command: str | pathlib.Path, text: str | None = None) -> str:
    done = subprocess.run(command, input=text, capture_output=True, text=True, check=True)
    return done.stdout


@functools.cache
def sound() -> tuple[pathlib.Path, pathlib.Path]:
    pair = folder() / "sound"
    run(STATEDB, "build", "--profile", "tiny", "--out", pair)
    return pair / "city.dir", pair / "zip4us.dir"


@functools.cache
def cut() -> tuple[pathlib.Path, pathlib.Path]:
    """The cut of TX and OK."""
    reference, range_file = sound()
    made = folder() / "cut"
    made.mkdir()
    (made / "states.txt").write_text("TX\nOK\n")
    subprocess.run(
        [STATECUT, "-s", "states.txt", "-f", reference, "-g", range_file],
        cwd=made,
        stdout=subprocess.DEVNULL,
        check=True,
    )
    return made / "city.sc", made / "zip4us.sc"


def answers(reference: pathlib.Path, questions: list[tuple[Any, ...]]) -> list[dict[str, Any]]:
    """What statedb answers to (operation, argument...)."""
    lines = (json.dumps({"op": op, "args": arguments}) for op, *arguments in questions)
    told = run(STATEDB, "query", "--ref", reference, text="\n".join(lines))
    return [json.loads(line) for line in told.splitlines()]
