#include <cstddef>
#include <iterator>

#include <surveydata/gnss/gps_record_outcome.h>

namespace SDI {
namespace {

// In the order of the enumerators.

constexpr const char* kBlocks[] = {
    "header",       "times",         "file flags", "name",    "antenna height", "extra time",
    "word 16",      "ignored pairs", "values",     "DOPs",    "total pair",     "vector",
    "system pairs", "more",          "flag A",     "value B", "value C",        "text A",
    "text B",       "value D",       "text C",     "flag E",  "text D",         "value F",
    "value G",      "value H",       "value I",    "list",    "unused",         "checksum",
};
static_assert(std::size(kBlocks) == std::size_t{1} + static_cast<int>(GPSRecordBlock::kChecksum));

constexpr const char* kOutcomes[] = {
    "done", "no measurement frame", "cut", "wrong checksum", "a block does not fit",
};
static_assert(std::size(kOutcomes) ==
              std::size_t{1} + static_cast<int>(GPSRecordOutcome::kBlockDoesNotFit));

constexpr const char* kDamages[] = {
    "wrong checksum",
    "cut by the end of the file",
    "runs into the next record",
};
static_assert(std::size(kDamages) ==
              std::size_t{1} + static_cast<int>(GPSRecordDamage::kRunsIntoNextRecord));

constexpr const char* kStates[] = {
    "open",
    "no such file",
    "permission denied",
    "cannot be opened",
    "a pipe has no stretches",
    "reading failed",
};
static_assert(std::size(kStates) ==
              std::size_t{1} + static_cast<int>(GPSReaderState::kReadingFailed));

constexpr const char* kFields[] = {
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
static_assert(std::size(kFields) == std::size_t{1} + static_cast<int>(GPSRecordField::kListBlock));

constexpr const char* kEncodeOutcomes[] = {
    "done",
    "cannot be stored in a frame",
    "makes the frame longer than 500 bytes",
};
static_assert(std::size(kEncodeOutcomes) ==
              std::size_t{1} + static_cast<int>(GPSEncodeOutcome::kTooLong));

constexpr const char* kAppendOutcomes[] = {
    "done",
    "not whole records",
    "no such file",
    "permission denied",
    "cannot be opened",
    "writing failed",
    "writing failed, and part of the records may be left at the end",
};
static_assert(std::size(kAppendOutcomes) ==
              std::size_t{1} + static_cast<int>(GPSAppendOutcome::kLeftOver));

// Any other value: it comes from a caller compiled with a later version.
template <std::size_t N>
const char* TextAt(const char* const (&texts)[N], std::size_t value) {
  return value < N ? texts[value] : "unknown";
}

}  // namespace

const char* TextOf(GPSRecordBlock block) {
  return TextAt(kBlocks, static_cast<std::size_t>(block));
}
const char* TextOf(GPSRecordOutcome outcome) {
  return TextAt(kOutcomes, static_cast<std::size_t>(outcome));
}
const char* TextOf(GPSRecordDamage damage) {
  return TextAt(kDamages, static_cast<std::size_t>(damage));
}
const char* TextOf(GPSRecordField field) {
  return TextAt(kFields, static_cast<std::size_t>(field));
}
const char* TextOf(GPSEncodeOutcome outcome) {
  return TextAt(kEncodeOutcomes, static_cast<std::size_t>(outcome));
}
const char* TextOf(GPSAppendOutcome outcome) {
  return TextAt(kAppendOutcomes, static_cast<std::size_t>(outcome));
}
const char* TextOf(GPSReaderState state) {
  return TextAt(kStates, static_cast<std::size_t>(state));
}

}  // namespace SDI
