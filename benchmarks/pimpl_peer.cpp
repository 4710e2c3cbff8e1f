#include "benchmarks/pimpl_peer.h"

#include <array>

namespace Peer {

struct PointC::Impl {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

PointC::PointC(double x, double y, double z) : impl_(new Impl{x, y, z}) {}
PointC::PointC(const PointC& other) : impl_(new Impl(*other.impl_)) {}
PointC& PointC::operator=(const PointC& other) {
  *impl_ = *other.impl_;
  return *this;
}
PointC::~PointC() = default;

double PointC::GetX() const { return impl_->x; }
void PointC::SetX(double x) { impl_->x = x; }

template <std::size_t size>
struct BlockC<size>::Impl {
  Impl() {}  // leaves the bytes uninitialised
  Impl(const Impl& other) = default;
  virtual ~Impl() = default;

  std::array<std::byte, size - sizeof(void*)> bytes;
};

template <std::size_t size>
BlockC<size>::BlockC() : impl_(new Impl) {}
template <std::size_t size>
BlockC<size>::BlockC(const BlockC& other) : impl_(new Impl(*other.impl_)) {}
template <std::size_t size>
BlockC<size>::~BlockC() = default;

template class BlockC<40>;
template class BlockC<224>;
template class BlockC<792>;

}  // namespace Peer
