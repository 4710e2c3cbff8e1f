#include <cstddef>
#include <iterator>

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_outcome.h>
#include <surveydata/scanning/area_faults.h>

namespace {

constexpr const char* kStatusTexts[] = {
    "done",
    "end",
    "invalid argument",
    "wrong size of a struct",
    "buffer too small",
    "out of memory",
    "cancelled",
    "a function of the caller failed",
    "no such file",
    "permission denied",
    "cannot be opened",
    "a pipe has no stretches",
    "reading failed",
    "writing failed",
    "writing failed, and part of the records may be left at the end",
    "not whole records",
    "no measurement frame",
    "cut",
    "wrong checksum",
    "a block does not fit",
    "cannot be stored in the frame",
    "makes the frame longer than 500 bytes",
    "the points do not make an area",
};
static_assert(std::size(kStatusTexts) == 1 + SURVEYDATA_NOT_VALID);

constexpr const char* kRules[] = {
    "an angle is out of range",
    "the dome reaches down to 0.8 pi",
    "the points do not make an area",
    "in the boundary band",
    "no search line",
    "the meridian crosses no edge",
    "nothing above",
    "parity of the crossings",
};
static_assert(std::size(kRules) == 1 + SURVEYDATA_RULE_PARITY);

template <std::size_t N>
const char* TextAt(const char* const (&texts)[N], std::size_t value) {
  return value < N ? texts[value] : "unknown";
}

// Of the value of an enumeration of `std::uint8_t`.
template <class Enumeration>
const char* TextAs(std::uint32_t value) {
  return value <= 0xFF ? TextOf(static_cast<Enumeration>(value)) : "unknown";
}

}  // namespace

const char* surveydata_version(void) { return SURVEYDATA_VERSION; }

const char* surveydata_status_text(surveydata_status status) {
  return status < 0 ? "unknown" : TextAt(kStatusTexts, static_cast<std::size_t>(status));
}

const char* surveydata_text(std::int32_t what, std::uint32_t value) {
  switch (what) {
    case SURVEYDATA_TEXT_DAMAGE:
      return value == SURVEYDATA_DAMAGE_NONE ? "none" : TextAs<SDI::GPSRecordDamage>(value - 1);
    case SURVEYDATA_TEXT_BLOCK:
      return TextAs<SDI::GPSRecordBlock>(value);
    case SURVEYDATA_TEXT_REFUSED_FIELD:
      return TextAs<SDI::GPSRecordField>(value);
    case SURVEYDATA_TEXT_FAULT:
      return TextAs<SDI::AreaFault::Rule>(value);
    case SURVEYDATA_TEXT_RULE:
      return TextAt(kRules, value);
    default:
      return "unknown";
  }
}
