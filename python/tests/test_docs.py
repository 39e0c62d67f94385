"""The session of docs/python.md runs as shown, as doctest, from the source
tree; /tmp/ in it stands for a fresh directory of the test's own."""
import doctest
from pathlib import Path

SOURCE = Path(__file__).parents[2]


def test_the_session_of_the_docs(tmp_path, monkeypatch):
    monkeypatch.chdir(SOURCE)
    text = (SOURCE / "docs" / "python.md").read_text().replace("/tmp/", f"{tmp_path}/")
    session = doctest.DocTestParser().get_doctest(text, {}, "docs/python.md", "docs/python.md", 0)
    assert len(session.examples) > 10
    runner = doctest.DocTestRunner(optionflags=doctest.NORMALIZE_WHITESPACE)
    runner.run(session)
    assert runner.summarize(verbose=False).failed == 0
