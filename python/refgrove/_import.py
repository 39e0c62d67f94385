"""import_works: works in a source's own format into a data directory."""
from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Iterable, Optional, Tuple, Union

from ._preprocess import Progress, _progress_callback
from ._refgrove import _import_works

PathArg = Union[str, bytes, os.PathLike]


@dataclass(frozen=True)
class ImportResult:
    """What an import made (``target``, the data directory, absolute) and
    the figures of refgrove import's summary."""

    target: str
    works_read: int
    works_kept: int
    works_replaced: int  # records replaced by a later one of the same id
    records_refused: int  # bad records skipped (skip_bad=True)
    citations_within: int  # citations of works of the set
    citations_outside: int  # citations of works outside it
    outside_works: int  # distinct works cited from outside the set
    documents: int  # with abstracts
    words: int  # distinct words
    authors: int
    refusals: Tuple[str, ...] = ()  # each refused record's message, in input order


def import_works(
    format: str,
    inputs: Union[PathArg, Iterable[PathArg]],
    data_dir: PathArg,
    years: Optional[Tuple[int, int]] = None,
    skip_bad: bool = False,
    progress: Union[None, bool, Progress] = None,
) -> ImportResult:
    """Makes the data directory ``data_dir`` of the works in ``inputs`` (a
    file or directory, or a list of them; directories are walked, their
    files in name order; names ending in .gz are read compressed), in
    ``format`` (one that refgrove import reads: "openalex", "s2", "arxiv",
    "csv"), as ``refgrove import``
    does: the works are written as dumps and preprocessed into a staging
    directory beside ``data_dir``, checked, and only then moved into place,
    so that a run that fails leaves ``data_dir`` as it was.

    ``years=(first, last)`` keeps only the works of those years (a work
    without a year is then left out). ``skip_bad=True`` skips bad records
    and counts them (their messages are in ``refusals``); otherwise the
    first one stops the run. ``progress`` is called as
    progress(files_read, files) about ten times a second; by default a tqdm
    bar shows it when tqdm is installed, and False shows nothing. An
    interrupt (Ctrl-C) or an exception from ``progress`` stops the run
    after the file being read, or at the check, before ``data_dir`` is
    touched.

    Raises InputError for an input that cannot be used (an unknown format,
    a missing file, a bad record: the message names the file, the line and
    the field), ArgumentError for a reversed year range, PreprocessError
    when the data directory cannot be made.
    """
    if isinstance(inputs, (str, bytes, os.PathLike)):
        inputs = [inputs]
    summary = _import_works(
        format,
        [os.fspath(i) for i in inputs],
        os.fspath(data_dir),
        years,
        skip_bad,
        _progress_callback(progress, "import", "files"),
    )
    return ImportResult(**summary)
