#ifndef SURVEYDATA_PYTHON_EXTENSION_DATA_CLASS_H_
#define SURVEYDATA_PYTHON_EXTENSION_DATA_CLASS_H_

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>

/// \file
/// Makes Python classes from data classes of the library. The list of its properties gives a class
/// a constructor with keywords, `repr`, copies, pickles and the equality of the library. Objects
/// are not hashable, because they can change.
///
/// Python sees only the public classes. A part belongs to its whole and keeps it alive; objects
/// that C++ would adopt are copied.

namespace Python {

/// An integer of any size, or an object with `__index__`.
struct Integer {
  nanobind::object value;
};

/// Converts UTF-16 units to a text and back; unpaired surrogates are kept.
/// \throw nanobind::value_error  for U+0000 and for more than `most` units.
std::u16string ToUnits(const char* name, const nanobind::str& text, std::size_t most);
nanobind::str FromUnits(const char16_t* units);
/// The same with UTF-8, of any length.
std::string ToUtf8(const char* name, const nanobind::str& text);
nanobind::str FromUtf8(const char* utf8);

/// \throw nanobind::value_error  if the number is outside the bounds.
std::int64_t ToInteger(const char* name, const Integer& given, std::int64_t lowest,
                       std::int64_t highest);
/// \throw nanobind::value_error  if the number is finite and out of the range of single precision.
float ToSingle(const char* name, double given);

/// The types in which Python passes and receives a value, with the conversions. Also for parts.
template <class Value>
struct Exchange {
  using Given = const Value&;
  using Optional = const Value*;
  static Value Take(const char*, const Value& given, std::size_t) { return given; }
  static Value Give(const Value& value) { return value; }
};

template <>
struct Exchange<bool> {
  using Given = bool;
  using Optional = std::optional<bool>;
  static bool Take(const char*, bool given, std::size_t) { return given; }
  static bool Give(bool value) { return value; }
};

template <std::integral Value>
struct Exchange<Value> {
  using Given = Integer;
  using Optional = std::optional<Integer>;
  static Value Take(const char* name, const Integer& given, std::size_t) {
    using Limits = std::numeric_limits<Value>;
    return static_cast<Value>(ToInteger(name, given, Limits::min(), Limits::max()));
  }
  static Value Give(Value value) { return value; }
};

template <std::floating_point Value>
struct Exchange<Value> {
  using Given = double;
  using Optional = std::optional<double>;
  static Value Take(const char* name, double given, std::size_t) {
    if constexpr (std::same_as<Value, float>) {
      return ToSingle(name, given);
    } else {
      return given;
    }
  }
  static double Give(Value value) { return value; }
};

template <>
struct Exchange<const char16_t*> {
  using Given = nanobind::str;
  using Optional = std::optional<nanobind::str>;
  static std::u16string Take(const char* name, const nanobind::str& given, std::size_t most) {
    return ToUnits(name, given, most);
  }
  static nanobind::str Give(const char16_t* value) { return FromUnits(value); }
};

template <>
struct Exchange<const char*> {
  using Given = nanobind::str;
  using Optional = std::optional<nanobind::str>;
  static std::string Take(const char* name, const nanobind::str& given, std::size_t) {
    return ToUtf8(name, given);
  }
  static nanobind::str Give(const char* value) { return FromUtf8(value); }
};

/// A value of a `Record` with its accessors.
template <class Record, class Get, class Set>
struct Property {
  using Value = std::remove_cvref_t<std::invoke_result_t<const Get&, const Record&>>;
  using Given = typename Exchange<Value>::Given;
  using Optional = typename Exchange<Value>::Optional;
  /// Whether the getter returns a part of the record itself.
  static constexpr bool kIsPart =
      std::is_class_v<Value> &&
      std::is_lvalue_reference_v<std::invoke_result_t<const Get&, Record&>>;

  const char* name;
  Get get;
  Set set;
  const char* description;
  std::size_t most = 0;  ///< UTF-16 units of a text.
  bool canChange = true;

