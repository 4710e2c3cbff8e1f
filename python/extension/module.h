#ifndef SURVEYDATA_PYTHON_EXTENSION_MODULE_H_
#define SURVEYDATA_PYTHON_EXTENSION_MODULE_H_

#include <string>

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

/// The name of a file from a text, bytes or an object with `__fspath__`. As in Python's own
/// functions, bytes that are not UTF-8 are surrogate escapes in a text. \throw
/// nanobind::python_error  ValueError if it contains U+0000.
std::string ToFileName(nanobind::handle path);

}  // namespace Python

#endif  // SURVEYDATA_PYTHON_EXTENSION_MODULE_H_
