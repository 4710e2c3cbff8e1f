#ifndef SURVEYDATA_PYTHON_EXTENSION_MODULE_H_
#define SURVEYDATA_PYTHON_EXTENSION_MODULE_H_

#include <nanobind/nanobind.h>

/// \file
/// The parts of the extension module, each in its own file.

namespace Python {

void AddAreas(nanobind::module_& module);
void AddObjects(nanobind::module_& module);
void AddRecordChanges(nanobind::module_& module);
void AddRecords(nanobind::module_& module);
/// Must be called after `AddRecords`.
void AddRecordPictures(nanobind::module_& module);

}  // namespace Python

#endif  // SURVEYDATA_PYTHON_EXTENSION_MODULE_H_
