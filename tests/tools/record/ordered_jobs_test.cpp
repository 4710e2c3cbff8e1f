#include <atomic>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <record/ordered_jobs.h>

namespace {

const auto kIdle = [] {};

TEST(OrderedJobs, GiveTheResultsInTheOrderOfThePieces) {
  constexpr std::size_t kCount = 500;
  for (const unsigned threads : {1U, 2U, 7U}) {
    Tool::OrderedJobsC<std::string> jobs(kCount, threads, [](std::size_t piece) {
      if (piece % 3 == 0) std::this_thread::yield();
      return std::to_string(piece);
    });
    for (std::size_t i = 0; i < kCount; ++i) ASSERT_EQ(jobs.Take(kIdle), std::to_string(i));
  }
}

TEST(OrderedJobs, WaitWhenTheResultsAreNotTaken) {
  constexpr std::size_t kCount = 100;
  constexpr unsigned kThreads = 3;
  std::atomic<std::size_t> begun = 0;
  Tool::OrderedJobsC<std::size_t> jobs(kCount, kThreads, [&](std::size_t piece) {
    ++begun;
    return piece;
  });
  for (std::size_t i = 0; i < kCount; ++i) {
    EXPECT_EQ(jobs.Take(kIdle), i);
    // One more may have been taken, each thread may have one, and there is room for two.
    EXPECT_LE(begun, i + 1 + kThreads + 2);
  }
  EXPECT_EQ(begun, kCount);
}

TEST(OrderedJobs, ThrowTheExceptionOfAPieceInOrderAndContinue) {
  Tool::OrderedJobsC<int> jobs(5, 2, [](std::size_t piece) {
    if (piece == 2) throw std::runtime_error("piece 2");
    return static_cast<int>(piece);
  });
  EXPECT_EQ(jobs.Take(kIdle), 0);
  EXPECT_EQ(jobs.Take(kIdle), 1);
  EXPECT_THROW(jobs.Take(kIdle), std::runtime_error);
  EXPECT_EQ(jobs.Take(kIdle), 3);
  EXPECT_EQ(jobs.Take(kIdle), 4);
}

TEST(OrderedJobs, AreDoneWhenTheyAreTakenWithoutAnyThread) {
  std::size_t begun = 0;
  Tool::OrderedJobsC<std::size_t> jobs(4, 0, [&](std::size_t piece) {
    ++begun;
    if (piece == 1) throw std::runtime_error("piece 1");
    return piece;
  });
  EXPECT_EQ(jobs.GetThreadCount(), 0U);
  int pauses = 0;
  const auto count = [&pauses] { ++pauses; };
  EXPECT_EQ(jobs.Take(count), 0U);
  EXPECT_EQ(begun, 1U);
  EXPECT_THROW(jobs.Take(count), std::runtime_error);
  EXPECT_EQ(jobs.Take(count), 2U);
  EXPECT_EQ(jobs.Take(count), 3U);
  EXPECT_EQ(pauses, 4);
}

// The results need neither a default nor a copy.
TEST(OrderedJobs, MoveTheirResults) {
  struct Moved {
    explicit Moved(std::size_t piece) : value(std::make_unique<std::size_t>(piece)) {}
    std::unique_ptr<std::size_t> value;
  };
  for (const unsigned threads : {0U, 2U}) {
    Tool::OrderedJobsC<Moved> jobs(3, threads, [](std::size_t piece) { return Moved(piece); });
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(*jobs.Take(kIdle).value, i);
  }
}

TEST(OrderedJobs, EndAfterTheBegunJobsWhenDestroyed) {
  constexpr std::size_t kCount = 1000;
  std::atomic<std::size_t> begun = 0;
  {
    Tool::OrderedJobsC<int> jobs(kCount, 4, [&](std::size_t) {
      ++begun;
      return 0;
    });
    jobs.Take(kIdle);
  }
  EXPECT_GE(begun, 1U);
  EXPECT_LE(begun, 1U + 4 + 2);
}

}  // namespace
