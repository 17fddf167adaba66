#include "python/src/Call.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <system_error>

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
