// Creates, links, copies, assigns, changes and deletes scan areas and scans in arbitrary order,
// from either side. Their data, and the number of live objects, must equal those of a model.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/support/literal_sphere_area.h"

namespace {

using SDI::ScanAreaC;
using SDI::ScanAreaImplC;
using SDI::ScanC;
using SDI::ScanDefPointC;
using SDI::ScanImplC;

constexpr std::size_t kMostSteps = 100;
constexpr std::size_t kMostPoints = 12;

// --- Live objects

int g_publics = 0;  // objects of the classes below
int g_impls = 0;

template <class Object, int& count>
class CountedC : public Object {
 public:
  template <class... Args>
  explicit CountedC(Args&&... args) : Object(std::forward<Args>(args)...) {
    ++count;
  }
  CountedC(const CountedC&) = delete;
  CountedC& operator=(const CountedC&) = delete;
  ~CountedC() override { --count; }
};

// The operations common to all kinds of areas.
struct Kind {
  std::uint32_t type;
  ScanAreaC* (*makePublic)();
  ScanAreaC* (*adopt)(ScanAreaImplC*);
  ScanAreaImplC* (*makeImpl)();
  ScanAreaImplC* (*copyImpl)(const ScanAreaImplC&);
  void (*assign)(ScanAreaImplC&, const ScanAreaImplC&);
};

template <class Public, class Impl>
constexpr Kind KindOf(std::uint32_t type) {
  using CountedPublic = CountedC<Public, g_publics>;
  using CountedImpl = CountedC<Impl, g_impls>;
  return {
      type,
      []() -> ScanAreaC* { return new CountedPublic; },
      [](ScanAreaImplC* impl) -> ScanAreaC* { return new CountedPublic(static_cast<Impl*>(impl)); },
      []() -> ScanAreaImplC* { return new CountedImpl; },
      [](const ScanAreaImplC& from) -> ScanAreaImplC* {
        return new CountedImpl(static_cast<const Impl&>(from));
      },
      [](ScanAreaImplC& to, const ScanAreaImplC& from) {
        static_cast<Impl&>(to) = static_cast<const Impl&>(from);
      }};
}

const Kind kKinds[] = {
    KindOf<SDI::ScanRectangularAreaC, SDI::ScanRectangularAreaImplC>(SDI::kRectangularArea),
    KindOf<SDI::ScanPolygonAreaC, SDI::ScanPolygonAreaImplC>(SDI::kPolygonArea),
    KindOf<SDI::ScanDomeAreaC, SDI::ScanDomeAreaImplC>(SDI::kDomeArea)};

// --- Data

struct Point {
  double hz;
  double v;
  double distance;
};

// An unset point.
constexpr double kNoAngle = std::numeric_limits<double>::max();
constexpr Point kNoPoint{kNoAngle, kNoAngle, -1.0};

struct AreaModel {
  const Kind* kind = nullptr;
  double hzStep = 0.0;
  double vStep = 0.0;
  std::uint32_t settingA = 0;
  double limitLow = -1.0;
  double limitHigh = -1.0;
  std::uint32_t settingB = 4;
  std::uint32_t settingC = 0;
  double settingD = 0.0;
  std::uint16_t settingE = 1;
  std::vector<Point> points;

