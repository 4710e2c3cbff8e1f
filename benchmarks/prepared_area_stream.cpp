// prepared_area_stream [DIRECTIONS [CORNERS [THREADS]]]: how long a prepared area takes for very
// many distinct random directions, by default 10^9 on a lobed ring of 100 corners over two threads.
// Each thread creates a chunk of directions, which is not timed, and then tests it, which is timed.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_polygon_area.h>

#include "rings.h"

namespace {

struct Share {
  double seconds = 0.0;
  std::uint64_t inside = 0;
};

void Ask(const SDI::PreparedAreaC& area, std::uint64_t directions, unsigned seed, Share& share) {
  constexpr std::size_t kChunk = std::size_t{1} << 14;  // stays in the caches of a core
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> offset(-0.6, 0.6);
  std::vector<double> hz(kChunk);
  std::vector<double> v(kChunk);
  const auto inside = std::make_unique<bool[]>(kChunk);
  while (directions > 0) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(directions, kChunk));
    for (std::size_t i = 0; i < count; ++i) {
      hz[i] = 3.0 + offset(random);
      v[i] = 1.3 + offset(random);
    }
    const auto start = std::chrono::steady_clock::now();
    area.Contains({hz.data(), count}, {v.data(), count}, {inside.get(), count});
    share.seconds +=
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    share.inside +=
        static_cast<std::uint64_t>(std::count(inside.get(), inside.get() + count, true));
    directions -= count;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t directions = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1'000'000'000;
  const std::size_t corners = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 100;
  const std::size_t threads = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 2;
  SDI::ScanPolygonAreaC area;
  for (const Direction& d : LobedRing(corners)) area.AddPoint({d.hz, d.v, -1.0});
  const SDI::PreparedAreaC prepared(area, SDI::PreparedAreaC::Questions::kMany);
  std::vector<Share> shares(std::max<std::size_t>(threads, 1));
  std::vector<std::thread> running;
  for (std::size_t i = 0; i < shares.size(); ++i) {
    const std::uint64_t part =
        directions / shares.size() + (i < directions % shares.size() ? 1 : 0);
    running.emplace_back(
        [&, i, part] { Ask(prepared, part, static_cast<unsigned>(i + 1), shares[i]); });
  }
  for (std::thread& thread : running) thread.join();
  double longest = 0.0;
  std::uint64_t inside = 0;
  for (const Share& share : shares) {
    longest = std::max(longest, share.seconds);
    inside += share.inside;
  }
  std::printf("%llu directions, %llu inside, in %.2f s: %.2f ns a direction and thread\n",
              static_cast<unsigned long long>(directions), static_cast<unsigned long long>(inside),
              longest,
              1e9 * longest * static_cast<double>(shares.size()) / static_cast<double>(directions));
  return 0;
}
