#ifndef BENCHMARKS_PIMPL_PEER_H_
#define BENCHMARKS_PIMPL_PEER_H_

#include <memory>

/// \file
/// A class with a pointer to its implementation as one writes it by hand, in a shared library of
/// its own: the peer of the public classes.

namespace Peer {

class __attribute__((visibility("default"))) PointC {
 public:
  PointC(double x, double y, double z);
  PointC(const PointC& other);
  PointC& operator=(const PointC& other);
  virtual ~PointC();

  double GetX() const;
  void SetX(double x);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Peer

#endif  // BENCHMARKS_PIMPL_PEER_H_
