#include <bit>

#include <extension/data_class.h>

namespace Python {

namespace nb = nanobind;

namespace {

constexpr const char* kUtf16 =
    std::endian::native == std::endian::little ? "utf-16-le" : "utf-16-be";

[[noreturn]] void Refuse(const char* name, const std::string& why) {
  throw nb::value_error((name + (": " + why)).c_str());
}

nb::object Owned(PyObject* object) {
  nb::object owned = nb::steal(object);
  if (!owned.is_valid()) nb::raise_python_error();
  return owned;
}

std::string BytesOf(const nb::object& bytes) {
  return {PyBytes_AS_STRING(bytes.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.ptr()))};
}

}  // namespace

std::u16string ToUnits(const char* name, const nb::str& text, std::size_t most) {
  const std::string bytes =
      BytesOf(Owned(PyUnicode_AsEncodedString(text.ptr(), kUtf16, "surrogatepass")));
  std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
  bytes.copy(reinterpret_cast<char*>(units.data()), bytes.size());
  if (units.find(u'\0') != std::u16string::npos) Refuse(name, "U+0000 would end the text");
  if (units.size() > most) {
    Refuse(name, std::to_string(units.size()) + " UTF-16 units; " + std::to_string(most) + " fit");
  }
  return units;
}

nb::str FromUnits(const char16_t* units) {
  const auto size = static_cast<Py_ssize_t>(std::u16string_view(units).size() * sizeof(char16_t));
  return nb::borrow<nb::str>(
      Owned(PyUnicode_Decode(reinterpret_cast<const char*>(units), size, kUtf16, "surrogatepass")));
}

std::string ToUtf8(const char* name, const nb::str& text) {
  std::string utf8 = BytesOf(Owned(PyUnicode_AsUTF8String(text.ptr())));
  if (utf8.find('\0') != std::string::npos) Refuse(name, "U+0000 would end the text");
  return utf8;
}

nb::str FromUtf8(const char* utf8) {
  const auto size = static_cast<Py_ssize_t>(std::string_view(utf8).size());
  return nb::borrow<nb::str>(Owned(PyUnicode_DecodeUTF8(utf8, size, "replace")));
}

std::int64_t ToInteger(const char* name, const Integer& given, std::int64_t lowest,
                       std::int64_t highest) {
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(given.value.ptr(), &overflow);
  if (overflow != 0 || number < lowest || highest < number) {
    Refuse(name, std::string(nb::str(given.value).c_str()) + " is not from " +
                     std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return number;
}

float ToSingle(const char* name, double given) {
  if (std::isfinite(given) && std::fabs(given) > std::numeric_limits<float>::max()) {
    Refuse(name, "the number is beyond single precision");
  }
  return static_cast<float>(given);
}

}  // namespace Python
