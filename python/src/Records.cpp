#include "python/src/Records.h"

namespace vxfileio::python {

namespace {

/// Returns `set` with the attribute's name in front of what it throws.
auto WithName(const std::string& name, std::function<void(const py::object&, const py::object&)> set) {
    return [name, set = std::move(set)](const py::object& self, const py::object& value) {
        try {
            set(self, value);
        } catch (const py::type_error& error) {
            throw py::type_error(name + ": " + error.what());
        } catch (const py::value_error& error) {
            throw py::value_error(name + ": " + error.what());
        }
    };
}

}  // namespace

void AddAttribute(const py::object& made, std::string_view name, CAttribute attribute) {
    const py::object property = py::module_::import("builtins").attr("property");
    const py::str text(name.data(), name.size());
    made.attr(text) =
        property(py::cpp_function(std::move(attribute.get)),
                 py::cpp_function(WithName(std::string(name), std::move(attribute.set))), py::none(), attribute.type);
    made.attr("_fields") = py::object(made.attr("_fields")) + py::make_tuple(text);
}

}  // namespace vxfileio::python
