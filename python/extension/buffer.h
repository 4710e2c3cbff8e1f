#ifndef SURVEYDATA_PYTHON_EXTENSION_BUFFER_H_
#define SURVEYDATA_PYTHON_EXTENSION_BUFFER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <nanobind/nanobind.h>

namespace Python {

/// The memory of an array, which its owner does not move or release while this object exists. It is
/// created and destroyed with the GIL, and used without it.
class BufferC {
 public:
  enum class Access { kRead, kWrite };

  /// \throw nanobind::python_error  if the object has no such buffer.
  explicit BufferC(nanobind::handle object, Access access = Access::kRead);
  BufferC(const BufferC&) = delete;
  BufferC& operator=(const BufferC&) = delete;
  ~BufferC();

  /// The type of an element as in Python's module struct, without a prefix for the native byte
  /// order: "d" is a double.
  std::string_view GetFormat() const;
  /// The number of elements.
  std::size_t GetCount() const;
  std::size_t GetByteCount() const { return static_cast<std::size_t>(view_.len); }
  std::span<const Py_ssize_t> GetShape() const;
  std::span<const Py_ssize_t> GetStrides() const;
  const std::uint8_t* GetBytes() const { return static_cast<const std::uint8_t*>(view_.buf); }
  std::uint8_t* GetBytes() { return static_cast<std::uint8_t*>(view_.buf); }
  /// Whether the elements are contiguous in the order of the indices.
  bool IsContiguous() const;

 private:
  Py_buffer view_;
};

/// The elements of an array of doubles or floats as doubles, in the order of their indices. Strides
/// may be negative, 0, or not a multiple of the size of an element.
class DoublesC {
 public:
  static constexpr std::size_t kMost = 512;

  /// \throw nanobind::type_error  if the elements have another type.
  explicit DoublesC(const BufferC& buffer);

  /// Whether the elements are contiguous, aligned doubles.
  bool IsSpan() const { return isSpan_; }
  /// All elements. Requires `IsSpan()`.
  std::span<const double> AsSpan() const;

  /// The next `count` elements, at most `kMost`; they are valid until the next call.
  std::span<double> Next(std::size_t count);

 private:
  template <class Number>
  void Copy(std::size_t count);

  const BufferC& buffer_;
  const std::uint8_t* at_;
  bool isDouble_;
  bool isSpan_;
  std::array<Py_ssize_t, 64> index_{};  // of the next element; NumPy allows at most 64 dimensions
  std::array<double, kMost> values_;
};

}  // namespace Python

#endif  // SURVEYDATA_PYTHON_EXTENSION_BUFFER_H_
