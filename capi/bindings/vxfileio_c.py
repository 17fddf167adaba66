"""The constants, structs and functions of vxfileio.h, which describes them, for ctypes.

A call that returns anything but VX_OK raises a VxError. Structs know their size and are passed as they are, and so are
lists; None stands for NULL, byref(...) for a place. On Windows, os.add_dll_directory says where the DLL is.

(The package vxfileio is the comfortable way to use the files in Python.)
"""
import ctypes
import sys
from ctypes import CFUNCTYPE, POINTER, Structure, byref
from ctypes import c_char_p, c_double, c_int, c_int32, c_int64, c_uint16, c_uint64, c_void_p

_library = ctypes.CDLL("vxfileio_c.dll" if sys.platform == "win32" else "libvxfileio_c.so.1")


class VxError(Exception):
    def __init__(self, code, text):
        super().__init__(text)
        self.code = code


class Sized(Structure):
    def __init__(self, **members):
        super().__init__(ctypes.sizeof(self), **members)


def _check(code, _function, arguments):
    if code == VX_OK:
        return code
    handle = getattr(arguments[0], "_obj", arguments[0])  # a call that makes a handle has a place for it
    text, size = ctypes.create_string_buffer(1000), byref(c_int64(1000))
    has_text = isinstance(handle, c_void_p) and code != VX_ERROR_BUSY
    if not has_text or _library.vx_last_error(handle, text, size) in (VX_ERROR_BUSY, VX_ERROR_HANDLE):
        _library.vx_code_text(code, text, size)
    raise VxError(code, text.value.decode(errors="replace"))


def _declare(name, *types):
    function = CFUNCTYPE(c_int, *types)((name, _library))
    function.errcheck = _check
    return function


def _array(element):
    """Returns the type of a parameter that takes any sequence."""
    class Array:
        @staticmethod
        def from_param(values):
            is_right = values is None or isinstance(values, ctypes.Array) and values._type_ is element
            return values if is_right else (element * len(values))(*values)

    return Array


def opened(function, *arguments):
    """Returns the handle that a function makes, or closes it if the function fails.

    To keep a document that is VX_DAMAGED, call vx_document_open itself.
    """
    handle = c_void_p()
    try:
        function(byref(handle), *arguments)
    except VxError:
        _library.vx_close(handle)
        raise
    return handle


def array_of(function, *arguments):
    """Returns the array that a function fills. The arguments are those before the array."""
    count = c_int64()
    function(*arguments, None, byref(count))
    values = (function.argtypes[-2]._type_ * count.value)()
    function(*arguments, values, byref(count))
    return values


def text_of(function, *arguments):
    """Returns the text that a function fills, as bytes. The arguments are those before the buffer."""
    size = c_int64()
    function(*arguments, None, byref(size))
    buffer = ctypes.create_string_buffer(size.value)
    function(*arguments, buffer, byref(size))
    return buffer.raw[:size.value - 1]


# <declarations> capi/tools/bindings.py makes them from the header.
VX_OK = 0
VX_ERROR_ARGUMENT = 1
VX_ERROR_HANDLE = 2
VX_ERROR_KIND = 3
VX_ERROR_BUSY = 4
VX_ERROR_STATE = 5
VX_ERROR_STRUCT = 6
VX_ERROR_SHORT_BUFFER = 7
VX_ERROR_NOT_FOUND = 8
VX_ERROR_TYPE = 9
VX_ERROR_VALUE = 10
VX_ERROR_REFUSED = 11
VX_ERROR_FILE = 20
VX_ERROR_WRITE = 21
VX_DAMAGED = 22
VX_CANCELLED = 30
VX_END = 31
VX_ERROR_MEMORY = 40
VX_ERROR_INTERNAL = 41
VX_RAW_HEADER_ID = 0
VX_RAW_FILE_TYPE = 1
VX_RAW_PROGRAM_VERSION = 2
VX_RAW_GUID = 3
VX_RAW_PLATE_ID = 4
VX_RAW_COMPOUND_NAME = 5
VX_RAW_PRE_QC = 0
VX_RAW_COMPOUND_TEST = 1
VX_RAW_POST_QC = 2
VX_CREATE_NEW = 0
VX_CREATE_REPLACE = 1
VX_SETTINGS = 0
VX_RESULTS = 1
VX_TYPE_OBJECT = 0
VX_TYPE_LIST = 1
VX_TYPE_MAP = 2
VX_TYPE_TEXT = 3
VX_TYPE_WORD = 4
VX_TYPE_CHARACTER = 5
VX_TYPE_BOOL = 6
VX_TYPE_INTEGER = 7
VX_TYPE_DOUBLE = 8
VX_TABLE_RESPONSES = 0
VX_TABLE_MEANS = 1
VX_TABLE_BEATS = 2
VX_TABLE_AVERAGES = 3
VX_FILE_RAW = 0
VX_FILE_SETTINGS = 1
VX_FILE_RESULTS = 2
VX_FILE_WORKBOOK = 3
VX_FINDING_WHERE = 0
VX_FINDING_FOUND = 1
VX_FINDING_EXPECTED = 2
VX_FINDING_MEANING = 3
VX_VERSION = 10000
VX_TIME_FIRST = -9223372036854775808
VX_TIME_LAST = 9223372036854775807
VX_ALL_WELLS = -1
VX_MISSING = -9223372036854775808


