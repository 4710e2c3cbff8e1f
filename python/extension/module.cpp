#include <extension/module.h>
#include <nanobind/nanobind.h>

namespace Python {

std::string ToFileName(nanobind::handle path) {
  PyObject* bytes = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &bytes) == 0) nanobind::raise_python_error();
  const auto name = nanobind::steal<nanobind::bytes>(bytes);
  return {name.c_str(), name.size()};
}

}  // namespace Python

NB_MODULE(_core, module) {
  module.doc() = "What the package surveydata has of the library. Use the package instead.";
  module.attr("VERSION") = SURVEYDATA_VERSION;
  Python::AddAreas(module);
  Python::AddObjects(module);
  Python::AddRecordChanges(module);
  Python::AddRecords(module);
  Python::AddRecordPictures(module);
}
