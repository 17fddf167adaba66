#include "python/src/Convert.h"

namespace vxfileio::python {

namespace {

constexpr const char* kEscapes = "surrogateescape";

py::object Checked(PyObject* made) {
    if (made == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

}  // namespace

py::object TextToPython(std::string_view text) {
    return Checked(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), kEscapes));
}

std::string TextFromPython(py::handle value) {
    if (PyUnicode_Check(value.ptr()) == 0) ThrowWrongType("a str", value);
    return Checked(PyUnicode_AsEncodedString(value.ptr(), "utf-8", kEscapes)).cast<py::bytes>();
}

py::object CharToPython(char value) { return Checked(PyUnicode_DecodeLatin1(&value, value == '\0' ? 0 : 1, nullptr)); }

char CharFromPython(py::handle value) {
    if (PyUnicode_Check(value.ptr()) == 0) ThrowWrongType("a str of one character", value);
    const Py_ssize_t length = PyUnicode_GetLength(value.ptr());
    if (length == 0) return '\0';
    const Py_UCS4 code = PyUnicode_ReadChar(value.ptr(), 0);
    if (length > 1 || code > 0xFF)
        throw py::value_error("expected one character up to U+00FF, not " + py::repr(value).cast<std::string>());
    return static_cast<char>(code);
}

bool BoolFromPython(py::handle value) {
    if (value.ptr() == Py_True) return true;
    if (value.ptr() == Py_False) return false;
    if (!py::isinstance(value, py::module_::import("numpy").attr("bool_"))) ThrowWrongType("a bool", value);
    return PyObject_IsTrue(value.ptr()) == 1;
}

void ThrowWrongType(const char* expected, py::handle value) {
    throw py::type_error(std::string("expected ") + expected + ", not " +
                         py::type::of(value).attr("__name__").cast<std::string>());
}

void ThrowOutOfRange(const std::string& least, const std::string& greatest, py::handle value) {
    throw py::value_error("expected a number from " + least + " to " + greatest + ", not " +
                          py::str(value).cast<std::string>());
}

}  // namespace vxfileio::python
