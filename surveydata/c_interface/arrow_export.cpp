#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <surveydata/c_interface/arrow_export.h>
#include <surveydata/gnss/gps_time.h>

namespace SDI::CInterface {
namespace {

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
      return "+L";
  }
  return "n";
}

// ----- Schemas

/// Keys and values of metadata in their binary form.
class MetadataC {
 public:
  void Add(std::string_view key, std::string_view value) {
    ++count_;
    Put(key);
    Put(value);
  }
  std::string Get() const {
    return std::string(reinterpret_cast<const char*>(&count_), sizeof(count_)) + pairs_;
  }

 private:
  void Put(std::string_view text) {
    const auto size = static_cast<std::int32_t>(text.size());
    pairs_.append(reinterpret_cast<const char*>(&size), sizeof(size));
    pairs_ += text;
  }

  std::int32_t count_ = 0;
  std::string pairs_;
};

/// What a schema owns: its metadata and its children. Name and format are constants.
struct SchemaNode {
  std::string metadata;
  std::vector<ArrowSchema> children;
  std::vector<ArrowSchema*> pointers;

  ~SchemaNode() {
    for (ArrowSchema& child : children) {
      if (child.release != nullptr) child.release(&child);
    }
  }
};

void ReleaseSchema(ArrowSchema* schema) {
  delete static_cast<SchemaNode*>(schema->private_data);
  schema->release = nullptr;
}

/// Hands `node` over to `schema`.
void Publish(std::unique_ptr<SchemaNode> node, const char* format, const char* name,
             std::int64_t flags, ArrowSchema& schema) {
  for (ArrowSchema& child : node->children) node->pointers.push_back(&child);
  schema = {format,
            name,
            node->metadata.empty() ? nullptr : node->metadata.data(),
            flags,
            static_cast<std::int64_t>(node->children.size()),
            node->pointers.empty() ? nullptr : node->pointers.data(),
            nullptr,
            &ReleaseSchema,
            nullptr};
  schema.private_data = node.release();
}

void AddLeapSeconds(MetadataC& metadata) {
  metadata.Add("leap_seconds", kLeapSecondSource);
  metadata.Add("leap_seconds_expire", kLeapSecondExpiry);
  metadata.Add("leap_seconds_after_expiry", "the last offset is used");
}

bool IsInUTC(const GPSColumn& column) { return std::string_view(column.name).ends_with("_utc"); }

void MakeField(const GPSColumn& column, ArrowSchema& schema) {
  auto node = std::make_unique<SchemaNode>();
  if (column.type == GPSColumnType::kUInt16List) {
    node->children.resize(1);
    node->pointers.reserve(1);
    Publish(std::make_unique<SchemaNode>(), FormatOf(GPSColumnType::kUInt16), "item", 0,
            node->children[0]);
  }
  MetadataC metadata;
  if (*column.unit != 0) metadata.Add("unit", column.unit);
  metadata.Add("description", column.description);
  if (IsInUTC(column)) AddLeapSeconds(metadata);
  node->metadata = metadata.Get();
  Publish(std::move(node), FormatOf(column.type), column.name,
          column.canBeAbsent ? ARROW_FLAG_NULLABLE : 0, schema);
}

}  // namespace

void MakeSchema(std::span<const GPSColumn* const> columns, ArrowSchema& schema) {
  auto node = std::make_unique<SchemaNode>();
  node->children.resize(columns.size());
  node->pointers.reserve(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) MakeField(*columns[i], node->children[i]);
  if (std::ranges::any_of(columns, [](const GPSColumn* column) { return IsInUTC(*column); })) {
    MetadataC metadata;
    AddLeapSeconds(metadata);
    node->metadata = metadata.Get();
  }
  Publish(std::move(node), "+s", "", 0, schema);
}

// ----- Arrays

namespace {

// Some consumers refuse null buffers, even empty ones.
const void* OrNothing(const void* bytes) {
  static constexpr std::uint64_t kNothing = 0;
  return bytes != nullptr ? bytes : &kNothing;
}

/// What an array owns: shared ownership of the memory, the pointers to its buffers, its children.
struct ArrayNode {
  std::shared_ptr<const void> memory;
  std::array<const void*, 3> buffers = {};
  std::vector<ArrowArray> children;
  std::vector<ArrowArray*> pointers;

  ~ArrayNode() {
    for (ArrowArray& child : children) {
      if (child.release != nullptr) child.release(&child);
    }
  }
};

void ReleaseArray(ArrowArray* array) {
  delete static_cast<ArrayNode*>(array->private_data);
  array->release = nullptr;
}

/// Hands `node` over to `array`.
void Publish(std::unique_ptr<ArrayNode> node, std::size_t length, std::uint64_t absent,
             std::int64_t buffers, ArrowArray& array) {
  for (ArrowArray& child : node->children) node->pointers.push_back(&child);
  array = {static_cast<std::int64_t>(length),
           static_cast<std::int64_t>(absent),
           0,
           buffers,
           static_cast<std::int64_t>(node->children.size()),
           node->buffers.data(),
           node->pointers.empty() ? nullptr : node->pointers.data(),
           nullptr,
           &ReleaseArray,
           nullptr};
  array.private_data = node.release();
}

void MakeColumn(const GPSColumnBuffer& buffer, std::size_t rows,
                const std::shared_ptr<const void>& memory, ArrowArray& array) {
  auto node = std::make_unique<ArrayNode>();
  node->memory = memory;
  node->buffers[0] = buffer.validity;
  std::int64_t buffers = 2;
  switch (buffer.column->type) {
    case GPSColumnType::kText:
      node->buffers[1] = buffer.offsets;
      node->buffers[2] = OrNothing(buffer.values);
      buffers = 3;
      break;
    case GPSColumnType::kUInt16List: {
      node->buffers[1] = buffer.offsets;
      node->children.resize(1);
      node->pointers.reserve(1);
      auto entries = std::make_unique<ArrayNode>();
      entries->memory = memory;
      entries->buffers[1] = OrNothing(buffer.values);
      Publish(std::move(entries), static_cast<std::size_t>(buffer.offsets[rows]), 0, 2,
              node->children[0]);
      break;
    }
    default:
      node->buffers[1] = OrNothing(buffer.values);
  }
  Publish(std::move(node), rows, buffer.absent, buffers, array);
}

}  // namespace

void MakeArray(std::span<const GPSColumnBuffer> columns, std::size_t rows,
               const std::shared_ptr<const void>& memory, ArrowArray& array) {
  auto node = std::make_unique<ArrayNode>();
  node->memory = memory;
  node->children.resize(columns.size());
  node->pointers.reserve(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    MakeColumn(columns[i], rows, memory, node->children[i]);
  }
  Publish(std::move(node), rows, 0, 1, array);
}

}  // namespace SDI::CInterface
