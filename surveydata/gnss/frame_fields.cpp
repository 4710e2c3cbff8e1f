#include <cstddef>
#include <iterator>

#include <surveydata/gnss/frame_fields.h>

namespace SDI::RecordFrame {
namespace {

// In the order of the enumerators.

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
    "text",  // blocks of flags word 2
    "head",
    "count",
    "entry",     // list
    "checksum",  // checksum
};
static_assert(std::size(kFieldNames) == std::size_t{1} + static_cast<int>(Field::kChecksum));

}  // namespace

const char* NameOf(Field field) { return kFieldNames[static_cast<std::size_t>(field)]; }

}  // namespace SDI::RecordFrame