  auto Read(const Record& record) const { return Exchange<Value>::Give(std::invoke(get, record)); }
  void Write(Record& record, Given given) const {
    const auto& value = Exchange<Value>::Take(name, given, most);
    if constexpr (requires { value.c_str(); }) {
      std::invoke(set, record, value.c_str());
    } else {
      std::invoke(set, record, value);
    }
  }
  void WriteGiven(Record& record, const Optional& given) const {
    if (given) Write(record, *given);
  }
  void Restore(Record& record, nanobind::handle state) const {
    Write(record, nanobind::cast<Given>(state));
  }
};

template <class Record, class Get, class Set>
Property<Record, Get, Set> MakeProperty(const char* name, Get get, Set set,
                                        const char* description = "") {
  return {name, get, set, description};
}

/// A text of at most `most` UTF-16 units.
template <class Record, class Get, class Set>
Property<Record, Get, Set> MakeText(const char* name, Get get, Set set, std::size_t most,
                                    const char* description = "") {
  return {name, get, set, description, most};
}

/// A value that only the constructor sets.
template <class Record, class Get, class Set>
Property<Record, Get, Set> MakeConstant(const char* name, Get get, Set set,
                                        const char* description = "") {
  return {name, get, set, description, 0, false};
}

/// \name Signatures of the functions for pickles
/// @{
inline constexpr const char* kGetState = "def __getstate__(self) -> tuple[object, ...]";
inline constexpr const char* kSetState =
    "def __setstate__(self, state: tuple[object, ...]) -> None";
/// @}

/// Adds what mutable classes have: copies, the library's equality if there is one, and no hash.
template <class Record>
void BindCopies(nanobind::class_<Record>& cls) {
  namespace nb = nanobind;
  cls.def("__copy__", [](const Record& self) { return new Record(self); });
  cls.def(
      "__deepcopy__",
      [](const Record& self, const nb::typed<nb::dict, int, nb::object>&) {
        return new Record(self);
      },
      nb::arg("memo"));
  constexpr const char* kEqual = "def __eq__(self, other: object, /) -> bool";
  if constexpr (requires(const Record& record) { record.IsEqual(record); }) {
    cls.def(
        "__eq__", [](const Record& self, const Record& other) { return self.IsEqual(other); },
        nb::is_operator(), nb::sig(kEqual));
  } else if constexpr (requires(const Record& record) { record == record; }) {
    cls.def(
        "__eq__", [](const Record& self, const Record& other) { return self == other; },
        nb::is_operator(), nb::sig(kEqual));
  }
  cls.attr("__hash__") = nb::none();
}

template <class Record, class... P>
std::string Describe(const char* name, const Record& record, const P&... properties) {
  namespace nb = nanobind;
  std::string text;
  const auto add = [&](const char* property, const nb::object& value) {
    text += (text.empty() ? "" : ", ") + std::string(property) + "=" + nb::repr(value).c_str();
  };
  (add(properties.name, nb::cast(properties.Read(record))), ...);
  return std::string(name) + "(" + text + ")";
}

template <class Record, class P>
void BindProperty(nanobind::class_<Record>& cls, const P& property) {
  namespace nb = nanobind;
  const auto write = [property](Record& self, typename P::Given value) {
    property.Write(self, value);
  };
  if constexpr (P::kIsPart) {
    cls.def_prop_rw(
        property.name,
        [property](Record & self) -> auto& { return std::invoke(property.get, self); }, write,
        nb::rv_policy::reference_internal, nb::for_setter(nb::arg("value")), property.description);
  } else {
    const auto read = [property](const Record& self) { return property.Read(self); };
    if (property.canChange) {
      cls.def_prop_rw(property.name, read, write, nb::for_setter(nb::arg("value")),
                      property.description);
    } else {
      cls.def_prop_ro(property.name, read, property.description);
    }
  }
}

/// Runs `restore`, which reads a pickle with `size` values. Values of other types are refused.
template <class Restore>
void RestoreFrom(const nanobind::tuple& state, std::size_t size, const Restore& restore) {
  if (state.size() != size) throw nanobind::value_error("a pickle of another version");
  try {
    restore();
  } catch (const nanobind::cast_error&) {
    throw nanobind::value_error("a pickle of another version");
  }
}

/// Makes the class from its properties, which must cover all data of an object.
template <class Record, class... P>
nanobind::class_<Record> BindDataClass(nanobind::module_& module, const char* name,
                                       const char* description, P... properties) {
  namespace nb = nanobind;
  nb::class_<Record> cls(module, name, description);
  cls.def(
      "__init__",
      [properties...](Record* self, typename P::Optional... given) {
        Record record;
        (properties.WriteGiven(record, given), ...);
        new (self) Record(record);
      },
      nb::kw_only(), (nb::arg(properties.name).none() = nb::none())...);
  (BindProperty(cls, properties), ...);
  cls.def("__repr__", [name, properties...](const Record& self) {
    return Describe(name, self, properties...);
  });
  cls.def(
      "__getstate__",
      [properties...](const Record& self) { return nb::make_tuple(properties.Read(self)...); },
      nb::sig(kGetState));
  cls.def(
      "__setstate__",
      [properties...](Record* self, const nb::tuple& state) {
        RestoreFrom(state, sizeof...(P), [&] {
          Record record;
          std::size_t i = 0;
          (properties.Restore(record, state[i++]), ...);
          new (self) Record(record);
        });
      },
      nb::arg("state"), nb::sig(kSetState));
  BindCopies(cls);
  return cls;
}

}  // namespace Python

template <>
struct nanobind::detail::type_caster<Python::Integer> {
  NB_TYPE_CASTER(Python::Integer, const_name("int"))

  bool from_python(handle from, std::uint8_t, cleanup_list*) noexcept {
    value.value = steal(PyNumber_Index(from.ptr()));
    if (!value.value.is_valid()) PyErr_Clear();
    return value.value.is_valid();
  }
  static handle from_cpp(const Python::Integer& from, rv_policy, cleanup_list*) noexcept {
    return from.value.inc_ref();
  }
};

#endif  // SURVEYDATA_PYTHON_EXTENSION_DATA_CLASS_H_
