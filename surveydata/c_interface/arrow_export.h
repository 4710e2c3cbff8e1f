#ifndef SURVEYDATA_C_INTERFACE_ARROW_EXPORT_H_
#define SURVEYDATA_C_INTERFACE_ARROW_EXPORT_H_

#include <cstddef>
#include <memory>
#include <span>

#include <surveydata/c_interface/arrow_c_interface.h>
#include <surveydata/gnss/gps_record_columns.h>

/// \file
/// Internal: columns as schemas and arrays of the Arrow C data interface.

namespace SDI::CInterface {

/// The schema of a struct of `columns`: their types, with units and descriptions as metadata, and
/// the source of leap seconds as metadata of the columns in UTC and of the struct.
void MakeSchema(std::span<const GPSColumn* const> columns, ArrowSchema& schema);

/// A struct of the first `rows` rows of `columns`. Nothing is copied: `memory` owns the buffers,
/// and every array shares its ownership, also after the array was moved out of the struct. Without
/// a validity bitmap all values are present. The pointer to the values may be null if there are
/// none.
void MakeArray(std::span<const GPSColumnBuffer> columns, std::size_t rows,
               const std::shared_ptr<const void>& memory, ArrowArray& array);

}  // namespace SDI::CInterface

#endif  // SURVEYDATA_C_INTERFACE_ARROW_EXPORT_H_
