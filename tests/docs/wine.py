"""Runs scripts under Wine with the module registered."""

import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent


@dataclass
class Ended:
    output: str
    result: int


def run_scripts(module, scripts):
    """scripts: {name of a file: its text}. Gives {name: Ended}."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for file, text in scripts.items():
            (folder / file).write_text(text, encoding="latin-1", newline="\r\n")
        subprocess.run([HERE / "wine-scripts", module, folder], check=True)
        return {file: Ended((folder / f"{file}.out").read_text(encoding="latin-1"),
                            int((folder / f"{file}.rc").read_text(encoding="ascii"))) for file in scripts}
