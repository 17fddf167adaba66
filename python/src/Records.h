#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <string>
#include <string_view>

#include "python/src/Convert.h"
#include "vxfileio/xmlarchive/XmlFields.h"

/// @file
/// Classes of the library as Python classes, whose attributes are the fields of their forms.

namespace vxfileio::python {

/// The Python class of a value class. `_fields` lists the attributes, `_records` of the module all such classes.
template <class Object>
class CRecordClass {
 public:
    using CMade = py::class_<Object>;

    CRecordClass(py::module_& module, const char* name) : m_class(module, name), m_fields() {
        m_class.def(py::init([](const py::kwargs& values) {
            auto object = std::make_unique<Object>();
            const py::object self = py::cast(object.get(), py::return_value_policy::reference);
            for (const auto& [key, value] : values)
                self.attr(key) = value;
            return object;
        }));
        m_class.attr("__module__") = "vxfileio";
        module.attr("_records").cast<py::list>().append(m_class);
    }
    ~CRecordClass() = default;
    CRecordClass(const CRecordClass&) = delete;
    CRecordClass& operator=(const CRecordClass&) = delete;

    /// Adds an attribute for a member.
    template <class Member, class Owner>
    CRecordClass& Add(std::string_view name, Member Owner::*member) {
        return AddBy(name, [member](Object& object) -> Member& { return object.*member; });
    }

    /// Adds an attribute that `get(object)` returns a reference to.
    template <class Get>
    CRecordClass& AddBy(std::string_view name, Get get) {
        const std::string text(name);
        m_class.def_property(
            text.c_str(), [get](const py::object& self) { return ToPython(get(self.cast<Object&>()), self); },
            [get](const py::object& self, const py::object& value) { Assign(self, get(self.cast<Object&>()), value); });
        m_fields.append(text);
        m_class.attr("_fields") = py::tuple(m_fields);
        return *this;
    }

    /// Adds an attribute for each field of the class's form, apart from those of its parts.
    template <class Form = xmlarchive::CXmlForm<Object>>
    CRecordClass& AddForm() {
        xmlarchive::ForEachField(Form::kFields, [&](const auto& field) {
            if constexpr (requires { field.part; }) {
                return;
            } else if constexpr (requires { field.member; }) {
                Add(field.tag, field.member);
            } else if constexpr (requires(const Object& object) { field.Value(object); }) {
                // The object isn't constant, so neither is its member.
                AddBy(
                    field.tag, [field](Object & object) -> auto& {
                        using CValue = std::remove_cvref_t<decltype(field.Value(object))>;
                        return const_cast<CValue&>(field.Value(object));
                    });
            }
        });
        return *this;
    }

    /// Adds an attribute for each field that the form of `Whole` takes from a part of this class.
    template <class Whole>
    CRecordClass& AddPartOf() {
        xmlarchive::ForEachField(xmlarchive::CXmlForm<Whole>::kFields, [&](const auto& field) {
            if constexpr (requires(Whole & whole, Object * &part) { part = &(whole.*field.part); })
                Add(field.field.tag, field.field.member);
        });
        return *this;
    }

    CMade& Class() { return m_class; }

 private:
    CMade m_class;
    py::list m_fields;
};

}  // namespace vxfileio::python
