#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <extension/buffer.h>
#include <extension/file_name.h>
#include <extension/module.h>
#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/unique_ptr.h>
#include <nanobind/stl/vector.h>

#include <command_line/command.h>
#include <command_line/exit_code.h>
#include <command_line/text.h>
#include <output/replace_file.h>
#include <platform/file_error.h>
#include <record/decoded_record.h>
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

// Runs `work` without the GIL. Its failures become exceptions of Python: findings ValueError, all
// others OSError.
template <class Work>
auto Unlocked(const Work& work) {
  std::string failure;
  bool isFinding = false;
  {
    const nb::gil_scoped_release unlocked;
    try {
      return work();
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
}

// A file that is locked while measurements to change are chosen in it. Only one thread may use it
// at a time.
class LockedFileC {
 public:
  explicit LockedFileC(const std::string& path)
      : replacement_(std::make_unique<Tool::FileReplacementC>(
            path, Tool::FileReplacementC::Progress::kHidden)) {}

  std::uint64_t GetSize() { return File().GetSize(); }
  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> to) {
    return File().Read(offset, to);
  }
  void Close() { replacement_.reset(); }

  // The numbers of frames that are changed, that hold the values already, and that have no room for
  // a value.
  using Counts = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t>;
  Counts Change(std::span<const std::uint64_t> offsets, std::span<const std::uint64_t> sizes,
                const Tool::FrameChanges& changes, bool isDryRun) {
    std::vector<Tool::FilePatch> patches;
    std::uint64_t alike = 0;
    std::uint64_t withoutRoom = 0;
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
      bytes.resize(static_cast<std::size_t>(sizes[i]));
      bytes.resize(Read(offsets[i], bytes));
      if (!Tool::Decode(offsets[i], bytes).IsDone()) throw Tool::FileErrorC("the file has changed");
      if (!Tool::HasRoom(bytes, changes)) {
        ++withoutRoom;
      } else if (const Tool::PatchedFrame frame = Tool::PatchFrame(bytes, changes);
                 frame.before == frame.after) {
        ++alike;
      } else {
        patches.push_back({.offset = offsets[i], .size = bytes.size(), .mark = MarkOf(bytes)});
      }
    }
    if (!isDryRun && !patches.empty()) {
      File().Replace(patches, [&](const Tool::FilePatch& patch, std::span<std::uint8_t> to) {
        if (MarkOf(to) != patch.mark) return false;
        std::ranges::copy(Tool::PatchFrame(to, changes).after, to.begin());
        return true;
      });
    }
    return {patches.size(), alike, withoutRoom};
  }

 private:
  // Distinguishes the bytes of a frame from others.
  static std::uint64_t MarkOf(std::span<const std::uint8_t> bytes) {
    return std::hash<std::string_view>()(
        {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  Tool::FileReplacementC& File() {
    if (replacement_ == nullptr) throw Tool::FileErrorC("the file is closed");
    return *replacement_;
  }

  std::unique_ptr<Tool::FileReplacementC> replacement_;
};

std::span<const std::uint64_t> Numbers(const BufferC& buffer) {
  if (buffer.GetFormat() != "L" || !buffer.IsContiguous()) {
    throw nb::value_error("expected contiguous arrays of uint64");
  }
  return {reinterpret_cast<const std::uint64_t*>(buffer.GetBytes()), buffer.GetCount()};
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
      [](nb::handle path, std::uint64_t offset, const std::optional<std::string>& name,
         std::optional<std::int32_t> number, std::optional<double> height, bool isSlant,
         bool isDryRun) {
        const std::string file = ToFileName(path);
        const Tool::FrameChanges changes = Changes(name, number, height, isSlant);
        return Unlocked([&] { return SetRecord(file, offset, changes, isDryRun); });
      },
      "path"_a, "offset"_a, "name"_a.none(), "number"_a.none(), "antenna_height"_a.none(),
      "slant"_a, "dry_run"_a);

  nb::class_<LockedFileC>(module, "LockedFileCore")
      .def_static(
          "open",
          [](nb::handle path) {
            const std::string name = ToFileName(path);
            return Unlocked([&] { return std::make_unique<LockedFileC>(name); });
          },
          "path"_a)
      .def_prop_ro("size",
                   [](LockedFileC& self) { return Unlocked([&] { return self.GetSize(); }); })
      .def(
          "read_at",
          [](LockedFileC& self, std::uint64_t offset, nb::handle memory) {
            BufferC buffer(memory, BufferC::Access::kWrite);
            if (!buffer.IsContiguous()) throw nb::value_error("the memory has gaps");
            const std::span<std::uint8_t> bytes(buffer.GetBytes(), buffer.GetByteCount());
            return Unlocked([&] { return self.Read(offset, bytes); });
          },
          "offset"_a, "memory"_a)
      .def("close", &LockedFileC::Close)
      .def(
          "change",
          [](LockedFileC& self, nb::handle offsets, nb::handle sizes,
             const std::optional<std::string>& name, std::optional<std::int32_t> number,
             std::optional<double> height, bool isSlant, bool isDryRun) {
            const Tool::FrameChanges changes = Changes(name, number, height, isSlant);
            const BufferC offsetBuffer(offsets);
            const BufferC sizeBuffer(sizes);
            const auto from = Numbers(offsetBuffer);
            const auto lengths = Numbers(sizeBuffer);
            if (from.size() != lengths.size()) {
              throw nb::value_error("expected as many sizes as offsets");
            }
            return Unlocked([&] { return self.Change(from, lengths, changes, isDryRun); });
          },
          "offsets"_a, "sizes"_a, "name"_a.none(), "number"_a.none(), "antenna_height"_a.none(),
          "slant"_a, "dry_run"_a);
}

}  // namespace Python
