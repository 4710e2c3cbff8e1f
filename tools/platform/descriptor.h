#ifndef SURVEYDATA_TOOLS_PLATFORM_DESCRIPTOR_H_
#define SURVEYDATA_TOOLS_PLATFORM_DESCRIPTOR_H_

#include <utility>

#include <unistd.h>

namespace Tool {

/// A file descriptor of a POSIX system, closed by the destructor. Negative if nothing is open.
class DescriptorC {
 public:
  explicit DescriptorC(int descriptor = -1) : descriptor_(descriptor) {}
  DescriptorC(const DescriptorC&) = delete;
  DescriptorC& operator=(const DescriptorC&) = delete;
  DescriptorC(DescriptorC&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  DescriptorC& operator=(DescriptorC&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~DescriptorC() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  int Get() const { return descriptor_; }
  bool IsOpen() const { return descriptor_ >= 0; }
  /// Leaves closing it to the caller.
  int Release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_PLATFORM_DESCRIPTOR_H_
