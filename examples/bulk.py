#!/usr/bin/env python3
"""Adds to each line of a CSV file with the columns state and city the key of the city and its ZIP
codes: bulk.py city.dir <in.csv >out.csv"""

import csv
import itertools
import sys

import statecut

LINES = 1000  # that are looked up by one call


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: bulk.py REFERENCE <IN >OUT", file=sys.stderr)
        return 2
    try:
        db = statecut.Database(sys.argv[1], index_names=True)
    except statecut.Error as error:
        print(f"bulk.py: {error}", file=sys.stderr)
        return 1
    with db:
        lines = csv.DictReader(sys.stdin)
        columns = lines.fieldnames or []
        if "state" not in columns or "city" not in columns:
            print("bulk.py: the columns state and city are wanted", file=sys.stderr)
            return 1
        out = csv.DictWriter(sys.stdout, [*columns, "city_key", "zips"], extrasaction="ignore")
        out.writeheader()
        while some := list(itertools.islice(lines, LINES)):
            questions = ((str(line["state"]).upper(), str(line["city"]).upper()) for line in some)
            for line, city in zip(some, db.find_cities(questions)):
                line["city_key"] = city.city_key if city else ""
                line["zips"] = " ".join(db.city_zips(city.city_key)) if city else ""
                out.writerow(line)
    return 0


if __name__ == "__main__":
    sys.exit(main())
