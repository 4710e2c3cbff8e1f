#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <surveydata/c_interface/boundary.h>
#include <surveydata/c_interface/reader.h>
#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_columns.h>

using SDI::GPSColumn;
using SDI::GPSColumnBuffer;
using SDI::GPSColumnsOutcome;
using SDI::GPSColumnType;
using SDI::CInterface::Guarded;
using SDI::CInterface::OutArray;

namespace {

static_assert(SURVEYDATA_COLUMN_BOOL == static_cast<int>(GPSColumnType::kBool));
static_assert(SURVEYDATA_COLUMN_UINT8 == static_cast<int>(GPSColumnType::kUInt8));
static_assert(SURVEYDATA_COLUMN_UINT16 == static_cast<int>(GPSColumnType::kUInt16));
static_assert(SURVEYDATA_COLUMN_UINT32 == static_cast<int>(GPSColumnType::kUInt32));
static_assert(SURVEYDATA_COLUMN_UINT64 == static_cast<int>(GPSColumnType::kUInt64));
static_assert(SURVEYDATA_COLUMN_INT32 == static_cast<int>(GPSColumnType::kInt32));
static_assert(SURVEYDATA_COLUMN_FLOAT32 == static_cast<int>(GPSColumnType::kFloat32));
static_assert(SURVEYDATA_COLUMN_FLOAT64 == static_cast<int>(GPSColumnType::kFloat64));
static_assert(SURVEYDATA_COLUMN_TEXT == static_cast<int>(GPSColumnType::kText));
static_assert(SURVEYDATA_COLUMN_UINT16_LIST == static_cast<int>(GPSColumnType::kUInt16List));

surveydata_column Described(const GPSColumn& column) {
  return {column.name,
          column.unit,
          column.description,
          static_cast<std::uint32_t>(column.type),
          column.canBeAbsent ? 1 : 0,
          column.largest};
}

bool IsGood(const surveydata_column_buffer& buffer) {
  return buffer.column < SDI::GetGPSColumns().size() && buffer.reserved == 0;
}

surveydata_status ReadColumns(surveydata_reader& reader,
                              std::span<surveydata_column_buffer> buffers, std::size_t capacity,
                              std::size_t& rows) {
  std::vector<GPSColumnBuffer> taken;
  taken.reserve(buffers.size());
  for (const surveydata_column_buffer& buffer : buffers) {
    if (!IsGood(buffer)) return SURVEYDATA_INVALID_ARGUMENT;
    taken.push_back({&SDI::GetGPSColumns()[buffer.column], buffer.values, buffer.values_size,
                     buffer.offsets, buffer.validity, 0});
  }
  const auto setAbsent = [&] {
    for (std::size_t i = 0; i < buffers.size(); ++i) buffers[i].absent = taken[i].absent;
  };
  GPSColumnsOutcome outcome = GPSColumnsOutcome::kEnd;
  try {
    outcome = reader.GetColumns().Read(taken, capacity, rows);
  } catch (...) {
    setAbsent();
    throw;
  }
  switch (outcome) {
    case GPSColumnsOutcome::kDone:
      setAbsent();
      return SURVEYDATA_OK;
    case GPSColumnsOutcome::kEnd:
      setAbsent();
      return reader.GetStatus();
    case GPSColumnsOutcome::kNoRoom:
      return SURVEYDATA_BUFFER_TOO_SMALL;
    case GPSColumnsOutcome::kNotABuffer:
      break;
  }
  return SURVEYDATA_INVALID_ARGUMENT;
}

}  // namespace

surveydata_status surveydata_columns(surveydata_column* columns, std::size_t column_size,
                                     std::size_t capacity, std::size_t* count) {
  const OutArray<surveydata_column> out{columns, capacity, count};
  if (!out.IsGood()) return SURVEYDATA_INVALID_ARGUMENT;
  if (column_size != sizeof(surveydata_column)) return SURVEYDATA_WRONG_SIZE;
  const std::span<const GPSColumn> all = SDI::GetGPSColumns();
  return out.Fill(all.size(), [&](std::size_t i) { return Described(all[i]); });
}

surveydata_status surveydata_reader_read_columns(surveydata_reader* reader,
                                                 surveydata_column_buffer* buffers,
                                                 std::size_t buffer_size, std::size_t buffer_count,
                                                 std::size_t capacity, std::size_t* rows,
                                                 std::uint64_t* left_out) {
  if (rows != nullptr) *rows = 0;  // whatever else is refused
  if (reader == nullptr || rows == nullptr || (buffers == nullptr && buffer_count != 0)) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  if (buffer_size != sizeof(surveydata_column_buffer)) return SURVEYDATA_WRONG_SIZE;
  const surveydata_status status = Guarded([&] {
    return ReadColumns(*reader, {buffers, buffer_count}, capacity, *rows);
  });
  if (left_out != nullptr) *left_out = reader->GetLeftOut();
  return status;
}
