#include <cerrno>
#include <new>
#include <utility>

#include <extension/record_batch.h>

#include <surveydata/c_interface/arrow_export.h>

namespace Python {
namespace {

using SDI::GPSColumn;
using SDI::GPSColumnBuffer;
using Batch = std::shared_ptr<const RecordBatch>;

// `GPSColumnBuffer` has pointers to writable memory; the buffers of a batch are only read.
template <class Value>
Value* BufferOf(const BlockC& block) {
  return static_cast<Value*>(static_cast<void*>(const_cast<std::uint8_t*>(block.Get())));
}

struct StreamState {
  std::vector<const GPSColumn*> columns;
  std::vector<Batch> batches;
  std::size_t next = 0;
};

StreamState& StateOf(ArrowArrayStream* stream) {
  return *static_cast<StreamState*>(stream->private_data);
}

int GetSchema(ArrowArrayStream* stream, ArrowSchema* out) {
  try {
    SDI::CInterface::MakeSchema(StateOf(stream).columns, *out);
    return 0;
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

int GetNext(ArrowArrayStream* stream, ArrowArray* out) {
  StreamState& state = StateOf(stream);
  if (state.next == state.batches.size()) {
    out->release = nullptr;
    return 0;
  }
  try {
    const Batch& batch = state.batches[state.next];
    std::vector<GPSColumnBuffer> buffers;
    for (const BatchColumn& column : batch->columns) {
      GPSColumnBuffer buffer;
      buffer.column = column.column;
      buffer.values = BufferOf<void>(column.values);
      buffer.offsets = BufferOf<std::int64_t>(column.offsets);
      buffer.validity = BufferOf<std::uint8_t>(column.validity);
      buffer.absent = column.absent;
      buffers.push_back(buffer);
    }
    SDI::CInterface::MakeArray(buffers, batch->rows, batch, *out);
    ++state.next;
    return 0;
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

}  // namespace

void ExportStream(std::vector<const GPSColumn*> columns, std::vector<Batch> batches,
                  ArrowArrayStream* stream) {
  auto state = std::make_unique<StreamState>();
  state->columns = std::move(columns);
  state->batches = std::move(batches);
  *stream = {.get_schema = GetSchema,
             .get_next = GetNext,
             .get_last_error = [](ArrowArrayStream*) -> const char* { return nullptr; },
             .release =
                 [](ArrowArrayStream* self) {
                   delete static_cast<StreamState*>(self->private_data);
                   self->release = nullptr;
                 },
             .private_data = state.release()};
}

ArrowArrayStream* NewStream() { return new ArrowArrayStream{}; }

void DeleteStream(ArrowArrayStream* stream) {
  if (stream->release != nullptr) stream->release(stream);
  delete stream;
}

}  // namespace Python
