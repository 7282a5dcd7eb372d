#!/usr/bin/python3
"""Answers a file of lookups on a Dask cluster, a line an answer, in the order of the lookups.

usage: bulk.py --scheduler-file FILE|--scheduler ADDRESS --ref city.dir [--rng zip4us.dir]
               [--blocks N] LOOKUPS ANSWERS                          (NDJSON: calls of statedb query)
       bulk.py ... --op dbFindCity --args state,city LOOKUPS.csv ANSWERS       (CSV: columns of a call)

The file is split at line ends into blocks; a worker answers a block by one process of statedb query
--errors=answer. Lookups, answers and databases lie on a file system that all hosts share, under the
same names. With --reader python the Python reader (statecut), which every worker must be able to
import, answers the plain calls for ZIP codes, streets and firms, with --reader auto where it can. The
answers are those that one process would give to the whole file, byte for byte; a line
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

# The calls that the Python reader answers, as they are mostly written: an id that is a number or none,
# a ZIP code or a name. All others, and what is no call, are for statedb.
PLAIN_CALL = re.compile(
    rb'\{(?:"id": ?(0|[1-9][0-9]{0,14}), ?)?'
    rb'"op": ?"(?:(dbGetZipData|dbGetZipIndex)", ?"args": ?\[([1-9][0-9]{0,4})'
    rb'|(dbFindStreetKey|dbFindFirm)", ?"args": ?\["([ !#-\[\]-~]{1,28})")\]\}')


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


def reader_of(ref, wanted):
    """The database of the Python reader; None where there is none and none is asked for."""
    try:
        import statecut
        return None if wanted == "statedb" else statecut.Database(ref)
    except Exception:
        if wanted == "python":
            raise
        return None


def read_answers(database, calls):
    """The answers of plain calls, as statedb query writes them."""
    ids, zip_ops, numbers, name_ops, names = zip(*(call.groups() for call in calls))
    zips = iter(database.find_zips(f"{int(number):05}" for number in numbers if number))
    texts = {op: [name.decode() for of, name in zip(name_ops, names) if of == op]
             for op in (b"dbFindStreetKey", b"dbFindFirm")}
    found = {b"dbFindStreetKey": iter(database.find_streets(texts[b"dbFindStreetKey"])),
             b"dbFindFirm": iter(database.find_firms(texts[b"dbFindFirm"]))}
    for number, zip_op, name_op in zip(ids, zip_ops, name_ops):
        one = next(zips) if zip_op else next(found[name_op])
        if zip_op == b"dbGetZipData":
            record = f'"{one.record.hex()}"' if one else "null"
            answer = f'"record":{record},"key":{one.key if one else 0}'
        else:
            answer = f'"result":{one.key if one else 0 if zip_op else -1}'
        before = '"id":' + number.decode() + "," if number else ""
        yield f'{{{before}"op":"{(zip_op or name_op).decode()}",{answer}}}'.encode()


def answer_plain(database, calls):
    """The answers of the plain calls by the number of their lines, and the other lines."""
    lines = calls.removesuffix(b"\n").split(b"\n")
    matches = [PLAIN_CALL.fullmatch(line) for line in lines]
    plain = [number for number, match in enumerate(matches) if match]
    answers = read_answers(database, [matches[number] for number in plain]) if plain else ()
    others = [line for line, match in zip(lines, matches) if not match]
    return dict(zip(plain, answers)), b"".join(line + b"\n" for line in others)


def put_between(plain, path):
    """The answers in the file, with the plain ones at their lines."""
    with open(path, "rb") as file:
        others = file.read().removesuffix(b"\n").split(b"\n") if os.path.getsize(path) else []
    rest = iter(others)
    with open(path, "wb") as file:
        for number in range(len(plain) + len(others)):
            file.write((plain[number] if number in plain else next(rest)) + b"\n")


def answer_block(command, path, begin, end, op, columns, reader, part):
    """Writes the answers of a block to part; returns the lines answered and not understood, and how
    many of the former the Python reader answered."""
    with open(path, "rb") as file:
        file.seek(begin)
        calls = file.read(end - begin)
    if op:
        rows = calls.removesuffix(b"\n").split(b"\n")
        calls = b"\n".join(call_of_row(row.removesuffix(b"\r"), op, columns) for row in rows) + b"\n"
    plain = {}
    database = reader_of(*reader)
    if database is not None:
        with database:
            plain, calls = answer_plain(database, calls)
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
    lines = calls.count(b"\n") + (calls[-1:] not in (b"", b"\n"))
    if answered + bad != lines:
        os.remove(attempt)
        raise RuntimeError(f"{path}, bytes {begin} to {end}: {lines} lines, {answered + bad} answers")
    if plain:
        put_between(plain, attempt)
    os.replace(attempt, part)
    return answered + len(plain), bad, len(plain)


def run_blocks(client, jobs, progress):
    """Runs the jobs; returns the sums of what they return."""
    pending = {client.submit(answer_block, *job, retries=2, pure=False) for job in jobs}
    sums = (0, 0, 0)
    done = 0
    seen = time.monotonic()
    while pending:
        ended = {future for future in pending if future.done()}
        pending -= ended
        for future in ended:
            sums = tuple(map(sum, zip(sums, future.result())))
            done += 1
        if ended and progress:
            print(f"bulk.py: {done} of {len(jobs)} blocks", file=sys.stderr)
        if client.scheduler_info()["workers"]:
            seen = time.monotonic()
        elif time.monotonic() - seen > PATIENCE:
            raise CannotRun(f"no worker for {PATIENCE} s")
        if not ended:
            time.sleep(0.1)
    return sums


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
        reader = os.path.abspath(options.ref), options.reader
        jobs = [(command, source, begin, end, options.op, columns, reader, f"{parts}/{number}")
                for number, (begin, end) in enumerate(blocks_of(source, start, count))]
        answered, bad, read = run_blocks(client, jobs, options.progress)
        with open(f"{parts}/all", "wb") as whole:
            for job in jobs:
                with open(job[-1], "rb") as part:
                    shutil.copyfileobj(part, whole, 1 << 20)
                os.remove(job[-1])
        os.replace(f"{parts}/all", answers)
    finally:
        shutil.rmtree(parts, ignore_errors=True)
    by_reader = f", {read} by the Python reader" if read else ""
    print(f"bulk.py: {answered} answered, {bad} not understood, {len(jobs)} blocks{by_reader}")


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
    parser.add_argument("--reader", choices=("statedb", "auto", "python"), default="statedb",
                        help="the Python reader, too: auto, where a worker has it; python, everywhere")
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
