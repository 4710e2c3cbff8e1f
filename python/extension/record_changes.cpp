#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include <extension/module.h>
#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <command_line/command.h>
#include <command_line/exit_code.h>
#include <command_line/text.h>
#include <output/replace_file.h>
#include <platform/file_error.h>
#include <record/find_frame.h>
#include <record/frame_values.h>
#include <record/patch_frame.h>

namespace Python {
namespace {

namespace nb = nanobind;
using namespace nb::literals;

using Change = std::tuple<std::uint64_t, std::uint8_t, std::uint8_t, std::string>;

std::string FieldAt(const Tool::PatchedFrame& frame, std::size_t at) {
  for (const Tool::FrameField& field : frame.fields) {
    if (field.at <= at && at < field.at + field.size) return std::string(field.FieldName());
  }
  return {};
}

std::vector<Change> SetRecord(const std::string& path, std::uint64_t offset,
                              const Tool::FrameChanges& changes, bool isDryRun) {
  using ReplacementC = Tool::FileReplacementC;
  ReplacementC replacement(path, ReplacementC::Progress::kHidden);  // locks while the frame is read
  const auto readAt = [&](std::uint64_t from, std::span<std::uint8_t> bytes) {
    return static_cast<std::ptrdiff_t>(replacement.Read(from, bytes));
  };
  const Tool::PatchedFrame frame = Tool::PatchFrame(
      Tool::FindFrame(readAt, replacement.GetSize(), {offset, std::to_string(offset)}), changes);
  std::vector<Change> made;
  for (std::size_t i = 0; i < frame.before.size(); ++i) {
    if (frame.before[i] == frame.after[i]) continue;
    made.emplace_back(offset + i, frame.before[i], frame.after[i], FieldAt(frame, i));
  }
  if (!isDryRun && !made.empty()) replacement.Replace(offset, frame.before, frame.after);
  return made;
}

[[noreturn]] void Refuse(const char* name, const Tool::ValueErrorC& error) {
  throw nb::value_error((std::string(name) + " " + error.what()).c_str());
}

Tool::FrameChanges Changes(const std::optional<std::string>& name,
                           std::optional<std::int32_t> number, std::optional<double> height,
                           bool isSlant) {
  Tool::FrameChanges changes;
  changes.number = number;
  changes.isSlant = isSlant;
  try {
    if (name) changes.name = Tool::ToFrameName(*name);
  } catch (const Tool::ValueErrorC& error) {
    Refuse("name", error);
  }
  try {
    if (height) changes.antennaHeight = Tool::ToAntennaHeight(*height);
  } catch (const Tool::ValueErrorC& error) {
    Refuse("antenna_height", error);
  }
  return changes;
}

}  // namespace

void AddRecordChanges(nb::module_& module) {
  module.def(
      "set_record",
      [](const std::string& path, std::uint64_t offset, const std::optional<std::string>& name,
         std::optional<std::int32_t> number, std::optional<double> height, bool isSlant,
         bool isDryRun) {
        const Tool::FrameChanges changes = Changes(name, number, height, isSlant);
        std::string failure;
        bool isFinding = false;
        {
          const nb::gil_scoped_release unlocked;
          try {
            return SetRecord(path, offset, changes, isDryRun);
          } catch (const Tool::FileErrorC& error) {
            failure = error.what();
          } catch (const Tool::ToolErrorC& error) {
            failure = error.what();
            isFinding = error.GetCode() == Tool::ExitCode::kFinding;
          }
        }
        failure = Tool::ToPrintable(std::string_view(failure));
        if (isFinding) throw nb::value_error(failure.c_str());
        PyErr_SetString(PyExc_OSError, failure.c_str());
        throw nb::python_error();
      },
      "path"_a, "offset"_a, "name"_a.none(), "number"_a.none(), "antenna_height"_a.none(),
      "slant"_a, "dry_run"_a);
}

}  // namespace Python
