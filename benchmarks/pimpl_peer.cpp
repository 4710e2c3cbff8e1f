#include "benchmarks/pimpl_peer.h"

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

}  // namespace Peer
