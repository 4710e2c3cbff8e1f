#include <extension/module.h>
#include <nanobind/nanobind.h>

NB_MODULE(_core, module) {
  module.doc() = "The extension module of the package surveydata. Use the package instead.";
  module.attr("VERSION") = SURVEYDATA_VERSION;
  Python::AddAreas(module);
  Python::AddObjects(module);
  Python::AddRecordChanges(module);
  Python::AddRecords(module);
  Python::AddRecordPictures(module);
}
