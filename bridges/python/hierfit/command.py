"""Finds and runs the command ``hierfit``."""

from __future__ import annotations

import os
import shutil
import subprocess
import warnings
from typing import Optional, Sequence, Union

from .errors import CommandFailed, CommandMissing, HierfitWarning

MISSING = (
    "There is no command hierfit: build it ('make build' in its sources, then build/bin/hierfit), "
    "and put it on the path or name it in the environment variable HIERFIT."
)


def find() -> str:
    """The path of the command.

    The environment variable ``HIERFIT`` names it; without it, it is looked for on the path.

    Raises
    ------
    CommandMissing
        When it is in neither place.
    """
    named = os.environ.get("HIERFIT")
    if named:
        found = shutil.which(named)
        if found is None:
            raise CommandMissing(f"HIERFIT is {named!r}, which is no program. {MISSING}")
        return found
    found = shutil.which("hierfit")
    if found is None:
        raise CommandMissing(MISSING)
    return found


def run(arguments: Sequence[str], document: Optional[str] = None) -> bytes:
    """Runs the command, with the document as its standard input, and gives its standard output.

    Raises
    ------
    CommandMissing, CommandFailed

    Warns
    -----
    HierfitWarning
        For each warning of the command.
    """
    done = subprocess.run(
        [find(), *arguments, "--quiet", "--color=never"],
        input=None if document is None else document.encode(),
        stdin=subprocess.DEVNULL if document is None else None,
        capture_output=True,
        check=False,
    )
    messages = done.stderr.decode(errors="replace").strip().splitlines()
    if done.returncode != 0:
        told = "\n".join(messages) or f"the command ended with status {done.returncode}"
        raise CommandFailed(told, done.returncode)
    for message in messages:
        warnings.warn(message, HierfitWarning, stacklevel=4)
    return done.stdout


Pathlike = Union[str, "os.PathLike[str]"]
