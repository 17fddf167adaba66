"""Shared by the scripts that check reference files."""

import pathlib
import tempfile


def against_committed(make, folder, patterns):
    """Makes the files again and compares them with those committed in the folder; yields the differences."""
    with tempfile.TemporaryDirectory() as scratch:
        made = pathlib.Path(scratch)
        make(made)
        names = {path.name for path in made.iterdir()}
        committed = {path.name for pattern in patterns for path in folder.glob(pattern)}
        for name in sorted(names ^ committed):
            yield f"{name} is {'not committed' if name in names else 'not made by the script'}"
        for name in sorted(names & committed):
            if (made / name).read_bytes() != (folder / name).read_bytes():
                yield f"{name} differs from what the script makes"
