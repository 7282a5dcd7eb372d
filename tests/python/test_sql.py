"""The SQLite module from Python's sqlite3, from apsw and from the shell, and exports against it. The
module is named by STATECUT_SQLITE."""

import csv
import json
import os
import pathlib
import sqlite3
import subprocess
import unittest
from typing import Any

import apsw

import support

MODULE = os.environ["STATECUT_SQLITE"]
TABLES = [
    "zip",
    "city",
    "city_zip",
    "city_phonetic",
    "street",
    "firm",
    "street_variation",
    "county",
    "urbanization",
    "partition",
    "tables",
    "header",
]
Row = tuple[Any, ...]


def connection(pair: tuple[pathlib.Path, pathlib.Path]) -> sqlite3.Connection:
    made = sqlite3.connect(":memory:")
    made.enable_load_extension(True)
    made.load_extension(MODULE)
    made.execute("SELECT statecut_open(?, ?)", tuple(map(str, pair)))
    return made


def rows(of: sqlite3.Connection, table: str) -> list[Row]:
    return of.execute(f'SELECT * FROM "{table}"').fetchall()


def plain(value: Any) -> Any:
    """As JSON holds it."""
    return value.hex() if isinstance(value, bytes) else value


def cell(value: Any) -> str:
    return "" if value is None else str(plain(value))


def export(pair: tuple[pathlib.Path, pathlib.Path], *words: Any, perturb: int = 0) -> None:
    reference, range_file = pair
    command = [support.STATEDB, "export", "--ref", reference, "--rng", range_file, *words]
    environment = {**os.environ, "MALLOC_PERTURB_": str(perturb)}
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env=environment)


class Module(unittest.TestCase):
    def test_sqlite3_answers(self) -> None:
        found = connection(support.sound()).execute(
            "SELECT zip, city FROM zip WHERE zip = ?", ("75203",)
        )
        self.assertEqual(found.fetchall(), [("75203", "DALLAS")])

    def test_apsw_answers(self) -> None:
        made = apsw.Connection(":memory:")
        made.enableloadextension(True)
        made.loadextension(MODULE)
        cursor = made.cursor()
        cursor.execute("SELECT statecut_open(?, ?)", tuple(map(str, support.sound())))
        found = cursor.execute("SELECT city FROM zip WHERE zip = '75203'").fetchall()
        self.assertEqual(found, [("DALLAS",)])
        with self.assertRaises(apsw.CantOpenError):
            cursor.execute("SELECT statecut_open('/nowhere/city.dir')").fetchall()

    def test_shell_answers(self) -> None:
        reference, range_file = support.sound()
        told = support.run(
            "/usr/bin/sqlite3",
            text=f".load {MODULE}\n"
            f"CREATE VIRTUAL TABLE temp.zip USING statecut(table=zip, ref='{reference}', "
            f"rng='{range_file}');\n"
            "SELECT zip, city FROM zip WHERE zip = '75203';\n"
            f"SELECT statecut_open('{reference}', '{range_file}');\n"
            "SELECT count(*) > 0 FROM city WHERE state = 'TX' AND name GLOB 'S*';\n",
        )
        self.assertEqual(told, "75203|DALLAS\n12\n1\n")

    def test_tables_are_those_of_info(self) -> None:
        for pair in (support.sound(), support.cut()):
            told = support.run(support.STATEDB, "info", "--tsv", "tables", *pair)
            wanted = [line.split("\t")[1:] for line in told.splitlines()[1:]]
            found = connection(pair).execute("SELECT name, rba, count, bytes FROM tables")
            self.assertEqual([[cell(value) for value in row] for row in found], wanted)


class Exports(unittest.TestCase):
    def setUp(self) -> None:
        self.folder = support.folder() / self.id().rsplit(".", maxsplit=1)[-1]
        self.folder.mkdir()

    def pairs(self) -> list[tuple[pathlib.Path, pathlib.Path]]:
        return [support.sound(), support.cut()]

    def test_csv_reads_back(self) -> None:
        for number, pair in enumerate(self.pairs()):
            out = self.folder / str(number)
            export(pair, "--table", "all", "--format", "csv", "-o", out)
            self.assertEqual(sorted(file.stem for file in out.iterdir()), sorted(TABLES))
            with connection(pair) as tables:
                for table in TABLES:
                    found = tables.execute(f'SELECT * FROM "{table}"')
                    names = [column[0] for column in found.description]
                    wanted = [names] + [[cell(value) for value in row] for row in found]
                    with open(out / f"{table}.csv", newline="", encoding="utf-8") as file:
                        self.assertEqual(list(csv.reader(file, strict=True)), wanted, table)
                    data = (out / f"{table}.csv").read_bytes()
                    self.assertEqual(data.count(b"\r\n"), len(wanted))
                    self.assertEqual(data.count(b"\n"), len(wanted))

    def test_ndjson_reads_back(self) -> None:
        for number, pair in enumerate(self.pairs()):
            out = self.folder / str(number)
            export(pair, "--table", "all", "--format", "ndjson", "-o", out)
            with connection(pair) as tables:
                for table in TABLES:
                    found = tables.execute(f'SELECT * FROM "{table}"')
                    names = [column[0] for column in found.description]
                    wanted = [dict(zip(names, map(plain, row))) for row in found]
                    told = support.run("/usr/bin/jq", "-c", ".", out / f"{table}.ndjson")
                    self.assertEqual([json.loads(line) for line in told.splitlines()], wanted)

    def test_sqlite_reads_back(self) -> None:
        for number, pair in enumerate(self.pairs()):
            out = self.folder / f"{number}.sqlite"
            export(pair, "--table", "all", "--format", "sqlite", "-o", out)
            copy = sqlite3.connect(out)
            with connection(pair) as tables:
                for table in TABLES:
                    # As texts: rows of SQLite come in the order of their key.
                    self.assertEqual(
                        sorted(map(repr, rows(copy, table))),
                        sorted(map(repr, rows(tables, table))),
                        table,
                    )
            self.assertEqual(copy.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
            self.assertEqual(copy.execute("PRAGMA foreign_key_check").fetchall(), [])
            self.assertGreater(len(copy.execute("PRAGMA foreign_key_list(city)").fetchall()), 0)
            told = dict(copy.execute("SELECT key, value FROM metadata").fetchall())
            self.assertEqual(told["state cut"], str(number))
            self.assertEqual(told["rows of zip"], str(len(rows(copy, "zip"))))
            plan = copy.execute(
                "EXPLAIN QUERY PLAN SELECT * FROM city WHERE state = 'TX' AND name = 'SPRING'"
            ).fetchall()
            self.assertIn("USING INDEX city_state_name", plan[0][3])
            copy.close()

    def test_equal_runs_give_equal_bytes(self) -> None:
        for form in ("csv", "ndjson", "sqlite"):
            made = []
            for perturb in (1, 200):
                out = self.folder / f"{form}.{perturb}"
                words = ("--table", "all", "--format", form, "-o", out)
                export(support.sound(), *words, perturb=perturb)
                files = sorted(out.iterdir()) if out.is_dir() else [out]
                made.append([file.read_bytes() for file in files])
            self.assertEqual(made[0], made[1], form)


if __name__ == "__main__":
    unittest.main()
