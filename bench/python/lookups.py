#!/usr/bin/env python3
"""Measures lookups from Python, one row of the table a name.

usage: bench/python/lookups.py --data D --results D [--rounds N] ROW...

PYTHONPATH names the package, STATECUT_LIBRARY the shared library.
"""

import argparse
import json
import random
import sqlite3
import time
from pathlib import Path
from statistics import median

import statecut

SAMPLE = 10000  # names a round, no two alike
BATCH = 1000
QUERY = "SELECT state, name, key, city_key, value FROM names WHERE state = ? AND name = ?"


def clock(call, names):
    """Nanoseconds of processor time a name."""
    start = time.process_time_ns()
    call(names)
    return (time.process_time_ns() - start) / len(names)


def sqlite(path):
    peer = sqlite3.connect(":memory:")
    peer.execute("CREATE TABLE names(state TEXT, name TEXT, key INTEGER, city_key INTEGER,"
                 " value INTEGER, PRIMARY KEY(state, name)) WITHOUT ROWID")
    with statecut.Database(path) as db:
        peer.executemany("INSERT OR IGNORE INTO names VALUES(?, ?, ?, ?, ?)",
                         ((c.state, c.name, c.key, c.city_key, c.value) for c in db.city_names()))
    return peer


class Contest:
    def __init__(self, path):
        self.path = path
        self.peer = sqlite(path)
        self.names = self.peer.execute("SELECT state, name FROM names").fetchall()
        random.Random(1).shuffle(self.names)
        with statecut.Database(path, index_names=True) as db:
            for name in self.names[:SAMPLE]:
                city = db.city(*name)
                told = self.peer.execute(QUERY, name).fetchone()
                if (city.state, city.name, city.key, city.city_key, city.value) != told:
                    raise SystemExit(f"bench: answers to {name} differ")

    def peer_calls(self, names):
        execute = self.peer.execute
        for name in names:
            execute(QUERY, name).fetchone()

    def sample(self, number):
        start = number * SAMPLE % (len(self.names) - SAMPLE)
        return [tuple(list(name)) for name in self.names[start : start + SAMPLE]]

    def figures(self, rounds, calls):
        """Of records that are made, and of those that are there already."""
        made = {"name": "first time", "unit": "ns", "ours": [], "other": []}
        again = {"name": "again", "unit": "ns", "ours": [], "other": []}
        for number in range(rounds):
            names = self.sample(number)
            with statecut.Database(self.path, index_names=True) as db:
                for figure in (made, again):
                    figure["ours"].append(clock(lambda asked: calls(db, asked), names))
                    figure["other"].append(clock(self.peer_calls, names))
        for figure in (made, again):
            ratios = [ours / other for ours, other in zip(figure["ours"], figure["other"])]
            figure["median"], figure["minimum"] = median(ratios), min(ratios)
        return [made, again]


def singly(db, names):
    city = db.city
    for state, name in names:
        city(state, name)


def in_batches(db, names):
    for start in range(0, len(names), BATCH):
        db.find_cities(names[start : start + BATCH])


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1].split("\n\n")[0])
    parser.add_argument("--data", type=Path, required=True)
    parser.add_argument("--results", type=Path, required=True)
    parser.add_argument("--work")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("rows", nargs="*")
    options = parser.parse_args()
    calls = {"python-city": singly, "python-batch": in_batches}
    contest = Contest(options.data / "city.dir")
    for row in options.rows:
        figures = contest.figures(options.rounds, calls[row])
        result = {"row": row, "figures": figures, "notes": []}
        (options.results / f"{row}.json").write_text(json.dumps(result, indent=1) + "\n")


if __name__ == "__main__":
    main()
