#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <surveydata/c_interface/boundary.h>
#include <surveydata/scanning/area_faults.h>
#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_area.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

using SDI::AreaExplanation;
using SDI::PreparedAreaC;
using SDI::ScanAreaC;
using SDI::ScanDefPointC;
using SDI::CInterface::Guarded;
using SDI::CInterface::HasKnownSize;
using SDI::CInterface::OutArray;

/// Never changes: only const members of the area and of the prepared area are called.
struct surveydata_area {
  std::unique_ptr<const ScanAreaC> area;
  std::optional<PreparedAreaC> prepared;
};

namespace {

static_assert(SURVEYDATA_RECTANGLE == int{SDI::kRectangularArea} &&
              SURVEYDATA_POLYGON == int{SDI::kPolygonArea} &&
              SURVEYDATA_DOME == int{SDI::kDomeArea});
static_assert(
    SURVEYDATA_RULE_OUT_OF_RANGE == static_cast<int>(AreaExplanation::Rule::kOutOfRange) &&
    SURVEYDATA_RULE_DOME == static_cast<int>(AreaExplanation::Rule::kDome) &&
    SURVEYDATA_RULE_NOT_VALID == static_cast<int>(AreaExplanation::Rule::kNotValid) &&
    SURVEYDATA_RULE_BAND == static_cast<int>(AreaExplanation::Rule::kBand) &&
    SURVEYDATA_RULE_NO_SEARCH_LINE == static_cast<int>(AreaExplanation::Rule::kNoSearchLine) &&
    SURVEYDATA_RULE_NO_CROSSING == static_cast<int>(AreaExplanation::Rule::kNoCrossing) &&
    SURVEYDATA_RULE_NOTHING_ABOVE == static_cast<int>(AreaExplanation::Rule::kNothingAbove) &&
    SURVEYDATA_RULE_PARITY == static_cast<int>(AreaExplanation::Rule::kParity));

using FaultRule = SDI::AreaFault::Rule;
static_assert(SURVEYDATA_FAULT_HZ_STEP == static_cast<int>(FaultRule::kHzStepNotPositive) &&
              SURVEYDATA_FAULT_V_STEP == static_cast<int>(FaultRule::kVStepNotPositive) &&
              SURVEYDATA_FAULT_POINT_COUNT == static_cast<int>(FaultRule::kPointCount) &&
              SURVEYDATA_FAULT_POINT_OUT_OF_RANGE ==
                  static_cast<int>(FaultRule::kPointOutOfRange) &&
              SURVEYDATA_FAULT_EQUAL_POINTS == static_cast<int>(FaultRule::kEqualPoints) &&
              SURVEYDATA_FAULT_EQUAL_HZ == static_cast<int>(FaultRule::kEqualHz) &&
              SURVEYDATA_FAULT_EQUAL_V == static_cast<int>(FaultRule::kEqualV) &&
              SURVEYDATA_FAULT_CROSSING_EDGES == static_cast<int>(FaultRule::kCrossingEdges));

std::unique_ptr<ScanAreaC> MakeArea(std::uint32_t kind) {
  switch (kind) {
    case SURVEYDATA_RECTANGLE:
      return std::make_unique<SDI::ScanRectangularAreaC>();
    case SURVEYDATA_POLYGON:
      return std::make_unique<SDI::ScanPolygonAreaC>();
    case SURVEYDATA_DOME:
      return std::make_unique<SDI::ScanDomeAreaC>();
    default:
      return nullptr;
  }
}

// Null if the kind is unknown.
std::unique_ptr<ScanAreaC> MakeArea(const surveydata_area_definition& definition) {
  std::unique_ptr<ScanAreaC> area = MakeArea(definition.kind);
  if (area == nullptr) return area;
  area->SetSteps(definition.hz_step, definition.v_step);
  if (definition.kind == SURVEYDATA_DOME) return area;
  for (std::size_t i = 0; i < definition.count; ++i) {
    ScanDefPointC point;
    point.SetHz(definition.hz[i]);
    point.SetV(definition.v[i]);
    if (definition.distance != nullptr) point.SetDistance(definition.distance[i]);
    area->AddPoint(point);
  }
  return area;
}

std::unique_ptr<ScanAreaC> CopyOf(const ScanAreaC& area) {
  std::unique_ptr<ScanAreaC> copy = MakeArea(area.GetType());
  copy->SetSteps(area.GetHzStep(), area.GetVStep());
  std::vector<ScanDefPointC> points;
  area.GetPoints(points);
  for (const ScanDefPointC& point : points) copy->AddPoint(point);
  return copy;
}

// Requires that the points make an area.
bool EnclosesZenith(const ScanAreaC& area) {
  if (area.GetType() == SDI::kDomeArea) return true;
  double ignored[4] = {};
  bool enclosesZenith = false;
  area.GetImpl()->GetSphereArea().GetExtents(ignored[0], ignored[1], ignored[2], ignored[3],
                                             enclosesZenith, false);
  return enclosesZenith;
}

// One angle of each direction, `stride` bytes apart.
class AnglesC {
 public:
  static constexpr std::size_t kMost = 512;

