"""Reads and writes the files of a cell screening instrument.

    import vxfileio as vx

    with vx.open("run.vxd") as run:
        print(run.recordings["Series", 0].values(12))
"""

from . import _vxfileio
from ._documents import Results, Settings
from ._errors import (DamagedFileError, EmptyFileError, Error, FileError, MissingSamplesWarning, NoSuchRecordingError,
                      NoSuchWellError, UnfinishedRecordingError, UnknownFileError, UsageError, WriteWarning)
from ._open import kind_of, open
from ._raw import Recording, RecordingList, Recordings
from ._records import adopt as _adopt
from ._vxfileio import (AcqMode, AnalysisMark, FPAveIntervalType, FPmaxType, PipetMode, PlateCompound, PlateData,
                        PlateLayout, PlateMap, PlateWell, PropAnalyzer, PropControl, PropNotebook, PropQualityCheck,
                        PropRecording, PropRecordPlate, PropResultsExport, PropRobot, PropViability, PropWashIn,
                        QualityCheckRecord, RawDataChannelInfo, RawDataFileHdr, RawDataRecordingHdr, Response,
                        ResponseMean, ResponseType, ResultsRecording, ResultsTask, ResultsWell, RobotConfig,
                        RobotPlate, Task, VexaprobeMode, WellAnalysis, XmlFileHeader, dose_text)
from ._words import Word
from ._writing import RawWriter, RecordingWriter

_adopt(_vxfileio._records)
