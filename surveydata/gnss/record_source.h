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

/// Bytes that are read at an offset, or sequentially if the source cannot seek.
class SourceI {
 public:
  SourceI() = default;
  SourceI(const SourceI&) = delete;
  SourceI& operator=(const SourceI&) = delete;
  virtual ~SourceI() = default;

  /// Reads the bytes starting at `offset` into `to` and sets `count` to their number, also if it
  /// throws: these bytes need not be read again. Reads fewer bytes than requested if the source
  /// ends there, reading failed, or it throws. If the source cannot seek, `offset` must be that of
  /// the next byte.
  virtual void Read(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& count) = 0;

  virtual bool CanSeek() const = 0;
  /// 0 if unknown.
  virtual std::uint64_t GetSize() const = 0;
  bool HasFailed() const { return hasFailed_; }

 protected:
  void Fail() { hasFailed_ = true; }

 private:
  bool hasFailed_ = false;
};

/// A file, or a stream that cannot seek. The caller owns it and closes it. Without a file there are
/// no bytes.
class FileSourceC final : public SourceI {
 public:
  /// Determines the size of `file` and reads it from its start; a file that cannot seek is read
  /// from its position.
  void Open(std::FILE* file);
  /// Reads `stream` from its position, without seeking.
  void ReadOn(std::FILE* stream) { file_ = stream; }

  void Read(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& count) override;
  bool CanSeek() const override { return canSeek_; }
  std::uint64_t GetSize() const override { return size_; }

 private:
  static constexpr std::uint64_t kUnknown = UINT64_MAX;

  std::FILE* file_ = nullptr;
  bool canSeek_ = false;
  std::uint64_t size_ = 0;
  std::uint64_t position_ = 0;  // of the file, if it can seek
};

/// Bytes that a function provides.
class CallbackSourceC final : public SourceI {
 public:
  /// As that of `GPSRecordReaderC`.
  using ReadAt = std::function<std::ptrdiff_t(std::uint64_t, std::span<std::uint8_t>)>;

  CallbackSourceC(ReadAt readAt, std::uint64_t size) : readAt_(std::move(readAt)), size_(size) {}

  void Read(std::uint64_t offset, std::span<std::uint8_t> to, std::size_t& count) override;
  bool CanSeek() const override { return true; }
  std::uint64_t GetSize() const override { return size_; }

 private:
  ReadAt readAt_;
  std::uint64_t size_;
};

}  // namespace SDI::RecordWalk

#endif  // SURVEYDATA_GNSS_RECORD_SOURCE_H_