  AnglesC(const double* first, std::ptrdiff_t stride)
      : at_(reinterpret_cast<const unsigned char*>(first)), stride_(stride) {}

  /// The next `count` angles. They are copied unless they are contiguous and aligned.
  std::span<const double> Next(std::size_t count) {
    const unsigned char* const first = at_;
    at_ += stride_ * static_cast<std::ptrdiff_t>(count);
    if (IsArray()) return {reinterpret_cast<const double*>(first), count};
    const unsigned char* from = first;
    for (std::size_t i = 0; i < count; ++i, from += stride_) {
      std::memcpy(&copies_[i], from, sizeof(double));  // may be unaligned
    }
    return {copies_.data(), count};
  }
  bool IsArray() const {
    return stride_ == sizeof(double) &&
           reinterpret_cast<std::uintptr_t>(at_) % alignof(double) == 0;
  }

 private:
  const unsigned char* at_;
  std::ptrdiff_t stride_;
  std::array<double, kMost> copies_;
};

void Contains(const PreparedAreaC& area, AnglesC hz, AnglesC v, std::size_t count,
              std::uint8_t* inside) {
  static_assert(sizeof(bool) == 1);
  auto* const answers = reinterpret_cast<bool*>(inside);
  const std::size_t most = hz.IsArray() && v.IsArray() ? count : AnglesC::kMost;
  for (std::size_t done = 0; done < count;) {
    const std::size_t part = std::min(most, count - done);
    area.Contains(hz.Next(part), v.Next(part), {answers + done, part});
    done += part;
  }
}

static_assert(AreaExplanation::kNoEdge == SDI::AreaFault::kNone);
std::uint64_t IndexOf(std::size_t index) {
  return index == SDI::AreaFault::kNone ? SURVEYDATA_NONE : index;
}

}  // namespace

