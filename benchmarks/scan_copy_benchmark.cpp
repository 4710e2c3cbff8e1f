// Copying a scan with an area of 100 points, compared with only the allocations that it makes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_polygon_area.h>

namespace {

// The sizes of the allocations that are recorded.
bool isRecording = false;
std::size_t sizes[1024];
std::size_t sizeCount = 0;

void* Allocate(std::size_t size) {
  if (isRecording && sizeCount < std::size(sizes)) sizes[sizeCount++] = size;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

SDI::ScanC* MakeScan() {
  auto* const scan = new SDI::ScanC;
  auto* const area = static_cast<SDI::ScanAreaC*>(scan->CreateArea(SDI::kPolygonArea));
  for (int i = 0; i < 100; ++i) area->AddPoint({0.01 * i, 1.0 + 0.001 * i, -1.0});
  return scan;
}

void BM_CopyScan(benchmark::State& state) {
  const SDI::ScanC* const scan = MakeScan();
  for (auto _ : state) {
    const SDI::ScanC copy(*scan);
    benchmark::DoNotOptimize(&copy);
  }
  sizeCount = 0;
  isRecording = true;
  { const SDI::ScanC copy(*scan); }
  isRecording = false;
  state.counters["allocations"] = static_cast<double>(sizeCount);
  delete scan;
}
BENCHMARK(BM_CopyScan);

void BM_ItsAllocations(benchmark::State& state) {
  const SDI::ScanC* const scan = MakeScan();
  sizeCount = 0;
  isRecording = true;
  { const SDI::ScanC copy(*scan); }
  isRecording = false;
  delete scan;
  std::vector<void*> blocks(sizeCount);
  for (auto _ : state) {
    for (std::size_t i = 0; i < blocks.size(); ++i) blocks[i] = ::operator new(sizes[i]);
    benchmark::ClobberMemory();
    for (void* const block : blocks) ::operator delete(block);
  }
  state.counters["allocations"] = static_cast<double>(sizeCount);
}
BENCHMARK(BM_ItsAllocations);

}  // namespace
