#include <cstddef>
#include <iterator>

#include <surveydata/gnss/frame_fields.h>

namespace SDI::RecordFrame {
namespace {

// In the order of the enumerators.

constexpr const char* kBlockNames[] = {
    "header",       "times",         "file flags", "name",    "antenna height", "extra time",
    "word 16",      "ignored pairs", "values",     "DOPs",    "total pair",     "vector",
    "system pairs", "more",          "flag A",     "value B", "value C",        "text A",
    "text B",       "value D",       "text C",     "flag E",  "text D",         "value F",
    "value G",      "value H",       "value I",    "list",    "unused",         "checksum",
};
static_assert(std::size(kBlockNames) == std::size_t{1} + static_cast<int>(Block::kChecksum));

constexpr const char* kFieldNames[] = {
    "magic",
    "length",
    "type",  // header
    "time A, week",
    "time A, time of week",
    "time B, time of week",
    "flags word 1",  // times
    "ignored",       // any block
    "kind",
    "status",
    "more status",  // file flags
    "name",
    "number",  // name
    "height",
    "kind",  // antenna height
    "count",
    "week",
    "time of week",  // extra time
    "word 16",       // word 16
    "systems",       // ignored pairs
    "first",
    "second",  // values
    "HDOP",
    "VDOP",
    "TDOP",  // DOPs
    "first",
    "second",  // total pair
    "x",
    "y",
    "z",  // vector
    "systems",
    "valid",
    "first",
    "second",        // system pairs
    "flags word 2",  // more
    "flag",
    "value",
    "value",
    "text",
    "text",
    "value",
    "text",
    "flag",
    "text",  // A to E, text D
    "value",
    "value",
    "value",
    "value",  // values F to I
    "head",
    "count",
    "entry",     // list
    "checksum",  // checksum
};
static_assert(std::size(kFieldNames) == std::size_t{1} + static_cast<int>(Field::kChecksum));

constexpr const char* kRecordFieldNames[] = {
    "",
    "week of time B",
    "status bit 2",
    "flags",
    "name",
    "antenna height",
    "horizontal offset",
    "extra time",
    "word 16",
    "values",
    "DOPs",
    "total pair",
    "vector",
    "system 1 pair",
    "system 2 pair",
    "system 3 pair",
    "flag A",
    "value B",
    "value C",
    "text A",
    "text B",
    "value D",
    "text C",
    "flag E",
    "text D",
    "value F",
    "value G",
    "value H",
    "value I",
    "list block",
};
static_assert(std::size(kRecordFieldNames) ==
              std::size_t{1} + static_cast<int>(RecordField::kListBlock));

}  // namespace

const char* NameOf(Block block) { return kBlockNames[static_cast<std::size_t>(block)]; }
const char* NameOf(Field field) { return kFieldNames[static_cast<std::size_t>(field)]; }
const char* NameOf(RecordField field) { return kRecordFieldNames[static_cast<std::size_t>(field)]; }

}  // namespace SDI::RecordFrame
