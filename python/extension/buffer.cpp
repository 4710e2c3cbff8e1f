#include <cstring>

#include <extension/buffer.h>

namespace Python {

namespace nb = nanobind;

BufferC::BufferC(nb::handle object, Access access) {
  const int flags = PyBUF_STRIDES | PyBUF_FORMAT | (access == Access::kWrite ? PyBUF_WRITABLE : 0);
  if (PyObject_GetBuffer(object.ptr(), &view_, flags) != 0) nb::raise_python_error();
}

BufferC::~BufferC() { PyBuffer_Release(&view_); }

std::string_view BufferC::GetFormat() const {
  const std::string_view format = view_.format != nullptr ? view_.format : "B";
  // Prefixes for the native byte order; formats of unaligned elements have one.
  return format.size() > 1 && std::string_view("@=^").find(format.front()) != std::string_view::npos
             ? format.substr(1)
             : format;
}

std::size_t BufferC::GetCount() const {
  return view_.itemsize == 0 ? 0 : static_cast<std::size_t>(view_.len / view_.itemsize);
}

std::span<const Py_ssize_t> BufferC::GetShape() const {
  return {view_.shape, static_cast<std::size_t>(view_.ndim)};
}

std::span<const Py_ssize_t> BufferC::GetStrides() const {
  return {view_.strides, static_cast<std::size_t>(view_.ndim)};
}

bool BufferC::IsContiguous() const { return PyBuffer_IsContiguous(&view_, 'C') != 0; }

DoublesC::DoublesC(const BufferC& buffer)
    : buffer_(buffer), at_(buffer.GetBytes()), isDouble_(buffer.GetFormat() == "d") {
  if (!isDouble_ && buffer.GetFormat() != "f") {
    throw nb::type_error("expected an array of float64 or float32");
  }
  if (buffer.GetShape().size() > index_.size()) throw nb::value_error("too many dimensions");
  isSpan_ = isDouble_ && buffer.IsContiguous() &&
            reinterpret_cast<std::uintptr_t>(at_) % alignof(double) == 0;
}

std::span<const double> DoublesC::AsSpan() const {
  return {reinterpret_cast<const double*>(buffer_.GetBytes()), buffer_.GetCount()};
}

std::span<double> DoublesC::Next(std::size_t count) {
  if (isDouble_) {
    Copy<double>(count);
  } else {
    Copy<float>(count);
  }
  return {values_.data(), count};
}

template <class Number>
void DoublesC::Copy(std::size_t count) {
  const std::span<const Py_ssize_t> shape = buffer_.GetShape();
  const std::span<const Py_ssize_t> strides = buffer_.GetStrides();
  const auto load = [](const std::uint8_t* from) {
    Number number;
    std::memcpy(&number, from, sizeof(number));  // may be unaligned
    return static_cast<double>(number);
  };
  for (std::size_t done = 0; done < count;) {
    if (shape.empty()) {
      values_[done++] = load(at_);
      continue;
    }
    // Read along the last dimension, then advance in the dimensions before it.
    const std::size_t last = shape.size() - 1;
    const auto left = static_cast<std::size_t>(shape[last] - index_[last]);
    const std::size_t run = left < count - done ? left : count - done;
    const Py_ssize_t stride = strides[last];
    for (std::size_t i = 0; i < run; ++i, at_ += stride) values_[done + i] = load(at_);
    done += run;
    index_[last] += static_cast<Py_ssize_t>(run);
    for (std::size_t k = last; k != 0 && index_[k] == shape[k]; --k) {
      at_ += strides[k - 1] - shape[k] * strides[k];
      index_[k] = 0;
      ++index_[k - 1];
    }
  }
}

}  // namespace Python
