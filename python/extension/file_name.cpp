#include <extension/file_name.h>

namespace Python {

std::string ToFileName(nanobind::handle path) {
  PyObject* bytes = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &bytes) == 0) nanobind::raise_python_error();
  const auto name = nanobind::steal<nanobind::bytes>(bytes);
  return {name.c_str(), name.size()};
}

}  // namespace Python
