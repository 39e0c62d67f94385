"""The exceptions of refgrove: every failure it reports is an Error.

Each class also derives from the built-in exception a Python program would
expect there, so that ``except ValueError`` or ``except KeyError`` catches
it too. Messages are those of the ``refgrove`` tool, without its
``refgrove COMMAND:`` lead.
"""


class Error(Exception):
    """The base of refgrove's exceptions."""


class ArgumentError(Error, ValueError):
    """A bad argument: a DID without a graph record, an author id outside the
    author table, an unknown option value, a query without a term, a number
    out of range."""


class NotFoundError(Error, KeyError):
    """No document or author has the DID, key or id asked for."""

    def __str__(self) -> str:
        """The message itself, not KeyError's quoted form."""
        return str(self.args[0]) if self.args else ""


class DataDirectoryError(Error, FileNotFoundError):
    """The path names no directory, or a directory without the data files
    that refgrove preprocess makes."""


class ClosedError(Error, ValueError):
    """The DataSet has been closed."""


class PreprocessError(Error):
    """Preprocessing failed. The message says what, and what is left of the
    target (as it was, unless the failure came while moving the files into
    place). ``path`` is the file or directory at fault, when one is."""

    def __init__(self, message: str, path: "str | None" = None) -> None:
        """Keeps the message and the path at fault."""
        super().__init__(message)
        self.path = path


class DumpSyntaxError(PreprocessError):
    """A dump does not parse: ``dump`` is its path, ``row`` (from 1) and
    ``column`` (from 0) the place, None when unknown. The target is as it
    was."""

    def __init__(self, message: str, dump: str, row: "int | None", column: "int | None") -> None:
        """Keeps the message, the dump and the place."""
        super().__init__(message, dump)
        self.dump = dump
        self.row = row
        self.column = column


class InputError(PreprocessError):
    """An input of import_works cannot be used: ``path`` is the file (or the
    format's name when that is unknown), ``line`` (from 1) and ``field`` the
    place, None when the file as a whole or the record as a whole is at
    fault. Nothing was written."""

    def __init__(self, message: str, path: str, line: "int | None", field: "str | None") -> None:
        """Keeps the message and the place."""
        super().__init__(message, path)
        self.line = line
        self.field = field