class vx_raw_info(Sized):
    _fields_ = [("size", c_int64), ("recordings", c_int64), ("file_version", c_int32), ("compound_id", c_int32)]


class vx_recording_info(Sized):
    _fields_ = [("size", c_int64), ("dose", c_int64), ("recording_time", c_int64), ("start_time", c_uint64), ("wells",
        c_int64), ("number", c_int32), ("is_finished", c_int32)]


class vx_recording_options(Sized):
    _fields_ = [("size", c_int64), ("unfinished", c_int32), ("up_to_damage", c_int32)]


class vx_recording_state(Sized):
    _fields_ = [("size", c_int64), ("segments", c_int64), ("wells", c_int64), ("certain_samples", c_int64)]


class vx_well_info(Sized):
    _fields_ = [("size", c_int64), ("units_per_ad", c_double), ("interval", c_int64), ("well", c_int32), ("ad_zero",
        c_int32)]


class vx_segment_info(Sized):
    _fields_ = [("size", c_int64), ("samples", c_int64), ("time_from", c_int64), ("time_to", c_int64), ("offset",
        c_int64), ("well", c_int32), ("reserved", c_int32)]


class vx_selected_well(Sized):
    _fields_ = [("size", c_int64), ("samples", c_int64), ("missing", c_int64), ("first", c_int64), ("runs", c_int64),
        ("well", c_int32), ("reserved", c_int32)]


class vx_run(Structure):
    _fields_ = [("time_from", c_int64), ("interval", c_int64), ("samples", c_int64), ("first", c_int64)]


class vx_file_header(Sized):
    _fields_ = [("size", c_int64), ("header_id", c_char_p), ("file_type", c_char_p), ("program_version", c_char_p),
        ("guid", c_char_p), ("plate_id", c_char_p), ("compound_name", c_char_p), ("file_version", c_int32),
        ("compound_id", c_int32)]


class vx_recording_header(Sized):
    _fields_ = [("size", c_int64), ("task", c_char_p), ("dose", c_int64), ("start_time", c_uint64), ("recording_time",
        c_int64), ("number", c_int32), ("reserved", c_int32)]


class vx_plan_result(Sized):
    _fields_ = [("size", c_int64), ("wells", c_int64), ("wells_that_fit", c_int64), ("cells", c_int64), ("fits",
        c_int32), ("reserved", c_int32)]


class vx_plan_cell(Sized):
    _fields_ = [("size", c_int64), ("room", c_int64), ("needed", c_int64), ("wells_that_fit", c_int64), ("is_list",
        c_int32), ("reserved", c_int32)]


class vx_callbacks(Sized):
    _fields_ = [("size", c_int64), ("user", c_void_p), ("progress", CFUNCTYPE(c_int, c_void_p, c_int64, c_int64)),
        ("finding", CFUNCTYPE(c_int, c_void_p, c_int64, c_char_p, c_char_p))]


class vx_recover_options(Sized):
    _fields_ = [("size", c_int64), ("keep_cut", c_int32), ("replace", c_int32)]


class vx_report_summary(Sized):
    _fields_ = [("size", c_int64), ("findings", c_int64), ("kept", c_int64), ("bytes", c_int64), ("is_sound", c_int32),
        ("is_usable", c_int32)]


class vx_finding(Sized):
    _fields_ = [("size", c_int64), ("offset", c_int64), ("end", c_int64)]


