#include "python/src/Records.h"

namespace vxfileio::python {

void AddAttribute(const py::object& made, std::string_view name, CAttribute attribute) {
    const py::object property = py::module_::import("builtins").attr("property");
    const py::str text(name.data(), name.size());
    made.attr(text) = property(py::cpp_function(std::move(attribute.get)), py::cpp_function(std::move(attribute.set)),
                               py::none(), attribute.type);
    made.attr("_fields") = py::object(made.attr("_fields")) + py::make_tuple(text);
}

}  // namespace vxfileio::python