surveydata_status surveydata_area_create(const surveydata_area_definition* definition,
                                         surveydata_area** area) {
  if (area == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  *area = nullptr;
  if (definition == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  if (!HasKnownSize(*definition)) return SURVEYDATA_WRONG_SIZE;
  const bool hasPoints = definition->kind != SURVEYDATA_DOME && definition->count != 0;
  if (hasPoints && (definition->hz == nullptr || definition->v == nullptr)) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  return Guarded([&]() -> surveydata_status {
    auto made = std::make_unique<surveydata_area>();
    made->area = MakeArea(*definition);
    if (made->area == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
    *area = made.release();
    return SURVEYDATA_OK;
  });
}

surveydata_status surveydata_area_prepare(const surveydata_area* area, std::uint32_t questions,
                                          surveydata_area** prepared) {
  if (prepared == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  *prepared = nullptr;
  const bool areMany = questions == SURVEYDATA_QUESTIONS_MANY;
  if (area == nullptr || (!areMany && questions != SURVEYDATA_QUESTIONS_FEW)) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  return Guarded([&] {
    auto made = std::make_unique<surveydata_area>();
    made->area = CopyOf(*area->area);
    made->prepared.emplace(
        *made->area, areMany ? PreparedAreaC::Questions::kMany : PreparedAreaC::Questions::kFew);
    *prepared = made.release();
    return SURVEYDATA_OK;
  });
}

void surveydata_area_destroy(surveydata_area* area) { delete area; }

surveydata_status surveydata_area_faults(const surveydata_area* area, surveydata_fault* faults,
                                         std::size_t fault_size, std::size_t capacity,
                                         std::size_t* count) {
  const OutArray<surveydata_fault> out{faults, capacity, count};
  if (area == nullptr || !out.IsGood()) return SURVEYDATA_INVALID_ARGUMENT;
  if (fault_size != sizeof(*faults)) return SURVEYDATA_WRONG_SIZE;
  return Guarded([&] {
    const std::vector<SDI::AreaFault> found = SDI::FindAreaFaults(*area->area);
    return out.Fill(found.size(), [&](std::size_t i) {
      const SDI::AreaFault& fault = found[i];
      return surveydata_fault{static_cast<std::uint32_t>(fault.rule),
                              0,
                              {IndexOf(fault.points[0]), IndexOf(fault.points[1])},
                              {IndexOf(fault.edges[0]), IndexOf(fault.edges[1])},
                              fault.hz,
                              fault.v};
    });
  });
}

surveydata_status surveydata_area_bounds(const surveydata_area* area, surveydata_bounds* bounds) {
  if (area == nullptr || bounds == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  if (!HasKnownSize(*bounds)) return SURVEYDATA_WRONG_SIZE;
  return Guarded([&]() -> surveydata_status {
    ScanDefPointC low;
    ScanDefPointC high;
    if (!area->area->GetBoundingPoints(low, high, true)) return SURVEYDATA_NOT_VALID;
    bounds->encloses_zenith = EnclosesZenith(*area->area) ? 1 : 0;
    bounds->hz_min = low.GetHz();
    bounds->hz_max = high.GetHz();
    bounds->v_min = low.GetV();
    bounds->v_max = high.GetV();
    return SURVEYDATA_OK;
  });
}

surveydata_status surveydata_area_outline(const surveydata_area* area, double default_distance,
                                          double* hz, double* v, double* distance,
                                          std::size_t capacity, std::size_t* count) {
  if (area == nullptr || count == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  return Guarded([&] {
    std::vector<ScanDefPointC> points;
    area->area->GetOutline(points, default_distance);
    const std::size_t filled = std::min(points.size(), capacity);
    for (std::size_t i = 0; i < filled; ++i) {
      if (hz != nullptr) hz[i] = points[i].GetHz();
      if (v != nullptr) v[i] = points[i].GetV();
      if (distance != nullptr) distance[i] = points[i].GetDistance();
    }
    *count = points.size();
    const bool isQuestion = capacity == 0 && hz == nullptr && v == nullptr && distance == nullptr;
    return isQuestion || points.size() <= capacity ? SURVEYDATA_OK : SURVEYDATA_BUFFER_TOO_SMALL;
  });
}

surveydata_status surveydata_area_contains(const surveydata_area* area, double hz, double v,
                                           std::int32_t* inside) {
  if (area == nullptr || inside == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  return Guarded([&] {
    const bool isInside =
        area->prepared ? area->prepared->Contains(hz, v) : area->area->Contains(hz, v);
    *inside = isInside ? 1 : 0;
    return SURVEYDATA_OK;
  });
}

surveydata_status surveydata_area_contains_many(const surveydata_area* area, const double* hz,
                                                std::ptrdiff_t hz_stride, const double* v,
                                                std::ptrdiff_t v_stride, std::size_t count,
                                                std::uint8_t* inside) {
  if (area == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  if (count == 0) return SURVEYDATA_OK;
  if (hz == nullptr || v == nullptr || inside == nullptr) return SURVEYDATA_INVALID_ARGUMENT;
  return Guarded([&] {
    const AnglesC allHz(hz, hz_stride);
    const AnglesC allV(v, v_stride);
    if (area->prepared) {
      Contains(*area->prepared, allHz, allV, count, inside);
    } else {
      Contains(PreparedAreaC(*area->area), allHz, allV, count, inside);
    }
    return SURVEYDATA_OK;
  });
}

surveydata_status surveydata_area_explain(const surveydata_area* area, double hz, double v,
                                          surveydata_explanation* explanation,
                                          surveydata_crossing* crossings, std::size_t crossing_size,
                                          std::size_t capacity, std::size_t* count) {
  const OutArray<surveydata_crossing> out{crossings, capacity, count};
  if (area == nullptr || explanation == nullptr || !out.IsGood()) {
    return SURVEYDATA_INVALID_ARGUMENT;
  }
  if (!HasKnownSize(*explanation) || crossing_size != sizeof(*crossings)) {
    return SURVEYDATA_WRONG_SIZE;
  }
  return Guarded([&] {
    const AreaExplanation why =
        area->prepared ? area->prepared->Explain(hz, v) : area->area->Explain(hz, v);
    *explanation = {sizeof(*explanation),
                    why.isInside ? 1 : 0,
                    static_cast<std::uint32_t>(why.rule),
                    0,
                    why.hz,
                    why.v,
                    IndexOf(why.bandEdge),
                    IndexOf(why.nearestEdge),
                    why.distance};
    return out.Fill(why.crossings.size(), [&](std::size_t i) {
      const AreaExplanation::Crossing& crossing = why.crossings[i];
      return surveydata_crossing{crossing.edge, crossing.v, crossing.isCounted ? 1 : 0, 0};
    });
  });
}
