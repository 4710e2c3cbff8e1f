#include <algorithm>
#include <cstddef>
#include <vector>

#include <fmt/format.h>

#include <command_line/progress.h>
#include <output/replace_file.h>

namespace Tool {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr const char* kChanged = "the file has been changed by another program";

}  // namespace

void FileReplacementC::Copy(CopiedFileC& copy, const HeldSignalsC& signals) const {
  ProgressC progress(progress_ == Progress::kShown ? original_.GetSize() : 0);
  std::vector<std::uint8_t> block(kBlock);
  copy.SetSize(original_.GetSize());
  std::uint64_t at = 0;
  for (;;) {
    const FileStretch data = original_.NextData(at);
    if (data.begin == data.end) return;  // holes are copied as holes
    for (at = data.begin; at < data.end;) {
      if (signals.IsAnyPending()) original_.Refuse("interrupted");
      const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, data.end - at));
      const std::size_t count = original_.Read(at, std::span(block).first(wanted));
      if (count == 0) original_.Refuse(kChanged);  // it is shorter now
      copy.Write(at, std::span(block).first(count));
      at += count;
      progress.Update(at);
    }
  }
}

void FileReplacementC::Patch(CopiedFileC& copy, std::span<const FilePatch> patches,
                             const ChangeBytes& change, const HeldSignalsC& signals) const {
  std::vector<std::uint8_t> bytes;
  for (const FilePatch& patch : patches) {
    if (signals.IsAnyPending()) original_.Refuse("interrupted");
    bytes.resize(patch.size);
    if (copy.Read(patch.offset, bytes) != patch.size || !change(patch, bytes)) {
      original_.Refuse(kChanged);
    }
    copy.Write(patch.offset, bytes);
  }
}

// Where both have a hole, both read as zeros.
void FileReplacementC::Verify(const CopiedFileC& copy, std::span<const FilePatch> patches,
                              const ChangeBytes& change) const {
  std::vector<std::uint8_t> expected(kBlock);
  std::vector<std::uint8_t> found(kBlock);
  std::vector<std::uint8_t> bytes;
  std::uint64_t at = 0;
  for (;;) {
    at = std::min(original_.NextData(at).begin, copy.NextData(at).begin);
    const std::size_t count = original_.Read(at, expected);
    const std::size_t foundCount = copy.Read(at, found);
    const std::uint64_t end = at + count;
    while (!patches.empty() && patches.front().offset + patches.front().size <= at) {
      patches = patches.subspan(1);
    }
    for (const FilePatch& patch : patches) {  // one may begin in this block and end in the next
      if (patch.offset >= end) break;
      bytes.resize(patch.size);
      if (original_.Read(patch.offset, bytes) != patch.size || !change(patch, bytes)) {
        original_.Refuse(kChanged);
      }
      const std::uint64_t first = std::max(at, patch.offset);
      const std::uint64_t last = std::min<std::uint64_t>(end, patch.offset + patch.size);
      const auto part = std::span(bytes).subspan(static_cast<std::size_t>(first - patch.offset),
                                                 static_cast<std::size_t>(last - first));
      std::ranges::copy(part, expected.begin() + static_cast<std::ptrdiff_t>(first - at));
    }
    if (foundCount != count ||
        !std::equal(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(count),
                    found.begin())) {
      original_.Refuse(
          "the copy does not read back as written, or the file has been changed by another "
          "program");
    }
    if (count < kBlock) return;  // both end here
    at = end;
  }
}

void FileReplacementC::Replace(std::span<const FilePatch> patches, const ChangeBytes& change) {
  original_.RequireWritable();
  const HeldSignalsC signals;  // delivered when the copy has been removed
  CopiedFileC copy(original_);
  Copy(copy, signals);
  Patch(copy, patches, change, signals);
  copy.KeepAccess();
  copy.Flush();
  Verify(copy, patches, change);
  if (signals.IsAnyPending()) original_.Refuse("interrupted");
  if (original_.IsChanged()) original_.Refuse(kChanged);
  copy.TakePlace();
}

void FileReplacementC::Replace(std::uint64_t offset, std::span<const std::uint8_t> before,
                               std::span<const std::uint8_t> after) {
  const FilePatch patch{.offset = offset, .size = before.size()};
  Replace(std::span(&patch, 1), [&](const FilePatch& /*patch*/, std::span<std::uint8_t> bytes) {
    if (!std::ranges::equal(bytes, before)) return false;
    std::ranges::copy(after, bytes.begin());
    return true;
  });
}

}  // namespace Tool
