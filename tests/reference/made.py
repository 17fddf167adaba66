"""What the scripts that check reference files have in common."""

import pathlib
import tempfile


def against_committed(make, folder, patterns):
    """Making the files again gives those that are committed in the folder, and their bytes; yields what differs."""
    with tempfile.TemporaryDirectory() as scratch:
        made = pathlib.Path(scratch)
        make(made)
        names = {path.name for path in made.iterdir()}
        committed = {path.name for pattern in patterns for path in folder.glob(pattern)}
        for name in sorted(names ^ committed):
            yield f"{name} is {'not committed' if name in names else 'not what the maker makes'}"
        for name in sorted(names & committed):
            if (made / name).read_bytes() != (folder / name).read_bytes():
                yield f"{name} isn't what the maker makes"