vx_close = _declare("vx_close", c_void_p)
vx_last_error = _declare("vx_last_error", c_void_p, c_char_p, POINTER(c_int64))
vx_code_text = _declare("vx_code_text", c_int32, c_char_p, POINTER(c_int64))
vx_get_version = _declare("vx_get_version", POINTER(c_int32))
vx_to_utf8 = _declare("vx_to_utf8", c_char_p, c_int64, c_char_p, POINTER(c_int64))
vx_raw_open = _declare("vx_raw_open", POINTER(c_void_p), c_char_p)
vx_raw_get_info = _declare("vx_raw_get_info", c_void_p, POINTER(vx_raw_info))
vx_raw_get_text = _declare("vx_raw_get_text", c_void_p, c_int32, c_char_p, POINTER(c_int64))
vx_raw_get_list = _declare("vx_raw_get_list", c_void_p, c_int32, POINTER(c_int64), POINTER(c_int64))
vx_raw_get_recording = _declare("vx_raw_get_recording", c_void_p, c_int64, POINTER(vx_recording_info))
vx_raw_get_task = _declare("vx_raw_get_task", c_void_p, c_int64, c_char_p, POINTER(c_int64))
vx_raw_find_recording = _declare("vx_raw_find_recording", c_void_p, c_char_p, c_int32, POINTER(c_int64))
vx_recording_open = _declare("vx_recording_open", POINTER(c_void_p), c_void_p, c_int64, POINTER(vx_recording_options))
vx_recording_get_state = _declare("vx_recording_get_state", c_void_p, POINTER(vx_recording_state))
vx_recording_get_damage = _declare("vx_recording_get_damage", c_void_p, c_char_p, POINTER(c_int64))
vx_recording_get_wells = _declare("vx_recording_get_wells", c_void_p, POINTER(c_int32), POINTER(c_int64))
vx_recording_get_well = _declare("vx_recording_get_well", c_void_p, c_int32, POINTER(vx_well_info))
vx_recording_get_segment = _declare("vx_recording_get_segment", c_void_p, c_int64, POINTER(vx_segment_info))
vx_recording_read_segment = _declare("vx_recording_read_segment", c_void_p, c_int64, POINTER(c_uint16),
    POINTER(c_int64))
vx_recording_read = _declare("vx_recording_read", c_void_p, c_int32, c_int64, c_int64, POINTER(c_uint16),
    POINTER(c_int64))
vx_recording_read_scaled = _declare("vx_recording_read_scaled", c_void_p, c_int32, c_int64, c_int64, POINTER(c_double),
    POINTER(c_int64))
vx_recording_select = _declare("vx_recording_select", POINTER(c_void_p), c_void_p, _array(c_int32), c_int64, c_int64,
    c_int64)
vx_selection_get_well_count = _declare("vx_selection_get_well_count", c_void_p, POINTER(c_int64))
vx_selection_get_well = _declare("vx_selection_get_well", c_void_p, c_int64, POINTER(vx_selected_well))
vx_selection_get_runs = _declare("vx_selection_get_runs", c_void_p, c_int64, POINTER(vx_run), POINTER(c_int64))
vx_selection_read = _declare("vx_selection_read", c_void_p, POINTER(c_uint16), POINTER(c_int64))
vx_selection_read_scaled = _declare("vx_selection_read_scaled", c_void_p, POINTER(c_double), POINTER(c_int64))
vx_segments_open = _declare("vx_segments_open", POINTER(c_void_p), c_void_p, c_int64, c_int32)
vx_segments_next = _declare("vx_segments_next", c_void_p, POINTER(vx_segment_info), POINTER(c_uint16), POINTER(c_int64))
vx_writer_create = _declare("vx_writer_create", POINTER(c_void_p), c_char_p, c_int32)
vx_writer_set_strict = _declare("vx_writer_set_strict", c_void_p, c_int32)
vx_writer_write_file_header = _declare("vx_writer_write_file_header", c_void_p, POINTER(vx_file_header))
vx_writer_begin_recording = _declare("vx_writer_begin_recording", c_void_p, POINTER(vx_recording_header),
    _array(c_int32), _array(c_int32), _array(c_double), _array(c_int64), c_int64)
vx_writer_write = _declare("vx_writer_write", c_void_p, c_int32, c_int64, c_int64, c_int64, _array(c_uint16), c_int64)
vx_writer_set_list = _declare("vx_writer_set_list", c_void_p, c_int32, _array(c_int64), c_int64)
vx_writer_flush_to_disk = _declare("vx_writer_flush_to_disk", c_void_p)
vx_writer_finish = _declare("vx_writer_finish", c_void_p)
vx_writer_get_report = _declare("vx_writer_get_report", c_void_p, c_char_p, POINTER(c_int64))
vx_plan_check = _declare("vx_plan_check", POINTER(c_void_p), POINTER(vx_recording_header), _array(c_int32),
    _array(c_int32), _array(c_double), _array(c_int64), c_int64, c_int32)
