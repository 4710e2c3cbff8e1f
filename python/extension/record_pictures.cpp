#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <extension/module.h>
#include <extension/record_batch.h>
#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <record/decoded_record.h>
#include <record/record_picture.h>
#include <record/satellite_series.h>

namespace Python {
namespace {

namespace nb = nanobind;
using namespace nb::literals;

using Batch = std::shared_ptr<const RecordBatch>;

const BatchColumn* Find(const RecordBatch& batch, std::string_view name) {
  for (const BatchColumn& column : batch.columns) {
    if (column.column->name == name) return &column;
  }
  return nullptr;
}

bool HasValue(const BatchColumn& column, std::size_t row) {
  return column.absent == 0 || (column.validity.Get()[row / 8] >> row % 8 & 1) != 0;
}

template <class Number>
std::optional<Number> At(const BatchColumn* column, std::size_t row) {
  if (column == nullptr || !HasValue(*column, row)) return {};
  Number number;
  std::memcpy(&number, column->values.Get() + row * sizeof(Number), sizeof(Number));
  return number;
}

std::uint16_t Tenths(const BatchColumn* column, std::size_t row) {
  const std::optional<double> dop = At<double>(column, row);
  return dop ? static_cast<std::uint16_t>(std::lround(*dop * 10)) : SDI::DOP_NOT_AVAILABLE;
}

// Adds the values that the picture shows. Dilutions are stored in tenths, so nothing is lost.
void AddTo(Tool::SatelliteSeriesC& series, const RecordBatch& batch) {
  const BatchColumn* const week = Find(batch, "gps_week");
  const BatchColumn* const time = Find(batch, "time_of_week");
  const BatchColumn* const hdop = Find(batch, "hdop");
  const BatchColumn* const vdop = Find(batch, "vdop");
  const BatchColumn* const first = Find(batch, "total_first");
  const BatchColumn* const second = Find(batch, "total_second");
  for (std::size_t row = 0; row < batch.rows; ++row) {
    Tool::DecodedRecord record;
    record.measurement.SetTimeA(
        {At<std::uint16_t>(week, row).value_or(0), At<std::int32_t>(time, row).value_or(0)});
    const SDI::GPSDOPsImplC dops(Tenths(hdop, row), Tenths(vdop, row), SDI::DOP_NOT_AVAILABLE);
    record.measurement.SetDOPs(dops);
    const auto inView = At<std::uint8_t>(first, row);
    const auto used = At<std::uint8_t>(second, row);
    if (inView && used) record.measurement.SetTotalPair(*inView, *used);
    series.Add(record);
  }
}

}  // namespace

void AddRecordPictures(nb::module_& module) {
  module.def(
      "draw_records",
      [](const std::vector<Batch>& batches,
         const std::string& title) -> std::optional<std::string> {
        const nb::gil_scoped_release unlocked;
        Tool::SatelliteSeriesC series;
        for (const Batch& batch : batches) AddTo(series, *batch);
        if (series.GetRecordCount() == 0) return {};
        return Tool::DrawRecords(series, title);
      },
      "batches"_a, "title"_a);
}

}  // namespace Python
