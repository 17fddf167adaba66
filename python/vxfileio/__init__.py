"""Reads and writes the files of a cell screening instrument.

    import vxfileio as vx

    with vx.open("run.vxd") as run:
        print(run.recordings["Series", 0].values(12))
"""

from . import _vxfileio
from ._errors import (DamagedFileError, EmptyFileError, Error, FileError, MissingSamplesWarning, NoSuchRecordingError,
                      NoSuchWellError, UnfinishedRecordingError, UnknownFileError, UsageError, WriteWarning)
from ._open import kind_of, open
from ._raw import Recording, RecordingList, Recordings
from ._records import adopt as _adopt
from ._vxfileio import RawDataChannelInfo, RawDataFileHdr, RawDataRecordingHdr
from ._words import Word

_adopt(_vxfileio._records)
