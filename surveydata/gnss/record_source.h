#ifndef SURVEYDATA_GNSS_RECORD_SOURCE_H_
#define SURVEYDATA_GNSS_RECORD_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>
#include <utility>

/// \file
/// Internal: where the bytes of records come from.

namespace SDI::RecordWalk {

using Bytes = std::span<const std::uint8_t>;

/// Bytes that are read at an offset, or one after the other where the source cannot seek.
class SourceI {
 public:
  SourceI() = default;
  SourceI(const SourceI&) = delete;
  SourceI& operator=(const SourceI&) = delete;
  virtual ~SourceI() = default;

  /// Fills `to` with the bytes from `offset` on. Fewer bytes than asked for: the source ends there,
  /// or reading failed. A source that cannot seek is asked for the bytes that come next.
  virtual std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> to) = 0;

  virtual bool CanSeek() const = 0;
  /// 0 when it is not known.
  virtual std::uint64_t GetSize() const = 0;
  bool HasFailed() const { return hasFailed_; }

 protected:
  void Fail() { hasFailed_ = true; }

 private:
  bool hasFailed_ = false;
};

/// A file, or a stream that cannot seek. It belongs to somebody else, who closes it. Without one
/// there are no bytes.
class FileSourceC final : public SourceI {
 public:
  /// Measures `file`, to be read from its start; one that cannot seek is read on.
  void Open(std::FILE* file);
  /// Reads `stream` on from where it is, and never seeks in it.
  void ReadOn(std::FILE* stream) { file_ = stream; }

  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> to) override;
  bool CanSeek() const override { return canSeek_; }
  std::uint64_t GetSize() const override { return size_; }

 private:
  static constexpr std::uint64_t kUnknown = UINT64_MAX;

  std::FILE* file_ = nullptr;
  bool canSeek_ = false;
  std::uint64_t size_ = 0;
  std::uint64_t position_ = 0;  // of the file; only of one that can seek
};

/// Bytes that a function reads.
class CallbackSourceC final : public SourceI {
 public:
  /// As of `GPSRecordReaderC`.
  using ReadAt = std::function<std::ptrdiff_t(std::uint64_t, std::span<std::uint8_t>)>;

  CallbackSourceC(ReadAt readAt, std::uint64_t size) : readAt_(std::move(readAt)), size_(size) {}

  std::size_t Read(std::uint64_t offset, std::span<std::uint8_t> to) override;
  bool CanSeek() const override { return true; }
  std::uint64_t GetSize() const override { return size_; }

 private:
  ReadAt readAt_;
  std::uint64_t size_;
};

}  // namespace SDI::RecordWalk

#endif  // SURVEYDATA_GNSS_RECORD_SOURCE_H_
