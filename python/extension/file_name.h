#ifndef SURVEYDATA_PYTHON_EXTENSION_FILE_NAME_H_
#define SURVEYDATA_PYTHON_EXTENSION_FILE_NAME_H_

#include <string>

#include <nanobind/nanobind.h>

namespace Python {

/// The name of a file from a text, bytes or an object with `__fspath__`. As in Python's own
/// functions, bytes that are not UTF-8 are surrogate escapes in a text. \throw
/// nanobind::python_error  ValueError if it contains U+0000.
std::string ToFileName(nanobind::handle path);

}  // namespace Python

#endif  // SURVEYDATA_PYTHON_EXTENSION_FILE_NAME_H_
