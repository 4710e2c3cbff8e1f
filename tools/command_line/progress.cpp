#include <algorithm>
#include <cstdio>
#include <string>

#include <fmt/format.h>

#include <command_line/progress.h>
#include <platform/platform.h>

namespace Tool {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPatience{500};
constexpr milliseconds kBetweenDraws{100};
constexpr std::uint64_t kStep = std::uint64_t{1} << 20;
constexpr std::uint64_t kWidth = 40;

}  // namespace

ProgressC::ProgressC(std::uint64_t total, bool hasRows)
    : total_(total),
      isWanted_(total > kStep && IsTerminal(StandardStream::kError) &&
                !(hasRows && IsTerminal(StandardStream::kOutput))),
      nextDraw_(steady_clock::now() + kPatience) {}

ProgressC::~ProgressC() { Wipe(); }

void ProgressC::Wipe() {
  if (width_ > 0) std::fputs(fmt::format("\r{:{}}\r", "", width_).c_str(), stderr);
  width_ = 0;
}

void ProgressC::Draw(std::uint64_t done) {
  next_ = done + kStep;
  const auto now = steady_clock::now();
  if (now < nextDraw_) return;
  nextDraw_ = now + kBetweenDraws;
  const std::uint64_t shown = std::min(done, total_);
  const std::string bar =
      fmt::format("[{:<{}}] {:3d}%  {} of {} MiB", std::string(shown * kWidth / total_, '#'),
                  kWidth, shown * 100 / total_, shown / kStep, total_ / kStep);
  std::fputs(("\r" + bar).c_str(), stderr);
  std::fflush(stderr);
  width_ = bar.size();  // never decreases
}

}  // namespace Tool
