"""refgrove.import_works against refgrove import, on data/openalex-sample and
on inputs broken on purpose."""
import os
import shutil
from pathlib import Path

import pytest

import refgrove
from conftest import tool

OPENALEX_SAMPLE = Path(os.environ.get("REFGROVE_SAMPLE_DIR", Path(__file__).parents[2] / "data" / "sample")).parent / "openalex-sample"
GOOD = '{"id":"https://openalex.org/W1","publication_year":2001,"title":"One","referenced_works":["https://openalex.org/W2"]}'


def data_files(directory):
    """The files of a data directory but its manifest, which records when
    and by what it was made."""
    return {p.name: p.read_bytes() for p in Path(directory).iterdir() if p.name != "manifest"}


def test_the_sample_as_the_tool_imports_it(tmp_path):
    result = refgrove.import_works("openalex", OPENALEX_SAMPLE, tmp_path / "py", progress=False)
    assert result == refgrove.ImportResult(
        target=str(tmp_path / "py"), works_read=8, works_kept=7, works_replaced=1, records_refused=0,
        citations_within=11, citations_outside=4, outside_works=2, documents=5, words=80, authors=4)
    summary = tool("import", "openalex", tmp_path / "cli", OPENALEX_SAMPLE).stdout
    assert "8 works read, 7 kept, 1 replaced by a later record, 0 records refused" in summary
    assert data_files(tmp_path / "py") == data_files(tmp_path / "cli")
    with refgrove.load(result.target) as ds:
        assert (ds.document(4).key, ds.document(3).cited_by) == ("W9000000002", [2, 4, 5, 7])


def test_inputs_years_and_progress(tmp_path):
    files = sorted(OPENALEX_SAMPLE.iterdir())
    calls = []
    listed = refgrove.import_works("openalex", files, tmp_path / "listed", progress=lambda *a: calls.append(a))
    assert listed.works_read == 8 and calls[-1] == (2, 2)
    assert data_files(tmp_path / "listed") == data_files(refgrove.import_works(
        "openalex", OPENALEX_SAMPLE, tmp_path / "walked", progress=False).target)

    some = refgrove.import_works("openalex", OPENALEX_SAMPLE, tmp_path / "some", years=(1998, 1999), progress=False)
    tool("import", "openalex", tmp_path / "cli", OPENALEX_SAMPLE, "--years", "1998-1999")
    assert some.works_kept < listed.works_kept
    assert data_files(some.target) == data_files(tmp_path / "cli")


def test_bad_inputs_leave_the_target(tmp_path):
    target = tmp_path / "target"
    refgrove.import_works("openalex", OPENALEX_SAMPLE, target, progress=False)
    before = {p.name: p.read_bytes() for p in target.iterdir()}
    bad = tmp_path / "bad.jsonl"
    bad.write_text(GOOD + '\n{"id":"https://openalex.org/W2","publication_year":"soon"}\n')
    empty = tmp_path / "empty"
    empty.mkdir()
    cases = [  # format, input, error class, message's first line, path, line, field
        ("openalex", bad, refgrove.InputError, f"{bad}:2: publication_year: not a year", str(bad), 2, "publication_year"),
        ("openalex", tmp_path / "none", refgrove.InputError, f"{tmp_path / 'none'}: No such file or directory",
         str(tmp_path / "none"), None, None),
        ("openalex", empty, refgrove.InputError, None, str(empty), None, None),
        ("crossref", OPENALEX_SAMPLE, refgrove.InputError,
         "crossref: not a format that refgrove imports (known: openalex", "crossref", None, None),
    ]
    for format, source, cls, first_line, path, line, field in cases:
        with pytest.raises(cls) as raised:
            refgrove.import_works(format, source, target, progress=False)
        e = raised.value
        where = f"{format} {source}"
        assert isinstance(e, refgrove.PreprocessError), where
        assert str(e).endswith("\nnothing was written"), where
        if first_line is not None:
            assert str(e).splitlines()[0].startswith(first_line), where
        assert (e.path, e.line, e.field) == (path, line, field), where
        cli = tool("import", format, tmp_path / "cli", source, check=False)
        assert cli.returncode == 1 and str(e).splitlines()[0] in cli.stderr, where
    with pytest.raises(refgrove.ArgumentError, match=r"years \(2001, 2000\): not \(first, last\)"):
        refgrove.import_works("openalex", OPENALEX_SAMPLE, target, years=(2001, 2000), progress=False)
    with pytest.raises(ValueError):
        refgrove.import_works("openalex", "a\0b", target, progress=False)

    class Stop(Exception):
        pass

    def stop(done, total):
        raise Stop()

    many = tmp_path / "many"  # a run that lasts past the first report
    many.mkdir()
    for part in range(20):
        (many / f"part{part:02}.jsonl").write_text(
            "".join(f'{{"id":"W{part}x{i}","publication_year":2000,"title":"T {i}"}}\n' for i in range(5000)))
    with pytest.raises(Stop):
        refgrove.import_works("openalex", many, target, progress=stop)
    assert {p.name: p.read_bytes() for p in target.iterdir()} == before
    assert [p.name for p in tmp_path.iterdir() if "refgrove" in p.name] == [], "no lock, dumps or staging left"


def test_skip_bad_counts_what_it_refuses(tmp_path):
    mixed = tmp_path / "mixed.jsonl"
    mixed.write_text(GOOD + '\nnot json\n{"publication_year":2001}\n')
    result = refgrove.import_works("openalex", mixed, tmp_path / "data", skip_bad=True, progress=False)
    assert (result.works_kept, result.records_refused, len(result.refusals)) == (1, 2, 2)
    assert all(message.startswith(f"{mixed}:{line}: ") for message, line in zip(result.refusals, [2, 3]))
    cli = tool("import", "openalex", tmp_path / "cli", mixed, "--skip-bad")
    assert [f"refgrove import: refused {m}" for m in result.refusals] == cli.stderr.splitlines()
