#include "python/src/Call.h"

#include <exception>

namespace vxfileio::python {

void RegisterFailures() {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown) std::rethrow_exception(thrown);
        } catch (const CFailure& failure) {
            try {
                py::module_::import("vxfileio._errors")
                    .attr("fail")(py::bytes(failure.text), py::bytes(failure.path), failure.code);
            } catch (py::error_already_set& raised) {
                raised.restore();
            }
        }
    });
}

void CheckSignals() {
    const py::gil_scoped_acquire acquire;
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
}

bool IsMainThread() {
    const auto threading = py::module_::import("threading");
    return threading.attr("get_ident")().equal(threading.attr("main_thread")().attr("ident"));
}

}  // namespace vxfileio::python
