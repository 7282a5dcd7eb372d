"""What goes wrong."""

import enum


class Code(enum.IntEnum):
    """Why a database could not be opened, or a call not be answered."""

    OPEN_FILE = 1
    READ_FILE = 2
    NOT_DATABASE = 3
    SHORT_FILE = 4
    DAMAGED = 5
    OTHER_BUILD = 6
    NO_MEMORY = 7
    NO_RANGE = 8
    NO_PARTITION = 9
    SMALL_BUFFER = 10
    NOT_FOUND = 100
    AMBIGUOUS = 101
    UNKNOWN = 102
    ARGUMENT = 103


class Error(Exception):
    """`text` names the file, and the table where there is one; `number` is errno or 0; `offset` is
    a place in the file."""

    def __init__(
        self, code: Code, text: str, number: int = 0, table: str = "", offset: int = 0
    ) -> None:
        super().__init__(code, text, number, table, offset)
        self.code = code
        self.text = text
        self.number = number
        self.table = table
        self.offset = offset

    def __str__(self) -> str:
        return self.text
