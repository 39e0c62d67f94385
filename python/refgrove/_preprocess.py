"""preprocess: text dumps into a data directory, safely."""
from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Callable, Optional, Union

from ._refgrove import _preprocess

Progress = Callable[[int, int], object]


@dataclass(frozen=True)
class PreprocessResult:
    """What a run made (``target``, the data directory, absolute) and what it
    had to skip or change on the way, as refgrove preprocess summarizes it."""

    target: str
    documents: int  # with abstracts
    abstract_words: int
    words: int  # distinct words, abstracts and titles
    records: int  # graph records
    authors: int
    citations: int
    lines_without_did: int  # word dump lines skipped
    values_out_of_range: int  # numbers beyond the int32 range, stored clamped
    unindexed: int  # documents whose DID cannot be indexed


def _tqdm_progress(desc: str, unit: str) -> Optional[Progress]:
    """A tqdm bar of the run `desc`, counting `unit`, when tqdm is installed."""
    try:
        from tqdm.auto import tqdm
    except ImportError:
        return None
    bar = None

    def show(done: int, total: int) -> None:
        nonlocal bar
        if bar is None:
            bar = tqdm(total=total, unit=unit, unit_scale=unit == "B", desc=desc)
        bar.update(done - bar.n)
        if done >= total:
            bar.close()

    return show


def _progress_callback(progress: Union[None, bool, Progress], desc: str, unit: str) -> Optional[Progress]:
    """The callback that ``progress`` asks for: None or True a tqdm bar when
    tqdm is installed, False none, else the callable itself."""
    if progress is None or progress is True:
        return _tqdm_progress(desc, unit)
    return None if progress is False else progress


def preprocess(
    dumps_dir: Union[str, os.PathLike],
    data_dir: Union[str, os.PathLike],
    progress: Union[None, bool, Progress] = None,
) -> PreprocessResult:
    """Preprocesses the text dumps of ``dumps_dir`` into the data directory
    ``data_dir`` as ``refgrove preprocess`` does: into a staging directory
    beside it, checked, and only then moved into place, so that a run that
    fails leaves ``data_dir`` as it was; a missing ``data_dir`` is made.

    ``progress`` is called as progress(bytes_read, total_bytes) about ten
    times a second; by default a tqdm bar shows it when tqdm is installed,
    and False shows nothing. An interrupt (Ctrl-C) or an exception from
    ``progress`` stops the run before it touches ``data_dir`` and is raised
    once preprocessing, which cannot be cut short, has ended.

    Raises DataDirectoryError when ``dumps_dir`` is no directory,
    DumpSyntaxError when a dump does not parse, PreprocessError for any
    other failure.
    """
    summary = _preprocess(os.fspath(dumps_dir), os.fspath(data_dir), _progress_callback(progress, "preprocess", "B"))
    return PreprocessResult(**summary)
