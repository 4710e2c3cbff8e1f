#ifndef BENCHMARKS_PIMPL_PEER_H_
#define BENCHMARKS_PIMPL_PEER_H_

#include <cstddef>
#include <memory>

/// \file
/// Hand-written classes with a pointer to their implementation, in a separate shared library: the
/// peers of the public classes.

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

/// An object of two pointers whose implementation is a block of `size` bytes. Both are destroyed
/// through virtual destructors. Nothing is written to a new block; copying copies all of it.
template <std::size_t size>
class __attribute__((visibility("default"))) BlockC {
 public:
  BlockC();
  BlockC(const BlockC& other);
  BlockC& operator=(const BlockC& other) = delete;
  virtual ~BlockC();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

extern template class __attribute__((visibility("default"))) BlockC<40>;
extern template class __attribute__((visibility("default"))) BlockC<224>;
extern template class __attribute__((visibility("default"))) BlockC<792>;

}  // namespace Peer

#endif  // BENCHMARKS_PIMPL_PEER_H_
