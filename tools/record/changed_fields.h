#ifndef SURVEYDATA_TOOLS_RECORD_CHANGED_FIELDS_H_
#define SURVEYDATA_TOOLS_RECORD_CHANGED_FIELDS_H_

#include <cstdint>
#include <optional>
#include <string>

#include <fmt/format.h>

#include <output/json_writer.h>
#include <record/decoded_record.h>

/// \file
/// The columns in which two measurements differ, except the offset and the times in UTC.

namespace Tool {

/// The distance of two floating-point numbers in units in the last place of their type: 0
/// for equal numbers, including zeros of different signs; nothing if one is NaN.
/// @{
std::optional<std::uint64_t> UlpDistance(float a, float b);
std::optional<std::uint64_t> UlpDistance(double a, double b);
/// @}

/// The member "fields", an array with name, a, b and, for floating-point numbers, ulps. Absent
/// values, NaN and infinities are null.
void WriteChangedFields(JsonWriterC& out, const DecodedRecord& a, const DecodedRecord& b);

/// A line for each of them, or a line that says that there is none.
void PrintChangedFields(fmt::memory_buffer& out, const DecodedRecord& a, const DecodedRecord& b);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_CHANGED_FIELDS_H_
