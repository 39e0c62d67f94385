"""docs/tour.ipynb runs with `jupyter nbconvert --execute` and shows what
it shows: each text output of the executed notebook is the one saved in
it, and each figure is a figure."""
import os
import shutil
import subprocess
from pathlib import Path

import nbformat

NOTEBOOK = Path(__file__).parents[2] / "docs" / "tour.ipynb"


def shown(notebook):
    """Per code cell, its outputs as texts; a figure as "(figure)"."""
    cells = []
    for cell in notebook.cells:
        if cell.cell_type != "code":
            continue
        outputs = []
        for output in cell.outputs:
            if output.output_type == "stream":
                outputs.append(output.text)
            elif "image/png" in output.get("data", {}):
                outputs.append("(figure)")
            else:
                outputs.append(output.get("data", {}).get("text/plain", output.output_type))
        cells.append(outputs)
    return cells


def test_the_tour_runs_and_shows_what_it_shows(tmp_path):
    jupyter = shutil.which("jupyter", path="/usr/bin:" + os.environ.get("PATH", ""))
    assert jupyter, "jupyter is not installed: run scripts/install-deps"
    subprocess.run([jupyter, "nbconvert", "--to", "notebook", "--execute", str(NOTEBOOK),
                    "--output-dir", str(tmp_path), "--output", "executed.ipynb"],
                   check=True, capture_output=True)
    executed = nbformat.read(tmp_path / "executed.ipynb", as_version=4)
    saved = nbformat.read(NOTEBOOK, as_version=4)
    assert shown(executed) == shown(saved)
    assert "(figure)" in sum(shown(saved), [])
