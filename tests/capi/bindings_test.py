"""Tests what the client doesn't use of the declarations for ctypes.

usage: bindings_test.py SETTINGS OUTPUT
"""

import ctypes
import pathlib
import sys

import vxfileio_c as vx


def code_of(function, *arguments):
    try:
        function(*arguments)
    except vx.VxError as error:
        return error.code
    return vx.VX_OK


def check_a_handle_is_closed_if_opening_fails(output):
    made = []

    def open_missing(place):
        made.append(place._obj)  # what byref refers to
        vx.vx_raw_open(place, str(output / "missing.vxd").encode())  # no folder has this name

    assert code_of(vx.opened, open_missing) == vx.VX_ERROR_FILE
    assert made[0].value and code_of(vx.vx_close, made[0]) == vx.VX_ERROR_HANDLE


def check_a_text_with_a_nul_is_whole(settings, output):
    output.write_bytes(settings.read_bytes().replace(b"<Label>A1<", b"<Label>A&#0;B<", 1))
    document = vx.opened(vx.vx_document_open, vx.VX_SETTINGS, str(output).encode())
    assert vx.text_of(vx.vx_document_get_text, document, b"PropertyRecordPlate/Wells/0/Label") == b"A\0B"
    vx.vx_close(document)


def check_numbers_of_another_type_are_converted(settings):
    document = vx.opened(vx.vx_document_open, vx.VX_SETTINGS, str(settings).encode())
    kept, count = (ctypes.c_int64 * 3)(), ctypes.c_int64(3)
    for doses in ((ctypes.c_int32 * 3)(7, 8, 9), [7, 8, 9], (ctypes.c_int64 * 3)(7, 8, 9)):
        vx.vx_document_set_int64s(document, b"PropertyRecordPlate/Series", doses, 3)
        vx.vx_document_get_int64s(document, b"PropertyRecordPlate/Series", kept, ctypes.byref(count))
        assert list(kept) == [7, 8, 9]
    vx.vx_close(document)


settings_file, output_file = map(pathlib.Path, sys.argv[1:])
check_a_text_with_a_nul_is_whole(settings_file, output_file)
check_a_handle_is_closed_if_opening_fails(output_file)
check_numbers_of_another_type_are_converted(settings_file)
