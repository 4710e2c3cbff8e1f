#ifndef SURVEYDATA_TOOLS_RECORD_ORDERED_JOBS_H_
#define SURVEYDATA_TOOLS_RECORD_ORDERED_JOBS_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace Tool {

/// Runs jobs in threads and returns their results in the order of the jobs. At most as many results
/// as threads plus two are held, so a slow consumer stops the threads.
template <class Result>
class OrderedJobsC {
 public:
  using Work = std::function<Result(std::size_t piece)>;

  /// `work` is called for 0, 1, ... below `count`, from several threads at once.
  OrderedJobsC(std::size_t count, unsigned threads, Work work)
      : count_(count), most_(std::size_t{threads} + 2), work_(std::move(work)) {
    for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this] { Run(); });
  }
  OrderedJobsC(const OrderedJobsC&) = delete;
  OrderedJobsC& operator=(const OrderedJobsC&) = delete;
  ~OrderedJobsC() {
    {
      const std::lock_guard lock(mutex_);
      next_ = count_;
    }
    isRoom_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  /// The result of the next job, or its exception. Calls `whileWaiting` from time to time.
  template <class WhileWaiting>
  Result Take(const WhileWaiting& whileWaiting) {
    std::unique_lock lock(mutex_);
    while (!done_.contains(taken_)) {
      constexpr std::chrono::milliseconds kPause{100};
      isDone_.wait_for(lock, kPause);
      lock.unlock();
      whileWaiting();
      lock.lock();
    }
    auto node = done_.extract(taken_++);
    lock.unlock();
    isRoom_.notify_all();
    if (node.mapped().error) std::rethrow_exception(node.mapped().error);
    return std::move(node.mapped().result);
  }

 private:
  struct Done {
    Result result;
    std::exception_ptr error;
  };

  void Run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      isRoom_.wait(lock, [this] { return next_ >= count_ || next_ < taken_ + most_; });
      if (next_ >= count_) return;
      const std::size_t piece = next_++;
      lock.unlock();
      Done done;
      try {
        done.result = work_(piece);
      } catch (...) {
        done.error = std::current_exception();
      }
      lock.lock();
      done_.emplace(piece, std::move(done));
      isDone_.notify_one();
    }
  }

  std::size_t count_;
  std::size_t most_;
  Work work_;
  std::mutex mutex_;
  std::condition_variable isRoom_;
  std::condition_variable isDone_;
  std::size_t next_ = 0;
  std::size_t taken_ = 0;
  std::map<std::size_t, Done> done_;
  std::vector<std::thread> threads_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_ORDERED_JOBS_H_
