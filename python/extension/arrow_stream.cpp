#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include <extension/record_batch.h>

// The Arrow C data interface and its stream, as published:
// https://arrow.apache.org/docs/format/CDataInterface.html
extern "C" {
#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE
#define ARROW_FLAG_NULLABLE 2
struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  std::int64_t flags;
  std::int64_t n_children;
  ArrowSchema** children;
  ArrowSchema* dictionary;
  void (*release)(ArrowSchema*);
  void* private_data;
};
struct ArrowArray {
  std::int64_t length;
  std::int64_t null_count;
  std::int64_t offset;
  std::int64_t n_buffers;
  std::int64_t n_children;
  const void** buffers;
  ArrowArray** children;
  ArrowArray* dictionary;
  void (*release)(ArrowArray*);
  void* private_data;
};
#endif
#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE
struct ArrowArrayStream {
  int (*get_schema)(ArrowArrayStream*, ArrowSchema* out);
  int (*get_next)(ArrowArrayStream*, ArrowArray* out);
  const char* (*get_last_error)(ArrowArrayStream*);
  void (*release)(ArrowArrayStream*);
  void* private_data;
};
#endif
}

namespace Python {
namespace {

using SDI::GPSColumn;
using SDI::GPSColumnType;
using Batch = std::shared_ptr<const RecordBatch>;

const char* FormatOf(GPSColumnType type) {
  switch (type) {
    using enum GPSColumnType;
    case kBool:
      return "b";
    case kUInt8:
      return "C";
    case kUInt16:
      return "S";
    case kUInt32:
      return "I";
    case kUInt64:
      return "L";
    case kInt32:
      return "i";
    case kFloat32:
      return "f";
    case kFloat64:
      return "g";
    case kText:
      return "U";
    case kUInt16List:
      break;
  }
  return "+L";
}

// Pairs of texts in the published layout: numbers of 32 bits before the pairs and each text.
std::string Metadata(std::initializer_list<std::pair<std::string, std::string>> pairs) {
  std::string bytes;
  const auto number = [&](std::size_t size) {
    const auto value = static_cast<std::int32_t>(size);
    bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
  };
  number(pairs.size());
  for (const auto& [key, value] : pairs) {
    number(key.size());
    bytes += key;
    number(value.size());
    bytes += value;
  }
  return bytes;
}

// What a schema or an array owns: itself and its children, each released alone if it was moved.
template <class Node>
struct Children {
  std::vector<Node> nodes;
  std::vector<Node*> pointers;

  void Set(Node& parent) {
    for (Node& node : nodes) pointers.push_back(&node);
    parent.n_children = static_cast<std::int64_t>(pointers.size());
    parent.children = pointers.empty() ? nullptr : pointers.data();
  }
  void Release() {
    for (Node& node : nodes) {
      if (node.release != nullptr) node.release(&node);
    }
  }
};

struct SchemaOwner {
  Children<ArrowSchema> children;
  std::string metadata;
};

void ReleaseSchema(ArrowSchema* schema) {
  auto* const owner = static_cast<SchemaOwner*>(schema->private_data);
  owner->children.Release();
  delete owner;
  schema->release = nullptr;
}

void MakeSchema(ArrowSchema& to, const char* format, const char* name, bool canBeAbsent,
                std::unique_ptr<SchemaOwner> owner) {
  to = {.format = format,
        .name = name,
        .metadata = owner->metadata.empty() ? nullptr : owner->metadata.data(),
        .flags = canBeAbsent ? ARROW_FLAG_NULLABLE : 0,
        .n_children = 0,
        .children = nullptr,
        .dictionary = nullptr,
        .release = ReleaseSchema,
        .private_data = nullptr};
  owner->children.Set(to);
  to.private_data = owner.release();
}

void MakeSchema(ArrowSchema& to, const GPSColumn& column) {
  auto owner = std::make_unique<SchemaOwner>();
  owner->metadata = Metadata({{"unit", column.unit}, {"description", column.description}});
  if (column.type == GPSColumnType::kUInt16List) {
    owner->children.nodes.resize(1);
    MakeSchema(owner->children.nodes[0], "S", "item", false, std::make_unique<SchemaOwner>());
  }
  MakeSchema(to, FormatOf(column.type), column.name, column.canBeAbsent, std::move(owner));
}

// Of one array: the batch lives as long as the last of its arrays, wherever they were moved.
struct ArrayOwner {
  Batch batch;
  std::array<const void*, 3> buffers{};
  Children<ArrowArray> children;
};

void ReleaseArray(ArrowArray* array) {
  auto* const owner = static_cast<ArrayOwner*>(array->private_data);
  owner->children.Release();
  delete owner;
  array->release = nullptr;
}

void MakeArray(ArrowArray& to, std::size_t length, std::uint64_t absent, std::size_t buffers,
               std::unique_ptr<ArrayOwner> owner) {
  to = {.length = static_cast<std::int64_t>(length),
        .null_count = static_cast<std::int64_t>(absent),
        .offset = 0,
        .n_buffers = static_cast<std::int64_t>(buffers),
        .n_children = 0,
        .buffers = owner->buffers.data(),
        .children = nullptr,
        .dictionary = nullptr,
        .release = ReleaseArray,
        .private_data = nullptr};
  owner->children.Set(to);
  to.private_data = owner.release();
}

// Buffers must not be null where there are none of their bytes either.
const void* OrNothing(const BlockC& block) {
  static const std::uint64_t nothing = 0;
  return block.GetSize() != 0 ? static_cast<const void*>(block.Get()) : &nothing;
}

void MakeArray(ArrowArray& to, const Batch& batch, const BatchColumn& column) {
  auto owner = std::make_unique<ArrayOwner>();
  owner->batch = batch;
  owner->buffers[0] = column.validity.Get();
  std::size_t buffers = 2;
  if (column.column->type == GPSColumnType::kUInt16List) {
    owner->buffers[1] = column.offsets.Get();
    auto items = std::make_unique<ArrayOwner>();
    items->batch = batch;
    items->buffers[1] = OrNothing(column.values);
    owner->children.nodes.resize(1);
    MakeArray(owner->children.nodes[0], column.values.GetSize() / sizeof(std::uint16_t), 0, 2,
              std::move(items));
  } else if (column.IsLong()) {
    owner->buffers[1] = column.offsets.Get();
    owner->buffers[2] = OrNothing(column.values);
    buffers = 3;
  } else {
    owner->buffers[1] = OrNothing(column.values);
  }
  MakeArray(to, batch->rows, column.absent, buffers, std::move(owner));
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
    const StreamState& state = StateOf(stream);
    auto owner = std::make_unique<SchemaOwner>();
    owner->children.nodes.resize(state.columns.size());
    for (std::size_t i = 0; i < state.columns.size(); ++i) {
      MakeSchema(owner->children.nodes[i], *state.columns[i]);
    }
    MakeSchema(*out, "+s", "", false, std::move(owner));
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
    auto owner = std::make_unique<ArrayOwner>();
    owner->children.nodes.resize(batch->columns.size());
    for (std::size_t i = 0; i < batch->columns.size(); ++i) {
      MakeArray(owner->children.nodes[i], batch, batch->columns[i]);
    }
    MakeArray(*out, batch->rows, 0, 1, std::move(owner));
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
