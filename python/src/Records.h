#pragma once

#include <pybind11/pybind11.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "python/src/Convert.h"
#include "vxfileio/xmlarchive/XmlFields.h"

/// @file
/// Classes of the library as Python classes, whose attributes are the fields of their forms.

namespace vxfileio::python {

/// Returns what a type is in Python, for signatures.
template <class T>
std::string TypeName() {
    using C = CContainer<T>;
    if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, char>) {
        return "str";
    } else if constexpr (std::is_same_v<T, bool>) {
        return "bool";
    } else if constexpr (std::is_enum_v<T>) {
        return WordsClass<T>().attr("__name__").template cast<std::string>();
    } else if constexpr (std::is_integral_v<T>) {
        return "int";
    } else if constexpr (std::is_floating_point_v<T>) {
        return "float";
    } else if constexpr (C::kIsList) {
        return "tuple[" + TypeName<typename T::value_type>() + ", ...]";
    } else if constexpr (C::kIsMap) {
        return "Mapping[" + TypeName<typename T::key_type>() + ", " + TypeName<typename T::mapped_type>() + "]";
    } else if constexpr (C::kIsPointer) {
        return "Optional[" + TypeName<typename T::element_type>() + "]";
    } else {
        return py::type::of<T>().attr("__name__").template cast<std::string>();
    }
}

/// How an attribute is read and set. (Of one type for all attributes, since pybind11 compiles slowly.)
struct CAttribute {
    std::function<py::object(const py::object& self)> get;
    std::function<void(const py::object& self, const py::object& value)> set;
    std::string type;
};

/// Adds an attribute to a class, and its name to `_fields`.
void AddAttribute(const py::object& made, std::string_view name, CAttribute attribute);

/// The Python class of a value class. `_fields` lists its attributes, `_records` of the module all such classes.
template <class Object>
class CRecordClass {
 public:
    using CMade = py::class_<Object>;

    CRecordClass(py::module_& module, const char* name) : m_class(module, name) {
        m_class.def(py::init([](const py::kwargs& values) {
            auto object = std::make_unique<Object>();
            const py::object self = py::cast(object.get(), py::return_value_policy::reference);
            for (const auto& [key, value] : values)
                self.attr(key) = value;
            return object;
        }));
        m_class.attr("_fields") = py::tuple();
        module.attr("_records").cast<py::list>().append(m_class);
    }

    /// Adds an attribute for a member.
    template <class Member, class Owner>
    CRecordClass& Add(std::string_view name, Member Owner::*member) {
        return AddBy<Member>(name, [member](Object& object) -> Member& { return object.*member; });
    }

    /// Adds an attribute that `get(object)` returns a reference to.
    template <class Member, class Get>
    CRecordClass& AddBy(std::string_view name, Get get) {
        AddAttribute(
            m_class, name,
            {[get](const py::object& self) { return ToPython(get(self.cast<Object&>()), self); },
             [get](const py::object& self, const py::object& value) { Assign(self, get(self.cast<Object&>()), value); },
             TypeName<Member>()});
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
                using CValue = std::remove_cvref_t<decltype(field.Value(std::declval<const Object&>()))>;
                AddBy<CValue>(field.tag,
                              [field](Object& object) -> CValue& { return const_cast<CValue&>(field.Value(object)); });
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
};

}  // namespace vxfileio::python
