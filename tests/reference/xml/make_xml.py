#!/usr/bin/python3
"""Makes the reference files of settings and results, and the text twin of each, which lists what is read from it.

The two documents that the library must write byte for byte are literals below. The others have the same content, or
less, in a form that other programs or older versions may write.

    make_xml.py [FOLDER]      default: the folder of this script
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

import read_xml

DECLARATION = '<?xml version="1.0" ?>'

SETTINGS = DECLARATION + (
    "<Vexaprobe><Header><HeaderID>OVL Vexaprobe</HeaderID><CompoundName>Compound &quot;A&quot; &lt;1 &#181;M&gt; &amp; more"
    "</CompoundName><VexaprobeMode>Tecan</VexaprobeMode><FileType>VXSettings</FileType><ProgramVersion>4.2.1"
    "</ProgramVersion><FileVersion>3</FileVersion><RecordingDate>18446744073709551615</RecordingDate>"
    "<RecordingDateString>2024-01-31 23:59:59</RecordingDateString><FileName>run 7.vxs</FileName><Guid>{0123}</Guid>"
    "</Header><Settings>"
    "<PropertyControl><VexaprobeMode>Norva</VexaprobeMode><RobotMode>Online</RobotMode><DataAcqMode>Simulation"
    "</DataAcqMode><SimulationDataFile>C:\\data\\heart.bin</SimulationDataFile></PropertyControl>"
    "<PropertyNotebook><ExperimentID>E-1</ExperimentID><FileName>run 7</FileName><Director></Director><Scientist>Dr. M"
    "&#252;ller</Scientist><Operator> blanks around </Operator><Department>D</Department><Company>C</Company>"
    "<StudyDesignator>S</StudyDesignator><Species>rat</Species><Age>E14</Age><Comment>two\nlines\tand ]]&gt;</Comment>"
    "</PropertyNotebook>"
    "<PropertyRobot><RobotSerialNumber>R2</RobotSerialNumber><FirmwareVersion>1.0</FirmwareVersion><FirmwareDate>not read"
    "</FirmwareDate><IPAddress>10.0.0.1:80</IPAddress><CleanerID>0</CleanerID><WasteID>-1</WasteID>"
    "<TroughIDStockDilution>2147483647</TroughIDStockDilution><TroughIDWellMedium>-2147483648</TroughIDWellMedium>"
    '<TroughMediumNames Size="3"><MediumName>DMEM</MediumName><MediumName></MediumName><MediumName>&#255;</MediumName>'
    "</TroughMediumNames><StockPlateIDL8x12>A</StockPlateIDL8x12><StockPlateIDL16x6> </StockPlateIDL16x6></PropertyRobot>"
    "<PropertyRecordPlate><Layout>8x12</Layout><PlateID>A</PlateID><PlateRows>8</PlateRows><PlateColumns>12</PlateColumns>"
    '<CompoundID>7</CompoundID><Label>C7</Label><Wells Size="4">'
    "<Well><WellID>64</WellID><ChID>64</ChID><Label>A1</Label><PlateColumn>0</PlateColumn><PlateRow>0</PlateRow><State>2"
    "</State></Well><Well><WellID>-3</WellID><ChID>65</ChID><Label>B1</Label><PlateColumn>0</PlateColumn><PlateRow>1"
    "</PlateRow><State>0</State></Well><Well><WellID>66</WellID><ChID>66</ChID><Label>C1</Label><PlateColumn>0"
    "</PlateColumn><PlateRow>2</PlateRow><State>1</State></Well><Well><WellID>5</WellID><ChID>67</ChID><Label></Label>"
    "<PlateColumn>0</PlateColumn><PlateRow>3</PlateRow><State>0</State></Well></Wells><PipetMode>SaveCompounds"
    '</PipetMode><Series Size="2"><Dose>1000</Dose><Dose>999000000000</Dose></Series></PropertyRecordPlate>'
    '<PropertyQualityCheck><QualityChecks Size="2">'
    '<QC><TaskName>CompoundTest</TaskName><EnableQC>1</EnableQC><QCPerformed Size="2"><CompoundID>3</CompoundID>'
    "<CompoundID>7</CompoundID></QCPerformed><CompoundName>Ref</CompoundName><CompoundDose>1000000</CompoundDose>"
    '<Series Size="1"><Dose>5</Dose></Series><CompoundStockDose>9</CompoundStockDose><CompoundPlateID>B</CompoundPlateID>'
    "<CompoundPlateCol>4</CompoundPlateCol><WashInWait>60000000</WashInWait><RecordingTime>1</RecordingTime>"
    "<WashOutCycles>3</WashOutCycles><WashOutTroughID>2</WashOutTroughID><WashOutWait>-1</WashOutWait><ApplyQC>1</ApplyQC>"
    "<QCResponse>Na-Slope</QCResponse><PerformCompoundQC>1</PerformCompoundQC><CompoundQCEffect>less</CompoundQCEffect>"
    "<CompoundQCComparison>&lt;</CompoundQCComparison><CompoundQCEffectValue>-20</CompoundQCEffectValue>"
    "<PerformWashOutQC>1</PerformWashOutQC><WashOutQCEffect>more</WashOutQCEffect><WashOutQCComparison>&gt;"
    "</WashOutQCComparison><WashOutQCEffectValue>80</WashOutQCEffectValue></QC>"
    '<QC><TaskName>PostQC</TaskName><EnableQC>0</EnableQC><QCPerformed Size="0"/><CompoundName></CompoundName>'
    '<CompoundDose>0</CompoundDose><Series Size="3"><Dose>0</Dose><Dose>0</Dose><Dose>0</Dose></Series><CompoundStockDose>0'
    "</CompoundStockDose><CompoundPlateID>C</CompoundPlateID><CompoundPlateCol>0</CompoundPlateCol><WashInWait>0"
    "</WashInWait><RecordingTime>0</RecordingTime><WashOutCycles>0</WashOutCycles><WashOutTroughID>0</WashOutTroughID>"
    "<WashOutWait>0</WashOutWait><ApplyQC>0</ApplyQC><QCResponse>NotDefined</QCResponse><PerformCompoundQC>0"
    "</PerformCompoundQC><CompoundQCEffect></CompoundQCEffect><CompoundQCComparison></CompoundQCComparison>"
    "<CompoundQCEffectValue>0</CompoundQCEffectValue><PerformWashOutQC>0</PerformWashOutQC><WashOutQCEffect>"
    "</WashOutQCEffect><WashOutQCComparison></WashOutQCComparison><WashOutQCEffectValue>0</WashOutQCEffectValue></QC>"
    "</QualityChecks></PropertyQualityCheck>"
    "<PropertyWashIn><WashIn>-9223372036854775808</WashIn></PropertyWashIn>"
    "<PropertyRecording><DataFormat>4294967295</DataFormat><ADMax>65535</ADMax><ADMin>1</ADMin><ADZero>32768</ADZero>"
    "<Gain>1100</Gain><RecordingTime>60000000</RecordingTime><Tick>100</Tick><VoltageRange>10 &#177;</VoltageRange>"
    "<VoltPerADStep>3.0517578125e-005</VoltPerADStep></PropertyRecording>"
    "<PropertyAnalyzer><Operator>O</Operator><Program>P</Program><ProgramVersion>9</ProgramVersion><AnalyzingDate>"
    "133512191990000000</AnalyzingDate><AnalyzingDateString>2024-01-31 23:59:59</AnalyzingDateString><AnalyzeSettings>"
    '<Tasks Size="2"><Task><TaskName>Series</TaskName><Recordings Size="2">'
    '<Recording><Recording>0</Recording><Wells Size="3"><Well><WellID>64</WellID><Analyze>1</Analyze>'
    '<Responses Size="3"><Na-Amplitude>Manually</Na-Amplitude><Na-Slope>Automatic</Na-Slope><QT-Interval>Deselected'
    '</QT-Interval></Responses></Well><Well><WellID>-3</WellID><Analyze>0</Analyze><Responses Size="3"><Na-Amplitude>'
    "Automatic</Na-Amplitude><Na-Slope>Undefined</Na-Slope><QT-Interval>Automatic</QT-Interval></Responses></Well>"
    '<Well><WellID>5</WellID><Analyze>1</Analyze><Responses Size="3"><Na-Amplitude>Automatic</Na-Amplitude><Na-Slope>'
    "Automatic</Na-Slope><QT-Interval>Automatic</QT-Interval></Responses></Well></Wells></Recording>"
    '<Recording><Recording>1</Recording><Wells Size="0"/></Recording></Recordings></Task>'
    '<Task><TaskName>PreQC</TaskName><Recordings Size="0"/></Task></Tasks></AnalyzeSettings>'
    "<FPAveIntervalType>HeartRateDefined</FPAveIntervalType><FPAveHRDefinedFactor>1.5</FPAveHRDefinedFactor>"
    "<PreFPfastTime>20000</PreFPfastTime><FPAverageTime>500000</FPAverageTime><FPmaxSearchBegin>1</FPmaxSearchBegin>"
    "<FPmaxSearchEnd>2</FPmaxSearchEnd><FPSlopeInterval>3</FPSlopeInterval><FPfastAutoAdjust>0</FPfastAutoAdjust>"
    "<FPfastAutoAdjustFactor>1.e+038</FPfastAutoAdjustFactor><FPfastAutoAdjustTime>4</FPfastAutoAdjustTime>"
    "<FPfastAmplitude>-0.1</FPfastAmplitude><FPfastRiseTimeMin>5</FPfastRiseTimeMin><FPfastRiseTimeMax>6"
    "</FPfastRiseTimeMax><FPfastSlopeRangeMin>-7</FPfastSlopeRangeMin><FPfastSlopeRangeMax>8</FPfastSlopeRangeMax>"
    "</PropertyAnalyzer></Settings></Vexaprobe>")

RESULTS = DECLARATION + (
    "<Vexaprobe><Header><HeaderID>OVL Vexaprobe</HeaderID><CompoundName>C1</CompoundName><VexaprobeMode>Tecan"
    "</VexaprobeMode><FileType>VXResults</FileType><ProgramVersion>1.0</ProgramVersion><FileVersion>1</FileVersion>"
    "<RecordingDate>0</RecordingDate><RecordingDateString></RecordingDateString><FileName></FileName><Guid></Guid></Header>"
    '<Results><Task><TaskName>Analyze</TaskName><Recordings Size="3"><Recording><Dose>1000000</Dose>'
    '<NormalizedResponses Size="2"><Response><Label>Na-Amplitude</Label><normMean>-1.</normMean><normStdDev>0.</normStdDev>'
    "<Samples>0</Samples></Response><Response><Label>QT-Interval</Label><normMean>0.25</normMean><normStdDev>0.125"
    "</normStdDev><Samples>4294967295</Samples></Response></NormalizedResponses>"
    '<Wells Size="3"><Well><WellID>-1</WellID><WellLabel>quiet &amp; empty</WellLabel><Dose>1000000</Dose>'
    '<FPfastDetectionTimes Size="0"/></Well>'
    "<Well><WellID>64</WellID><WellLabel>A1</WellLabel><Dose>1000000</Dose>"
    '<FPfastDetectionTimes Size="2"><Time>1500</Time><Time>-9223372036854775808</Time></FPfastDetectionTimes>'
    "<AverageCount>2</AverageCount><AveragePreFPfastTime>25</AveragePreFPfastTime><AverageTick>10</AverageTick>"
    '<Average Size="7"><Ave>0.5;0.25;-0.125;0.123457;1e-05;1.23457e+06;0;</Ave></Average><FPfastDetected>1</FPfastDetected>'
    "<FPfastMaxAmp>0.123456789</FPfastMaxAmp><FPfastMaxAmpTimeStamp>1510</FPfastMaxAmpTimeStamp><FPfastMinAmp>-0.125"
    "</FPfastMinAmp><FPfastMinAmpTimeStamp>1530</FPfastMinAmpTimeStamp><FPfastSlopeX0>0.3</FPfastSlopeX0><FPfastSlopeY0>"
    "2.5e-010</FPfastSlopeY0><FPfastSlopeX1>12345678901234567000.</FPfastSlopeX1><FPfastSlopeY1>-4.94e-322"
    '</FPfastSlopeY1><FPmaxType>PositivePeak</FPmaxType><Responses Size="2"><Response><Label>Na-Amplitude</Label><Value>0.5'
    "</Value></Response><Response><Label>Na-Slope</Label><Value>1.e+100</Value></Response></Responses>"
    '<NormalizedResponses Size="1"><Response><Label>NotDefined</Label><Value>0.</Value></Response></NormalizedResponses>'
    "</Well>"
    "<Well><WellID>65</WellID><WellLabel>B1</WellLabel><Dose>1000000</Dose><FPfastDetectionTimes Size=\"1\"><Time>1</Time>"
    "</FPfastDetectionTimes><AverageCount>0</AverageCount><AveragePreFPfastTime>0</AveragePreFPfastTime><AverageTick>0"
    '</AverageTick><Average Size="0"><Ave></Ave></Average><FPfastDetected>0</FPfastDetected><FPfastMaxAmp></FPfastMaxAmp>'
    "<FPfastMaxAmpTimeStamp></FPfastMaxAmpTimeStamp><FPfastMinAmp></FPfastMinAmp><FPfastMinAmpTimeStamp>"
    "</FPfastMinAmpTimeStamp><FPfastSlopeX0></FPfastSlopeX0><FPfastSlopeY0></FPfastSlopeY0><FPfastSlopeX1></FPfastSlopeX1>"
    '<FPfastSlopeY1></FPfastSlopeY1><FPmaxType>Undefined</FPmaxType><Responses Size="0"/><NormalizedResponses Size="0"/>'
    '</Well></Wells></Recording><Recording><Dose>0</Dose><NormalizedResponses Size="0"/><Wells Size="0"/></Recording>'
    '<Recording><Dose>18446744073709551615</Dose><NormalizedResponses Size="0"/><Wells Size="1"><Well><WellID>0</WellID>'
    '<WellLabel></WellLabel><Dose>0</Dose><FPfastDetectionTimes Size="0"/></Well></Wells></Recording></Recordings></Task>'
    '<Task><TaskName>Nil</TaskName><Recordings Size="0"/></Task></Results></Vexaprobe>')

# What other programs may put between elements.
NOISE = '<!-- a comment: <Dose>1</Dose> --><Unknown x="1" Size="9">text<Unheard><Of/></Unheard></Unknown>'


def parse(document):
    return ElementTree.ElementTree(ElementTree.fromstring(document))


def serialised(tree):
    """Returns the document, with bytes from 0x80 up as references to themselves, as they were before parsing."""
    return ElementTree.tostring(tree.getroot(), "us-ascii").decode("ascii")


def indented(document):
    tree = parse(document)
    ElementTree.indent(tree, "\t")
    return '<?xml version="1.0" encoding="ISO-8859-1"?>\n<!DOCTYPE Vexaprobe>\n' + serialised(tree) + "\n"


def shuffled(document, fixed_first):
    """Reverses all children, except entries of lists and those found by their positions, and adds noise."""
    root = ElementTree.fromstring(document)
    for parent in root.iter():
        if parent.get("Size") is not None or len(parent) < 2 or parent is root:
            continue
        first = [child for child in parent if child.tag in fixed_first.get(parent.tag, ())]
        rest = [child for child in parent if child not in first]
        parent[:] = first + rest[::-1]
    text = serialised(ElementTree.ElementTree(root))
    return re.sub(r"(</(?:TaskName|Dose|Header|PropertyRobot|Guid|QCResponse|normMean)>)(?!<Dose>)(?=<(?!/(?:Series)))", r"\1" + NOISE, text)


def with_sections(document):
    """Puts parts of texts into CDATA sections."""
    return re.sub(r"<(CompoundName|Comment|Program|Label)>([a-zA-Z0-9]{2,})</",
                  lambda m: f"<{m[1]}>{m[2][:1]}<![CDATA[{m[2][1:]}]]></", document)


def as_version_2(document):
    """Converts to version 2: no marks, no newer sections, and the older name of the recording section."""
    document = document.replace("<FileVersion>3<", "<FileVersion>2<").replace("PropertyRecording", "PropRecording")
    document = re.sub("<PropertyAnalyzer>.*</PropertyAnalyzer>", "", document)
    return re.sub("<PropertyRobot>.*</PropertyRobot>", "", document)


POSITIONAL = {"Well": ("WellID", "FPfastDetected"), "Recording": ("Recording",), "Task": ("TaskName",),
              "Vexaprobe": ("Header",)}

DOCUMENTS = {
    "settings.vxs": SETTINGS,
    "settings_indented.vxs": indented(SETTINGS),
    "settings_shuffled.vxs": shuffled(SETTINGS, POSITIONAL),
    "settings_sections.vxs": with_sections(SETTINGS),
    "settings_version_2.vxs": as_version_2(SETTINGS),
    "results.vxr": RESULTS,
    "results_indented.vxr": indented(RESULTS),
    "results_shuffled.vxr": shuffled(RESULTS, POSITIONAL),
    "results_sections.vxr": with_sections(RESULTS),
}


def make(folder):
    for name, document in DOCUMENTS.items():
        path = folder / name
        path.write_bytes(document.encode("ascii"))
        path.with_suffix(".txt").write_text("".join(line + "\n" for line in read_xml.twin_lines(path)), "ascii")


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent)
