#define PY_SSIZE_T_CLEAN
#include "python/src/Call.h"

#include <cstdint>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace vxfileio::python {

/// Owns no object while Python's code runs: that may end the thread, and then the lock isn't held any more.
void Raise(const CFailure& failure) {
    PyObject* const module = PyImport_ImportModule("vxfileio._errors");
    if (module != nullptr) {
        PyObject_CallMethod(module, "fail", "y#y#i", failure.text.data(), std::ssize(failure.text), failure.path.data(),
                            std::ssize(failure.path), failure.code);
        Py_DECREF(module);
    }
    throw py::error_already_set();
}

void CheckSignals() {
    const py::gil_scoped_acquire acquire;
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
}

bool IsSmallFile(const std::string& path) {
    constexpr std::uintmax_t kSmall = std::uintmax_t{16} << 20;
    std::error_code error;  // if it is set, the size is the greatest number
    return std::filesystem::file_size(path, error) <= kSmall;
}

bool IsMainThread() {
    const auto threading = py::module_::import("threading");
    return threading.attr("get_ident")().equal(threading.attr("main_thread")().attr("ident"));
}

}  // namespace vxfileio::python