vx_plan_get_result = _declare("vx_plan_get_result", c_void_p, POINTER(vx_plan_result))
vx_plan_get_text = _declare("vx_plan_get_text", c_void_p, c_char_p, POINTER(c_int64))
vx_plan_get_split = _declare("vx_plan_get_split", c_void_p, POINTER(c_int64), POINTER(c_int64))
vx_plan_get_cell = _declare("vx_plan_get_cell", c_void_p, c_int64, POINTER(vx_plan_cell))
vx_plan_get_key = _declare("vx_plan_get_key", c_void_p, c_int64, c_char_p, POINTER(c_int64))
vx_document_create = _declare("vx_document_create", POINTER(c_void_p), c_int32)
vx_document_open = _declare("vx_document_open", POINTER(c_void_p), c_int32, c_char_p)
vx_document_get_faults = _declare("vx_document_get_faults", c_void_p, c_char_p, POINTER(c_int64))
vx_document_save = _declare("vx_document_save", c_void_p, c_char_p, c_int32)
vx_document_get_type = _declare("vx_document_get_type", c_void_p, c_char_p, POINTER(c_int32))
vx_document_get_count = _declare("vx_document_get_count", c_void_p, c_char_p, POINTER(c_int64))
vx_document_get_name = _declare("vx_document_get_name", c_void_p, c_char_p, c_int64, c_char_p, POINTER(c_int64))
vx_document_get_text = _declare("vx_document_get_text", c_void_p, c_char_p, c_char_p, POINTER(c_int64))
vx_document_set_text = _declare("vx_document_set_text", c_void_p, c_char_p, c_char_p)
vx_document_get_int64 = _declare("vx_document_get_int64", c_void_p, c_char_p, POINTER(c_int64))
vx_document_set_int64 = _declare("vx_document_set_int64", c_void_p, c_char_p, c_int64)
vx_document_get_double = _declare("vx_document_get_double", c_void_p, c_char_p, POINTER(c_double))
vx_document_set_double = _declare("vx_document_set_double", c_void_p, c_char_p, c_double)
vx_document_get_int64s = _declare("vx_document_get_int64s", c_void_p, c_char_p, POINTER(c_int64), POINTER(c_int64))
vx_document_set_int64s = _declare("vx_document_set_int64s", c_void_p, c_char_p, _array(c_int64), c_int64)
vx_document_get_doubles = _declare("vx_document_get_doubles", c_void_p, c_char_p, POINTER(c_double), POINTER(c_int64))
vx_document_set_doubles = _declare("vx_document_set_doubles", c_void_p, c_char_p, _array(c_double), c_int64)
vx_document_insert = _declare("vx_document_insert", c_void_p, c_char_p)
vx_document_remove = _declare("vx_document_remove", c_void_p, c_char_p)
vx_export = _declare("vx_export", c_void_p, c_void_p, c_char_p)
vx_table_open = _declare("vx_table_open", POINTER(c_void_p), c_void_p, c_int32)
vx_table_get_size = _declare("vx_table_get_size", c_void_p, POINTER(c_int64), POINTER(c_int64))
vx_table_get_name = _declare("vx_table_get_name", c_void_p, c_int64, c_char_p, POINTER(c_int64))
vx_table_get_type = _declare("vx_table_get_type", c_void_p, c_int64, POINTER(c_int32))
vx_table_get_int64s = _declare("vx_table_get_int64s", c_void_p, c_int64, POINTER(c_int64), POINTER(c_int64))
vx_table_get_doubles = _declare("vx_table_get_doubles", c_void_p, c_int64, POINTER(c_double), POINTER(c_int64))
vx_table_get_text = _declare("vx_table_get_text", c_void_p, c_int64, c_int64, c_char_p, POINTER(c_int64))
vx_verify = _declare("vx_verify", POINTER(c_void_p), c_char_p, c_int32, POINTER(vx_callbacks))
vx_recover = _declare("vx_recover", POINTER(c_void_p), c_char_p, c_char_p, POINTER(vx_recover_options),
    POINTER(vx_callbacks))
vx_report_get_summary = _declare("vx_report_get_summary", c_void_p, POINTER(vx_report_summary))
vx_report_get_finding = _declare("vx_report_get_finding", c_void_p, c_int64, POINTER(vx_finding))
vx_report_get_text = _declare("vx_report_get_text", c_void_p, c_int64, c_int32, c_char_p, POINTER(c_int64))
# </declarations>
