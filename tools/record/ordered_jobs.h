#ifndef SURVEYDATA_TOOLS_RECORD_ORDERED_JOBS_H_
#define SURVEYDATA_TOOLS_RECORD_ORDERED_JOBS_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace Tool {

/// Runs jobs in threads and returns their results in the order of the jobs. Only a limited
/// number of results is held, so a slow consumer stops the threads. If the system does not start
/// as many threads as requested, those that it starts do the work, or without any, `Take` does it.
template <class Result>
class OrderedJobsC {
 public:
  using Work = std::function<Result(std::size_t piece)>;

  /// `work` is called for 0, 1, ... below `count`, from several threads at once. At most as many
  /// results as threads and `ahead` are held.
  OrderedJobsC(std::size_t count, unsigned threads, Work work, std::size_t ahead = 2)
      : count_(count), work_(std::move(work)), slots_(threads + ahead) {
    threads_.reserve(threads);
    try {
      while (threads_.size() < threads) threads_.emplace_back([this] { Run(); });
    } catch (const std::system_error&) {  // the system has no more threads
    } catch (const std::bad_alloc&) {
    }
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

  /// The number of threads that do the work.
  std::size_t GetThreadCount() const { return threads_.size(); }

  /// The result of the next job, or its exception. Calls `whileWaiting` from time to time.
  template <class WhileWaiting>
  Result Take(const WhileWaiting& whileWaiting) {
    if (threads_.empty()) {
      whileWaiting();
      return work_(taken_++);
    }
    std::unique_lock lock(mutex_);
    Slot& slot = SlotOf(taken_);
    while (!slot.isDone) {
      constexpr std::chrono::milliseconds kPause{100};
      isDone_.wait_for(lock, kPause);
      lock.unlock();
      whileWaiting();
      lock.lock();
    }
    const Slot done = std::exchange(slot, {});
    ++taken_;
    lock.unlock();
    isRoom_.notify_all();
    if (done.error) std::rethrow_exception(done.error);
    return std::move(*done.result);
  }

 private:
  // A job from its beginning until its result is taken.
  struct Slot {
    std::unique_ptr<Result> result;
    std::exception_ptr error;
    bool isDone = false;
  };

  // Jobs that have begun and whose results are not taken yet have different slots.
  Slot& SlotOf(std::size_t piece) { return slots_[piece % slots_.size()]; }

  // Throws nothing: without memory, the job has an exception instead of a result.
  void Run() {
    std::unique_lock lock(mutex_);
    for (;;) {
      isRoom_.wait(lock, [this] { return next_ >= count_ || next_ < taken_ + slots_.size(); });
      if (next_ >= count_) return;
      const std::size_t piece = next_++;
      Slot& slot = SlotOf(piece);
      lock.unlock();
      try {
        slot.result = std::make_unique<Result>(work_(piece));
      } catch (...) {
        slot.error = std::current_exception();
      }
      lock.lock();
      slot.isDone = true;
      isDone_.notify_one();
    }
  }

  std::size_t count_;
  Work work_;
  std::vector<Slot> slots_;
  std::mutex mutex_;
  std::condition_variable isRoom_;
  std::condition_variable isDone_;
  std::size_t next_ = 0;
  std::size_t taken_ = 0;
  std::vector<std::thread> threads_;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_ORDERED_JOBS_H_
