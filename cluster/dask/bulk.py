#!/usr/bin/python3
"""Answers a file of lookups on a Dask cluster, a line an answer, in the order of the lookups.

usage: bulk.py --scheduler-file FILE|--scheduler ADDRESS --ref city.dir [--rng zip4us.dir]
               [--blocks N] LOOKUPS ANSWERS                          (NDJSON: calls of statedb query)
       bulk.py ... --op dbFindCity --args state,city LOOKUPS.csv ANSWERS       (CSV: columns of a call)

The file is split at line ends into blocks; a worker answers a block by one process of statedb query
--errors=answer. Lookups, answers and databases lie on a file system that all hosts share, under the
same names. The answers are those that one process would give to the whole file, byte for byte; a line
that is not understood has its error in its place. A worker that dies costs the blocks it worked on:
others make them again.
CSV: one header line that names the columns, lines without line breaks inside quotes; "zip:number" in
--args is a column of numbers.
Status: 0 answered, 2 can't run (nothing stands under ANSWERS then).
"""
import argparse
import csv
import json
import os
import re
import shutil
import subprocess
import sys
import time
import uuid

from distributed import Client

PATIENCE = 60  # seconds without any worker until the run gives up


class CannotRun(Exception):
    pass


def blocks_of(path, start, count):
    """The (begin, end) offsets of about so many blocks that end behind a "\\n" or with the file."""
    size = os.path.getsize(path)
    ends = []
    with open(path, "rb") as file:
        for block in range(1, count):
            file.seek(max(start, start + (size - start) * block // count - 1))
            file.readline()
            ends.append(file.tell())
    cuts = sorted({start, size, *ends})
    return list(zip(cuts, cuts[1:]))


def call_of_row(line, op, columns):
    """A line of CSV as a call. What does not fit goes on as it is: its answer is an error."""
    try:
        row = next(csv.reader([line.decode("latin-1")], strict=True), [])
    except csv.Error:
        return b"not CSV"
    arguments = []
    for index, number in columns:
        if index >= len(row):
            break
        field = row[index]
        is_number = number and re.fullmatch("-?[0-9]{1,20}", field)
        arguments.append(int(field) if is_number else field)
    return json.dumps({"op": op, "args": arguments}).encode()


def columns_of(header, names):
    """The (index, is a number) of the columns named, as "state" or "zip:number"."""
    columns = []
    for name in names.split(","):
        name, _, kind = name.partition(":")
        if name not in header or kind not in ("", "number"):
            raise CannotRun(f"no column {name} in the header, or not a kind: {kind!r}")
        columns.append((header.index(name), kind == "number"))
    return columns


def answer_block(command, path, begin, end, op, columns, part):
    """Writes the answers of a block to part; returns the lines answered and not understood."""
    with open(path, "rb") as file:
        file.seek(begin)
        calls = file.read(end - begin)
    if op:
        rows = calls.removesuffix(b"\n").split(b"\n")
        calls = b"\n".join(call_of_row(row.removesuffix(b"\r"), op, columns) for row in rows) + b"\n"
    # The name is this attempt's own: a worker that was given up may still be at work.
    attempt = f"{part}.{uuid.uuid4().hex}"
    with open(attempt, "wb") as answers:
        run = subprocess.run(command, input=calls, stdout=answers, stderr=subprocess.PIPE)
    said = run.stderr.decode(errors="replace")
    counts = re.search(r"(\d+) answered, (\d+) not understood", said)
    if run.returncode != 0 or not counts:
        os.remove(attempt)
        raise RuntimeError(f"{path}, bytes {begin} to {end}: status {run.returncode}: {said}")
    answered, bad = map(int, counts.groups())
    lines = calls.count(b"\n") + (not calls.endswith(b"\n"))
    if answered + bad != lines:
        os.remove(attempt)
        raise RuntimeError(f"{path}, bytes {begin} to {end}: {lines} lines, {answered + bad} answers")
    os.replace(attempt, part)
    return answered, bad


def run_blocks(client, jobs, progress):
    """Runs the jobs; returns the sums of what they return."""
    pending = {client.submit(answer_block, *job, retries=2, pure=False) for job in jobs}
    answered = bad = done = 0
    seen = time.monotonic()
    while pending:
        ended = {future for future in pending if future.done()}
        pending -= ended
        for future in ended:
            one_answered, one_bad = future.result()
            answered, bad, done = answered + one_answered, bad + one_bad, done + 1
        if ended and progress:
            print(f"bulk.py: {done} of {len(jobs)} blocks", file=sys.stderr)
        if client.scheduler_info()["workers"]:
            seen = time.monotonic()
        elif time.monotonic() - seen > PATIENCE:
            raise CannotRun(f"no worker for {PATIENCE} s")
        if not ended:
            time.sleep(0.1)
    return answered, bad


def answer_file(client, options):
    columns, start = None, 0
    if options.op:
        with open(options.lookups, "rb") as file:
            header = next(csv.reader([file.readline().decode("latin-1")]), [])
            start = file.tell()
        columns = columns_of(header, options.args)
    command = [options.statedb, "query", "--errors=answer", "--ref", os.path.abspath(options.ref)]
    if options.rng:
        command += ["--rng", os.path.abspath(options.rng)]
    source, answers = os.path.abspath(options.lookups), os.path.abspath(options.answers)
    count = options.blocks or max(1, os.path.getsize(source) // (8 << 20))
    parts = f"{answers}.parts.{uuid.uuid4().hex}"
    os.mkdir(parts)
    try:
        jobs = [(command, source, begin, end, options.op, columns, f"{parts}/{number}")
                for number, (begin, end) in enumerate(blocks_of(source, start, count))]
        answered, bad = run_blocks(client, jobs, options.progress)
        with open(f"{parts}/all", "wb") as whole:
            for job in jobs:
                with open(job[-1], "rb") as part:
                    shutil.copyfileobj(part, whole, 1 << 20)
                os.remove(job[-1])
        os.replace(f"{parts}/all", answers)
    finally:
        shutil.rmtree(parts, ignore_errors=True)
    print(f"bulk.py: {answered} answered, {bad} not understood, {len(jobs)} blocks")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    where = parser.add_mutually_exclusive_group(required=True)
    where.add_argument("--scheduler-file")
    where.add_argument("--scheduler", metavar="ADDRESS")
    parser.add_argument("--ref", required=True)
    parser.add_argument("--rng")
    parser.add_argument("--op", help="CSV: the call that each line is")
    parser.add_argument("--args", help="CSV: the columns of its arguments, NAME or NAME:number")
    parser.add_argument("--blocks", type=int, help="so many blocks; by default of 8 MiB")
    parser.add_argument("--progress", action="store_true", help="a line when a block is done")
    parser.add_argument("--statedb", default=os.environ.get("STATEDB", "statedb"))
    parser.add_argument("lookups")
    parser.add_argument("answers")
    options = parser.parse_args()
    if bool(options.op) != bool(options.args):
        parser.error("--op and --args go together")
    if options.scheduler_file and not os.path.exists(options.scheduler_file):
        raise CannotRun(f"{options.scheduler_file}: no such file")  # the client would wait for it
    client = Client(options.scheduler, scheduler_file=options.scheduler_file, timeout=PATIENCE)
    try:
        answer_file(client, options)
    finally:
        client.close()


if __name__ == "__main__":
    try:
        main()
    except Exception as error:  # whatever a worker met arrives here as it was raised there
        print(f"bulk.py: {error}", file=sys.stderr)
        sys.exit(2)
