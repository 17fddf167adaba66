"""Plates for tests, written without the library: results and settings files with what pages can get wrong."""

import html

HEADER = ("<Header><HeaderID>OVL Vexaprobe</HeaderID><CompoundName>{compound}</CompoundName><VexaprobeMode>Tecan</VexaprobeMode>"
          "<FileType>{type}</FileType><ProgramVersion>1.0</ProgramVersion><FileVersion>3</FileVersion>"
          "<RecordingDate>0</RecordingDate><RecordingDateString></RecordingDateString><FileName></FileName><Guid></Guid></Header>")

HOSTILE = ["<script>alert(1)</script>", "\"' onclick='x", "\U0001F600 & Ü", "</table></script>"]


def document(kind, compound, content):
    head = HEADER.format(compound=html.escape(compound, quote=False), type=kind)
    return f'<?xml version="1.0" ?><Vexaprobe>{head}{content}</Vexaprobe>'.encode()


def responses(tag, values):
    items = "".join(f"<Response><Label>{name}</Label><Value>{value}</Value></Response>" for name, value in values)
    return f'<{tag} Size="{len(values)}">{items}</{tag}>'


def well(number, label, dose, value, beats=(1000, 3000, 5500)):
    times = "".join(f"<Time>{time}</Time>" for time in beats)
    average = ";".join(f"{0.001 * k * (k - 30):g}" for k in range(60))
    return (f"<Well><WellID>{number}</WellID><WellLabel>{html.escape(label, quote=False)}</WellLabel><Dose>{dose}</Dose>"
            f'<FPfastDetectionTimes Size="{len(beats)}">{times}</FPfastDetectionTimes><AverageCount>2</AverageCount>'
            f"<AveragePreFPfastTime>100</AveragePreFPfastTime><AverageTick>10</AverageTick>"
            f'<Average Size="60"><Ave>{average};</Ave></Average><FPfastDetected>0</FPfastDetected>'
            + responses("Responses", [("QT-Interval", value)]) + responses("NormalizedResponses", [("QT-Interval", value)])
            + "</Well>")


def results(labels, doses, value_of=lambda w, d: 1 + 0.01 * w + 0.1 * d, compound="C1"):
    """Returns a results file of one task: each well has one response at each dose."""
    recordings = ""
    for d, dose in enumerate(doses):
        wells = "".join(well(w, label, dose, value_of(w, d)) for w, label in enumerate(labels))
        recordings += (f'<Recording><Dose>{dose}</Dose><NormalizedResponses Size="0"></NormalizedResponses>'
                       f'<Wells Size="{len(labels)}">{wells}</Wells></Recording>')
    task = f'<Task><TaskName>Series</TaskName><Recordings Size="{len(doses)}">{recordings}</Recordings></Task>' if doses else ""
    return document("VXResults", compound, f"<Results>{task}</Results>")


def settings(layout, rows, columns, labels):
    """Returns a settings file whose wells fill a plate by rows. Every seventh well is inactive."""
    wells = "".join(
        f"<Well><WellID>{w}</WellID><ChID>{w}</ChID><Label>{html.escape(label, quote=False)}</Label><PlateColumn>{w % columns}</PlateColumn>"
        f"<PlateRow>{w // columns}</PlateRow><State>{int(w % 7 == 6)}</State></Well>" for w, label in enumerate(labels))
    plate = (f"<PropertyRecordPlate><Layout>{layout}</Layout><PlateID>Q</PlateID><PlateRows>{rows}</PlateRows>"
             f"<PlateColumns>{columns}</PlateColumns><CompoundID>1</CompoundID><Label>C1</Label>"
             f'<Wells Size="{len(labels)}">{wells}</Wells><Series Size="0"></Series></PropertyRecordPlate>')
    return document("VXSettings", "C1", f"<Settings>{plate}</Settings>")


def labels_of(rows, columns):
    return [f"{chr(ord('A') + row)}{column + 1}" for row in range(rows) for column in range(columns)]