  bool IsDome() const { return kind->type == SDI::kDomeArea; }
};

AreaModel AreaOf(const Kind& kind) {
  AreaModel model;
  model.kind = &kind;
  return model;
}

struct ScanModel {
  std::array<std::u16string, 4> texts;
  std::array<double, 4> values = {};
  std::array<std::uint32_t, 2> words = {};
  std::optional<AreaModel> area;
};

bool Differ(double a, double b) { return !(std::fabs(a - b) < 2.2250738585072014e-308); }

bool IsSamePoint(const Point& a, const Point& b) {
  return !Differ(a.hz, b.hz) && !Differ(a.v, b.v);
}

literal::SphereArea GeometryOf(const AreaModel& model) {
  literal::SphereArea sphere;
  for (const Point& p : model.points) sphere.AddPoint(p.hz, p.v);
  return sphere;
}

bool IsAreaValid(const AreaModel& model) {
  if (model.IsDome()) return true;
  if (!GeometryOf(model).IsValid()) return false;
  if (model.kind->type == SDI::kPolygonArea) return true;
  const auto& p = model.points;
  return p.size() == 2 && !IsSamePoint(p[0], p[1]) && p[0].hz - p[1].hz != 0.0 &&
         p[0].v - p[1].v != 0.0;
}

bool IsValid(const AreaModel& model) {
  if (!(model.hzStep > 0 && model.vStep > 0 && IsAreaValid(model))) return false;
  if (model.kind->type != SDI::kPolygonArea) return true;
  const auto& p = model.points;
  if (p.size() < 3) return false;
  for (std::size_t i = 1; i < p.size(); ++i) {
    if (IsSamePoint(p[i - 1], p[i])) return false;
  }
  return !IsSamePoint(p.front(), p.back());
}

bool AreEqual(const AreaModel& a, const AreaModel& b) {
  if (a.kind != b.kind || Differ(a.hzStep, b.hzStep) || Differ(a.vStep, b.vStep)) return false;
  if (a.points.size() != b.points.size()) return false;
  for (std::size_t i = 0; i < a.points.size(); ++i) {
    if (!IsSamePoint(a.points[i], b.points[i])) return false;
  }
  return a.settingA == b.settingA && a.limitLow == b.limitLow && a.limitHigh == b.limitHigh;
}

bool AreEqual(const ScanModel& a, const ScanModel& b) {
  return a.texts == b.texts && a.values == b.values && a.words == b.words &&
         (!a.area || !b.area || AreEqual(*a.area, *b.area));
}

bool Contains(const AreaModel& model, double hz, double v) {
  if (!model.IsDome()) return GeometryOf(model).Contains(hz, v);
  return literal::WrapIntoRange(&hz, 0.0, GMAT::TWO_PI) &&
         literal::WrapIntoRange(&v, 0.0, GMAT::TWO_PI) && v <= GMAT::V_LIMIT;
}

// For a valid area.
literal::Extents BoundsOf(const AreaModel& model, bool normalize) {
  literal::Extents bounds{0.0, GMAT::TWO_PI - 1e-6, 0.0, GMAT::V_LIMIT, false};
  if (model.IsDome()) return bounds;
  EXPECT_TRUE(GeometryOf(model).GetExtents(bounds, false));
  if (normalize) {
    literal::WrapIntoRange(&bounds.hzMax, 0.0, GMAT::TWO_PI);
    literal::WrapIntoRange(&bounds.vMax, 0.0, GMAT::TWO_PI);
  }
  return bounds;
}

std::vector<Point> OutlineOf(const AreaModel& model, double defaultDistance) {
  std::vector<Point> out = model.points;
  if (model.kind->type == SDI::kRectangularArea) {
    if (out.size() < 2) return {};
    double d0 = out[0].distance;
    double d1 = out[1].distance;
    if (d0 < 0 && d1 < 0) {
      d0 = d1 = defaultDistance;
    } else if (d0 < 0 && d1 >= 0) {
      d0 = d1;
    } else if (d0 >= 0 && d1 < 0) {
      d1 = d0;
    }
    const Point a = out[0];
    const Point b = out[1];
    return {{a.hz, a.v, d0}, {b.hz, a.v, d1}, {b.hz, b.v, d1}, {a.hz, b.v, d0}};
  }
  const std::uint64_t n = out.size();
  double sum = 0.0;
  std::uint64_t count = 0;
  for (const Point& p : model.points) {
    if (!(p.distance > 0)) continue;
    sum += p.distance;
    ++count;
  }
  if (count == n) return out;
  if (count == 0) {
    for (Point& p : out) p.distance = defaultDistance;
    return out;
  }
  const double mean = sum / static_cast<double>(count);
  const auto distance = [&](std::uint64_t i) {
    const double given = model.points[i].distance;
    return given < 0 ? mean : given;
  };
  for (std::uint64_t i = 0; i < n; ++i) {
    if (!(model.points[i].distance < 0)) continue;
    // The index of the point before the first is 2^64 - 1 modulo n.
    const std::uint64_t before = (i == 0 ? UINT64_MAX : i - 1) % n;
    out[i].distance = (distance(before) + distance((i + 1) % n)) / 2.0;
  }
  return out;
}

bool HasBitsOf(double a, double b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

bool IsSameNumber(double a, double b) { return HasBitsOf(a, b) || (a != a && b != b); }

void ExpectPoints(const std::vector<ScanDefPointC>& points, const std::vector<Point>& expected) {
  ASSERT_EQ(points.size(), expected.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_TRUE(IsSameNumber(points[i].GetHz(), expected[i].hz));
    EXPECT_TRUE(IsSameNumber(points[i].GetV(), expected[i].v));
    EXPECT_TRUE(IsSameNumber(points[i].GetDistance(), expected[i].distance));
  }
}

void ExpectHolds(const ScanAreaImplC& area, const AreaModel& model) {
  EXPECT_EQ(area.GetType(), model.kind->type);
  EXPECT_TRUE(HasBitsOf(area.GetHzStep(), model.hzStep));
  EXPECT_TRUE(HasBitsOf(area.GetVStep(), model.vStep));
  EXPECT_EQ(area.GetSettingA(), model.settingA);
  EXPECT_TRUE(HasBitsOf(area.GetLimitLow(), model.limitLow));
  EXPECT_TRUE(HasBitsOf(area.GetLimitHigh(), model.limitHigh));
  EXPECT_EQ(area.GetSettingB(), model.settingB);
  EXPECT_EQ(area.GetSettingC(), model.settingC);
  EXPECT_TRUE(HasBitsOf(area.GetSettingD(), model.settingD));
  EXPECT_EQ(area.GetSettingE(), model.settingE);
  EXPECT_EQ(area.GetPointCount(), model.points.size());
  std::vector<ScanDefPointC> points(1);
  area.GetPoints(points);
  ExpectPoints(points, model.points);
}

void ExpectHolds(const ScanC& scan, const ScanModel& model) {
  EXPECT_EQ(scan.GetText1(), model.texts[0]);
  EXPECT_EQ(scan.GetText2(), model.texts[1]);
  EXPECT_EQ(scan.GetText3(), model.texts[2]);
  EXPECT_EQ(scan.GetText4(), model.texts[3]);
  EXPECT_TRUE(HasBitsOf(scan.GetValue1(), model.values[0]));
  EXPECT_TRUE(HasBitsOf(scan.GetValue2(), model.values[1]));
  EXPECT_TRUE(HasBitsOf(scan.GetValue3(), model.values[2]));
  EXPECT_TRUE(HasBitsOf(scan.GetValue4(), model.values[3]));
  EXPECT_EQ(scan.GetWord1(), model.words[0]);
  EXPECT_EQ(scan.GetWord2(), model.words[1]);
  ASSERT_EQ(scan.GetArea() != nullptr, model.area.has_value());
  if (!model.area) return;
  auto* const area = dynamic_cast<ScanAreaC*>(scan.GetArea());
  ASSERT_NE(area, nullptr);
  ASSERT_NE(area->GetImpl(), nullptr);
  EXPECT_EQ(area->GetImpl()->GetBase(), area);
  ExpectHolds(*area->GetImpl(), *model.area);
}

// --- Calls

// An area owned by the sequence: a pair, or only an implementation.
struct AreaSlot {
  ScanAreaC* object = nullptr;
  ScanAreaImplC* impl = nullptr;
  bool isObjectCounted = false;
  bool isImplCounted = false;
  AreaModel model;
};

struct ScanSlot {
  ScanC* scan = nullptr;
  bool isScanCounted = false;
  bool isImplCounted = false;
  ScanModel model;
};

class SequenceC {
 public:
  explicit SequenceC(Fuzz::InputC& in) : in_(in) {}

  void Run() {
    for (std::size_t step = 0; step < kMostSteps && !in_.IsEmpty(); ++step) {
      if (in_.Flag()) {
        ChangeAreas();
      } else {
        ChangeScans();
      }
      Check();
    }
    for (AreaSlot& slot : areas_) Delete(slot);
    for (ScanSlot& slot : scans_) Delete(slot);
    Check();
  }

 private:
  using CountedScan = CountedC<ScanC, g_publics>;
  using CountedScanImpl = CountedC<ScanImplC, g_impls>;

  AreaSlot& SomeArea() { return areas_[in_.Below(areas_.size())]; }
  ScanSlot& SomeScan() { return scans_[in_.Below(scans_.size())]; }

  double Number() {
    switch (in_.Below(4)) {
      case 0:
        return static_cast<double>(in_.U8()) / 32;
      case 1:
        return in_.U16() * 6.283185307179586 / 65536;
      case 2:
        return -static_cast<double>(in_.U8());
      default:
        return in_.Take<double>();
    }
  }
  Point SomePoint() {
    const double hz = Number();
    const double v = Number();
    return {hz, v, Number()};
  }
  static ScanDefPointC ToPoint(const Point& p) { return {p.hz, p.v, p.distance}; }

  void Check() {
    int publics = 0;
    int impls = 0;
    for (const AreaSlot& slot : areas_) {
      if (slot.impl == nullptr) continue;
      publics += slot.object != nullptr && slot.isObjectCounted;
      impls += slot.isImplCounted;
      if (slot.object != nullptr) {
        EXPECT_EQ(slot.object->GetImpl(), slot.impl);
        EXPECT_EQ(slot.impl->GetBase(), slot.object);
      }
      ExpectHolds(*slot.impl, slot.model);
    }
    for (const ScanSlot& slot : scans_) {
      if (slot.scan == nullptr) continue;
      publics += slot.isScanCounted;
      impls += slot.isImplCounted;
      EXPECT_EQ(slot.scan->GetImpl()->GetBase(), slot.scan);
      ExpectHolds(*slot.scan, slot.model);
    }
    EXPECT_EQ(g_publics, publics);
    EXPECT_EQ(g_impls, impls);
  }

  // Areas

  void Delete(AreaSlot& slot) {
    if (slot.object != nullptr && in_.Flag()) {
      delete slot.object;
    } else {
      delete slot.impl;
    }
    slot = {};
  }

  void Create(AreaSlot& slot) {
    Delete(slot);
    const Kind& kind = kKinds[in_.Below(std::size(kKinds))];
    slot.model = AreaOf(kind);
    if (in_.Flag()) {
      slot.object = kind.makePublic();
      slot.isObjectCounted = true;
      slot.impl = slot.object->GetImpl();
    } else {
      slot.impl = kind.makeImpl();
      slot.isImplCounted = true;
    }
  }

  void ChangeAreas() {
    AreaSlot& slot = SomeArea();
    const std::size_t what = in_.Below(12);
    if (what == 0 || slot.impl == nullptr) return Create(slot);
    const Kind& kind = *slot.model.kind;
    switch (what) {
      case 1:
        return Delete(slot);
      case 2:  // a second public object adopts it; the first is destroyed
        slot.object = kind.adopt(slot.impl);
        slot.isObjectCounted = true;
        return;
      case 3: {  // the public object that the implementation creates
        auto* const base = static_cast<ScanAreaC*>(slot.impl->GetBase());
        if (slot.object == nullptr) slot.isObjectCounted = false;
        slot.object = base;
        return;
      }
      case 4: {  // detach; the public object is deleted or linked to another implementation
        if (slot.object == nullptr) return;
        slot.impl->DetachBase();
        EXPECT_EQ(slot.object->GetImpl(), nullptr);
        ScanAreaC* const object = std::exchange(slot.object, nullptr);
        AreaSlot& to = SomeArea();
        if (to.model.kind != &kind) {
          delete object;
          return;
        }
        object->SetImpl(to.impl);  // destroys the public object of `to.impl`
        to.object = object;
        to.isObjectCounted = slot.isObjectCounted;
        return;
      }
      case 5: {
        AreaSlot& to = SomeArea();
        if (&to == &slot) return;
        Delete(to);
        to.impl = kind.copyImpl(*slot.impl);
        to.isImplCounted = true;
        to.model = slot.model;
        return;
      }
      case 6: {
        const AreaSlot& from = SomeArea();  // possibly itself
        if (from.impl == nullptr || from.model.kind != &kind) return;
        kind.assign(*slot.impl, *from.impl);
        slot.model = AreaModel(from.model);
        return;
      }
      case 7:
        return Ask(slot);
      default:
        return ChangeArea(*slot.impl, slot.model);
    }
  }

  void ChangeArea(ScanAreaImplC& area, AreaModel& model) {
    auto& points = model.points;
    switch (in_.Below(8)) {
      case 0:
        area.RemoveLastPoint();
        if (!points.empty()) points.pop_back();
        return;
      case 1:
        area.Clear();
        points.clear();
        return;
      case 2: {
        const Point a = SomePoint();
        const Point b = SomePoint();
        if (auto* const rectangle = dynamic_cast<SDI::ScanRectangularAreaImplC*>(&area)) {
          rectangle->SetCorners(ToPoint(a), ToPoint(b));
          points = {a, b};
        } else if (auto* const polygon = dynamic_cast<SDI::ScanPolygonAreaImplC*>(&area)) {
          if (points.size() + 2 > kMostPoints) return;
          polygon->SetPoints({ToPoint(a), ToPoint(b)});
          points.insert(points.end(), {a, b});
        }
        return;
      }
      case 3:
        area.SetHzStep(model.hzStep = Number());
        area.SetVStep(model.vStep = Number());
        return;
      case 4:
        area.SetSettingA(model.settingA = in_.U8());
        area.SetLimitLow(model.limitLow = Number());
        area.SetLimitHigh(model.limitHigh = Number());
        area.SetSettingB(model.settingB = in_.U8());
        area.SetSettingC(model.settingC = in_.U8());
        area.SetSettingD(model.settingD = Number());
        area.SetSettingE(model.settingE = in_.U16());
        return;
      default: {
        if (points.size() >= kMostPoints) return;
        const Point p = SomePoint();
        EXPECT_EQ(area.AddPoint(ToPoint(p)), !model.IsDome());
        if (!model.IsDome()) points.push_back(p);
        return;
      }
    }
  }

  void Ask(const AreaSlot& slot) {
    const AreaModel& model = slot.model;
    const bool isValid = IsValid(model);
    EXPECT_EQ(slot.impl->IsAreaValid(), IsAreaValid(model));
    EXPECT_EQ(slot.impl->IsValid(), isValid);
    const double hz = Number();
    const double v = Number();
    EXPECT_EQ(slot.impl->Contains(hz, v), Contains(model, hz, v));
    AskBounds(slot, in_.Flag());
    std::vector<ScanDefPointC> outline;
    slot.impl->GetOutline(outline, 7.5);
    ExpectPoints(outline, OutlineOf(model, 7.5));
    if (const auto* const rectangle =
            dynamic_cast<const SDI::ScanRectangularAreaImplC*>(slot.impl)) {
      std::vector<ScanDefPointC> corners(2);
      EXPECT_EQ(rectangle->GetCorners(corners[0], corners[1]), isValid);
      ExpectPoints(corners, isValid ? model.points : std::vector<Point>(2, kNoPoint));
    }
    const AreaSlot& other = SomeArea();
    if (other.impl != nullptr) {
      EXPECT_EQ(slot.impl->IsEqual(*other.impl), AreEqual(model, other.model));
    }
  }

  void AskBounds(const AreaSlot& slot, bool normalize) {
    const bool isAreaValid = IsAreaValid(slot.model);
    std::vector<ScanDefPointC> bounds(2);
    EXPECT_EQ(slot.impl->GetBoundingPoints(bounds[0], bounds[1], normalize), isAreaValid);
    std::vector<Point> expected(2, kNoPoint);
    if (isAreaValid) {
      const literal::Extents e = BoundsOf(slot.model, normalize);
      expected = {{e.hzMin, e.vMin, -1.0}, {e.hzMax, e.vMax, -1.0}};
    }
    ExpectPoints(bounds, expected);
    if (slot.object == nullptr) return;
    literal::Extents e{kNoAngle, kNoAngle, kNoAngle, kNoAngle, false};
    if (IsValid(slot.model)) e = BoundsOf(slot.model, true);
    EXPECT_TRUE(IsSameNumber(slot.object->GetHzMin(), e.hzMin));
    EXPECT_TRUE(IsSameNumber(slot.object->GetHzMax(), e.hzMax));
    EXPECT_TRUE(IsSameNumber(slot.object->GetVMin(), std::min(e.vMin, e.vMax)));
    EXPECT_TRUE(IsSameNumber(slot.object->GetVMax(), std::max(e.vMin, e.vMax)));
  }

  // Scans

  void Delete(ScanSlot& slot) {
    if (slot.scan != nullptr && in_.Flag()) {
      delete slot.scan->GetImpl();
    } else {
      delete slot.scan;
    }
    slot = {};
  }

  void Create(ScanSlot& slot) {
    Delete(slot);
    if (in_.Flag()) {
      slot.scan = new CountedScan;
      slot.isScanCounted = true;
    } else {
      slot.scan = static_cast<ScanC*>((new CountedScanImpl)->GetBase());
      slot.isImplCounted = true;
    }
  }

  void ChangeScans() {
    ScanSlot& slot = SomeScan();
    const std::size_t what = in_.Below(14);
    if (what == 0 || slot.scan == nullptr) return Create(slot);
    switch (what) {
      case 1:
        return Delete(slot);
      case 2: {  // a copy, of the public object or of the implementation
        ScanSlot& to = SomeScan();
        if (&to == &slot) return;
        Delete(to);
        if (in_.Flag()) {
          to.scan = new CountedScan(std::as_const(*slot.scan));
        } else {
          to.scan = new CountedScan(new CountedScanImpl(std::as_const(*slot.scan->GetImpl())));
          to.isImplCounted = true;
        }
        to.isScanCounted = true;
        to.model = slot.model;
        return;
      }
      case 3: {
        const ScanSlot& from = SomeScan();  // possibly itself
        if (from.scan == nullptr) return;
        if (in_.Flag()) {
          *slot.scan = *from.scan;
        } else {
          *slot.scan->GetImpl() = *from.scan->GetImpl();
        }
        // If the other scan has no area, this one keeps its own.
        auto area = from.model.area ? from.model.area : slot.model.area;
        slot.model = ScanModel(from.model);
        slot.model.area = std::move(area);
        return;
      }
      case 4: {
        const auto type = static_cast<std::uint32_t>(in_.Below(6));
        const auto* const made = slot.scan->CreateArea(type);
        EXPECT_EQ(made, slot.scan->GetArea());
        slot.model.area.reset();
        if (1 <= type && type <= 3) slot.model.area = AreaOf(kKinds[type - 1]);
        return;
      }
      case 5: {
        const AreaSlot& area = SomeArea();
        if (area.impl == nullptr) return;
        if (area.object != nullptr && in_.Flag()) {
          slot.scan->SetArea(area.object);
        } else {
          slot.scan->GetImpl()->SetArea(area.impl);
        }
        slot.model.area = area.model;
        return;
      }
      case 6: {  // the area of a scan, possibly its own
        const ScanSlot& from = SomeScan();
        if (from.scan == nullptr) return;
        const auto* const area = from.scan->GetArea();
        const auto* const set = slot.scan->SetArea(area);
        EXPECT_EQ(set, area != nullptr ? slot.scan->GetArea() : nullptr);
        if (from.model.area) slot.model.area = std::optional(from.model.area);
        return;
      }
      case 7:
        slot.scan->GetImpl()->SetArea(static_cast<const SDI::ScanDefinitionImplC*>(nullptr));
        slot.model.area.reset();
        return;
      case 8: {  // gives the implementation another public object, in one or two steps
        auto* const impl = slot.scan->GetImpl();
        if (in_.Flag()) {
          impl->DetachBase();
          EXPECT_EQ(slot.scan->GetImpl(), nullptr);
          delete slot.scan;
        }
        slot.scan = new CountedScan(impl);
        slot.isScanCounted = true;
        return;
      }
      case 9:
      case 10:
        if (slot.model.area) {
          ChangeArea(*static_cast<ScanAreaC*>(slot.scan->GetArea())->GetImpl(), *slot.model.area);
        }
        return;
      case 11: {
        const ScanSlot& other = SomeScan();
        if (other.scan == nullptr) return;
        EXPECT_EQ(slot.scan->IsEqual(*other.scan), AreEqual(slot.model, other.model));
        return;
      }
      default:
        return ChangeFields(slot);
    }
  }

  void ChangeFields(ScanSlot& slot) {
    ScanC& scan = *slot.scan;
    ScanModel& model = slot.model;
    const std::size_t field = in_.Below(4);
    std::u16string text(in_.U16() % 300, u'x');
    if (!text.empty()) text[0] = static_cast<char16_t>(u'a' + in_.U8() % 26);
    const std::size_t limits[] = {32, 32, 255, 64};
    const bool fits = text.size() <= limits[field];
    switch (field) {
      case 0:
        EXPECT_EQ(scan.SetText1(text.c_str()), fits);
        break;
      case 1:
        EXPECT_EQ(scan.SetText2(text.c_str()), fits);
        break;
      case 2:
        EXPECT_EQ(scan.SetText3(text.c_str()), fits);
        break;
      default:
        scan.SetText4(text.c_str());
        if (!fits) model.texts[3].clear();
        break;
    }
    if (fits) model.texts[field] = text;
    scan.SetValue1(model.values[0] = Number());
    scan.SetValue2(model.values[1] = Number());
    scan.SetValue3(model.values[2] = Number());
    scan.SetValue4(model.values[3] = Number());
    scan.SetWord1(model.words[0] = in_.U8());
    scan.SetWord2(model.words[1] = in_.U8());
  }

  Fuzz::InputC& in_;
  std::array<AreaSlot, 4> areas_;
  std::array<ScanSlot, 3> scans_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::InputC in({data, size});
  SequenceC(in).Run();
  return 0;
}
