#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <extension/buffer.h>
#include <extension/data_class.h>
#include <extension/module.h>
#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/surveydata.h>

namespace Python {

namespace nb = nanobind;
using namespace nb::literals;

// A part that may be absent.
template <class Part>
requires std::is_class_v<Part>
struct Exchange<std::optional<Part>> {
  using Given = const Part&;
  using Optional = const Part*;
  static const Part& Take(const char*, const Part& given, std::size_t) { return given; }
  static std::optional<Part> Give(const std::optional<Part>& value) { return value; }
};

// A number that may be absent.
template <>
struct Exchange<std::optional<double>> {
  using Given = double;
  using Optional = std::optional<double>;
  static double Take(const char*, double given, std::size_t) { return given; }
  static std::optional<double> Give(std::optional<double> value) { return value; }
};

namespace {

using SDI::CoordinatePointC;
using SDI::CoordinateQualityC;
using SDI::CoordinateReferenceSystemC;
using SDI::DisplayAttributesC;
using SDI::GPSAntHeightC;
using SDI::GPSDOPsC;
using SDI::GPSRefStationDataC;
using SDI::InstrumentInfoDataC;
using SDI::PositionC;
using SDI::QMatrixC;
using SDI::RectangleC;
using SDI::ScanDefPointC;
using SDI::UndulationMementoC;

// The flags word as a value.
template <class R>
auto Flags() {
  return MakeProperty<R>("flags", &R::GetFlags,
                         [](R& r, std::uint32_t flags) { r.SetFlags(flags, ~flags); });
}

void AddPoints(nb::module_& module) {
  using P = CoordinatePointC;
  BindDataClass<P>(
      module, "CoordinatePoint",
      "A point with three coordinates, in the unit and axes of the reference system that "
      "accompanies it. Equal within two units in the last place; NaN equals anything.",
      MakeProperty<P>("x", &P::GetX, &P::SetX), MakeProperty<P>("y", &P::GetY, &P::SetY),
      MakeProperty<P>("z", &P::GetZ, &P::SetZ));

  using Q = QMatrixC;
  BindDataClass<Q>(
      module, "QMatrix",
      "The symmetric 3 by 3 cofactor matrix of a coordinate triple, in single precision.",
      MakeProperty<Q>("q11", &Q::GetQ11, &Q::SetQ11),
      MakeProperty<Q>("q12", &Q::GetQ12, &Q::SetQ12),
      MakeProperty<Q>("q13", &Q::GetQ13, &Q::SetQ13),
      MakeProperty<Q>("q22", &Q::GetQ22, &Q::SetQ22),
      MakeProperty<Q>("q23", &Q::GetQ23, &Q::SetQ23),
      MakeProperty<Q>("q33", &Q::GetQ33, &Q::SetQ33));

  using C = CoordinateQualityC;
  BindDataClass<C>(
      module, "CoordinateQuality", "The quality of a coordinate triple.",
      MakeProperty<C>("sigma", &C::GetSigma, &C::SetSigma,
                      "The factor from square roots of cofactors to standard deviations."),
      MakeProperty<C>(
          "matrix", [](const C& r) { return r.GetMatrix(); }, &C::SetMatrix,
          "A copy of the matrix: changing it does not change this quality."),
      MakeProperty<C>("valid_axes", &C::GetValidAxes, &C::SetValidAxes,
                      "Bits 1, 2 and 4 mean axes 1, 2 and 3."));

  using S = CoordinateReferenceSystemC;
  BindDataClass<S>(
      module, "CoordinateReferenceSystem", "The coordinate system of a position.",
      MakeProperty<S>("kind", &S::GetKind, &S::SetKind, "1 to 4 are kinds that a position knows."),
      MakeProperty<S>("variant", &S::GetVariant, &S::SetVariant),
      MakeProperty<S>("has_height", &S::GetHasHeight, &S::SetHasHeight,
                      "Other than 0 if there is a height; used for the kinds 2, 3 and 4."));

  using U = UndulationMementoC;
  BindDataClass<U>(
      module, "UndulationMemento",
      "The undulation at a position, with its source and validity. It never changes; assign "
      "another one to the position.",
      MakeConstant<U>(
          "undulation", &U::GetUndulation,
          [](U& r, float undulation) { r = U(undulation, r.GetSource(), r.GetValid()); },
          "The height of the geoid above the ellipsoid in metres."),
      MakeConstant<U>(
          "source", &U::GetSource,
          [](U& r, std::int32_t source) { r = U(r.GetUndulation(), source, r.GetValid()); }),
      MakeConstant<U>("valid", &U::GetValid, [](U& r, std::uint8_t valid) {
        r = U(r.GetUndulation(), r.GetSource(), valid);
      }));
}

void AddPositions(nb::module_& module) {
  using P = PositionC;
  const auto asOptional = [](bool is, float value) {
    return is ? std::optional<double>(value) : std::nullopt;
  };
  BindDataClass<P>(
      module, "Position",
      "A complete position. The four parts are its own: they change with it, and keep it alive.",
      MakeProperty<P>(
          "crs", [](auto& r) -> auto& { return r.GetCRS(); }, &P::SetCRS, "The reference system."),
      MakeProperty<P>(
          "point", [](auto& r) -> auto& { return r.GetCoordinatePoint(); }, &P::SetCoordinatePoint),
      MakeProperty<P>(
          "quality", [](auto& r) -> auto& { return r.GetCoordinateQuality(); },
          &P::SetCoordinateQuality),
      MakeProperty<P>(
          "undulation", [](auto& r) -> auto& { return r.GetUndulationMemento(); },
          &P::SetUndulationMemento),
      MakeProperty<P>("attribute_1", &P::GetAttribute1, &P::SetAttribute1, "50 by default."),
      MakeProperty<P>("attribute_2", &P::GetAttribute2, &P::SetAttribute2),
      MakeProperty<P>("attribute_3", &P::GetAttribute3, &P::SetAttribute3),
      MakeProperty<P>("attribute_4", &P::GetAttribute4, &P::SetAttribute4),
      MakeProperty<P>("attribute_5", &P::GetAttribute5, &P::SetAttribute5))
      .def_prop_ro("dimension", &P::GetDimension, "The number of valid coordinates.")
      .def(
          "std_dev",
          [asOptional](const P& self, std::uint16_t axis) {
            float result = 0;
            const bool is = self.GetStdDev(axis, &result);
            return asOptional(is, result);
          },
          "axis"_a, "The standard deviation of the coordinate of an axis, 1 to 3, or None.")
      .def(
          "combined_std_dev",
          [asOptional](const P& self, std::uint16_t selector) {
            float result = 0;
            const bool is = self.GetCombinedStdDev(selector, &result);
            return asOptional(is, result);
          },
          "selector"_a,
          "That of the height (1), the plane position (2) or the whole position (3), or None.");

  using R = RectangleC;
  BindDataClass<R>(
      module, "Rectangle",
      "An area between two corners in a reference system. The three parts are its own. There is no "
      "equality: == tests for the same object.",
      MakeProperty<R>(
          "crs", [](auto& r) -> auto& { return r.GetCRS(); }, &R::SetCRS, "The reference system."),
      MakeProperty<R>(
          "bottom_left", [](auto& r) -> auto& { return r.GetBottomLeft(); }, &R::SetBottomLeft),
      MakeProperty<R>(
          "top_right", [](auto& r) -> auto& { return r.GetTopRight(); }, &R::SetTopRight));

  using D = DisplayAttributesC;
  BindDataClass<D>(
      module, "DisplayAttributes",
      "Display settings whose meaning the caller defines. There is no equality: == tests for "
      "the same object.",
      MakeProperty<D>("mode", &D::GetMode, &D::SetMode),
      MakeProperty<D>("param_1", &D::GetParam1, &D::SetParam1),
      MakeProperty<D>("param_2", &D::GetParam2, &D::SetParam2),
      MakeProperty<D>("param_3", &D::GetParam3, &D::SetParam3),
      MakeProperty<D>("param_4", &D::GetParam4, &D::SetParam4),
      MakeProperty<D>("param_5", &D::GetParam5, &D::SetParam5),
      MakeProperty<D>("param_6", &D::GetParam6, &D::SetParam6),
      MakeProperty<D>("options", &D::GetOptions, &D::SetOptions));

  using I = InstrumentInfoDataC;
  BindDataClass<I>(
      module, "InstrumentInfoData", "The description of an instrument.",
      MakeText<I>(
          "identifier", [](const I& r) { return r.GetIdentifier().GetData(); },
          [](I& r, const char16_t* text) { r.SetIdentifier(text); }, 16, "Up to 16 UTF-16 units."),
      Flags<I>(), MakeProperty<I>("text_1", &I::GetText1, &I::SetText1),
      MakeProperty<I>("text_2", &I::GetText2, &I::SetText2),
      MakeProperty<I>("text_3", &I::GetText3, &I::SetText3),
      MakeProperty<I>("text_4", &I::GetText4, &I::SetText4),
      MakeProperty<I>("value", &I::GetValue, &I::SetValue),
      MakeProperty<I>("number_1", &I::GetNumber1, &I::SetNumber1),
      MakeProperty<I>("number_2", &I::GetNumber2, &I::SetNumber2),
      MakeProperty<I>("number_3", &I::GetNumber3, &I::SetNumber3),
      MakeProperty<I>("number_4", &I::GetNumber4, &I::SetNumber4));
}

// ----- GNSS

using Height = std::pair<float, bool>;

Height HeightOf(const GPSAntHeightC& r) {
  Height height;
  r.GetHeight(height.first, height.second);
  return height;
}

std::uint16_t ToTenths(const char* name, double dop) {
  const double tenths = std::round(dop * 10);
  if (!(0 <= tenths && tenths < SDI::DOP_NOT_AVAILABLE) || std::fabs(tenths - dop * 10) > 1e-6) {
    throw nb::value_error(
        (std::string(name) + ": a dilution of precision has whole tenths, from 0 to 6553.4")
            .c_str());
  }
  return static_cast<std::uint16_t>(tenths);
}

std::optional<double> AvailableDOP(double dop) {
  return dop < 0 ? std::nullopt : std::optional(dop);
}

// A copy of a part of a reference station.
template <class Public, class Part>
std::optional<Public> CopyIf(bool isValid, const Part& part) {
  if (!isValid) return {};
  Public copy;
  *copy.GetImpl() = part;
  return copy;
}

void AddStations(nb::module_& module) {
  using A = GPSAntHeightC;
  BindDataClass<A>(
      module, "GPSAntHeight",
      "An antenna height as measured, vertical or slant to a point at a horizontal offset; metres.",
      MakeProperty<A>(
          "height", [](const A& r) { return HeightOf(r).first; },
          [](A& r, float height) { r.SetHeight(height, HeightOf(r).second); }),
      MakeProperty<A>(
          "is_vertical", [](const A& r) { return HeightOf(r).second; },
          [](A& r, bool isVertical) { r.SetHeight(HeightOf(r).first, isVertical); }),
      MakeProperty<A>("horizontal_offset", &A::GetHorizontalOffset, &A::SetHorizontalOffset))
      .def_prop_ro("vertical_height", &A::GetVerticalHeight, "The height above the mark.");

  using D = GPSDOPsC;
  const auto dop = [](const char* name, double (D::*get)() const, std::size_t place) {
    return MakeConstant<D>(
        name, [get](const D& r) { return AvailableDOP((r.*get)()); },
        [name, place](D& r, double value) {
          SDI::GPSDOPsImplC& stored = *r.GetImpl();
          std::array<std::uint16_t, 3> tenths = {stored.GetHDOPTenths(), stored.GetVDOPTenths(),
                                                 stored.GetTDOPTenths()};
          tenths[place] = ToTenths(name, value);
          stored = SDI::GPSDOPsImplC(tenths[0], tenths[1], tenths[2]);
        },
        "None when it is not available.");
  };
  BindDataClass<D>(module, "GPSDOPs",
                   "The dilutions of precision of a position fix, in tenths. They never change.",
                   dop("hdop", &D::GetHDOP, 0), dop("vdop", &D::GetVDOP, 1),
                   dop("tdop", &D::GetTDOP, 2))
      .def_prop_ro(
          "pdop", [](const D& self) { return AvailableDOP(self.GetPDOP()); },
          "That of the position, computed from hdop and vdop; None without one of these.")
      .def_prop_ro(
          "gdop", [](const D& self) { return AvailableDOP(self.GetGDOP()); },
          "The geometric dilution, of all three; None without one of these.");

  using S = GPSRefStationDataC;
  using Impl = SDI::GPSRefStationDataImplC;
  BindDataClass<S>(
      module, "GPSRefStationData",
      "A reference station. It never changes. A part that is given is valid; reference system and "
      "point are valid together.",
      MakeConstant<S>("station_number", &S::GetStationNumber,
                      [](S& r, std::uint16_t number) { r.GetImpl()->stationNumber = number; }),
      MakeConstant<S>("station_kind", &S::GetStationKind,
                      [](S& r, std::uint8_t kind) { r.GetImpl()->stationKind = kind; }),
      MakeConstant<S>("station_code_2", &S::GetStationCode2,
                      [](S& r, std::uint8_t code) { r.GetImpl()->stationCode2 = code; }),
      MakeConstant<S>("is_flag_3_set", &S::IsFlag3Set,
                      [](S& r, bool isSet) {
                        if (isSet) r.GetImpl()->validMask |= Impl::kFlag3;
                      }),
      MakeConstant<S>(
          "reference_system",
          [](const S& r) {
            return CopyIf<CoordinateReferenceSystemC>(r.IsPositionValid(),
                                                      r.GetImpl()->referenceSystem);
          },
          [](S& r, const CoordinateReferenceSystemC& part) {
            r.GetImpl()->referenceSystem = *part.GetImpl();
            r.GetImpl()->validMask |= Impl::kPositionValid;
          },
          "A copy, or None."),
      MakeConstant<S>(
          "point",
          [](const S& r) {
            return CopyIf<CoordinatePointC>(r.IsPositionValid(), r.GetImpl()->point);
          },
          [](S& r, const CoordinatePointC& part) {
            r.GetImpl()->point = *part.GetImpl();
            r.GetImpl()->validMask |= Impl::kPositionValid;
          },
          "A copy, or None."),
      MakeConstant<S>(
          "antenna_height",
          [](const S& r) {
            return CopyIf<GPSAntHeightC>(r.IsAntennaHeightValid(), r.GetImpl()->antennaHeight);
          },
          [](S& r, const GPSAntHeightC& part) {
            r.GetImpl()->antennaHeight = *part.GetImpl();
            r.GetImpl()->validMask |= Impl::kAntennaHeightValid;
          },
          "A copy, or None."));
}

// A measurement with the frame from which it was decoded.
class MeasurementC : public SDI::GPSMeasDataC {
 public:
  MeasurementC() = default;
  explicit MeasurementC(std::vector<std::uint8_t> frame) : frame_(std::move(frame)) {
    if (frame_.empty()) return;
    SDI::GPSRecordFileInfo info;
    const SDI::GPSDecodeResult result = SDI::GPSRecordReaderC::Decode(frame_, *GetImpl(), info);
    if (result.outcome != SDI::GPSRecordOutcome::kDone) {
      throw nb::value_error(SDI::TextOf(result.outcome));
    }
  }

  const std::vector<std::uint8_t>& Frame() const { return frame_; }

  using Values = std::vector<std::uint16_t>;
  Values GetValues() const {
    Values values;
    for (std::uint8_t i = 0; i < GetValueCount(); ++i) values.push_back(GetValue(i));
    return values;
  }
  void SetAll(const Values& values) {
    if (values.size() > 2) throw nb::value_error("values: a measurement has two at most");
    SetValues(values.data(), static_cast<std::uint8_t>(values.size()));
  }
  void ChangeValues(const std::vector<Integer>& given) {
    Values values;
    for (const Integer& value : given) {
      values.push_back(static_cast<std::uint16_t>(ToInteger("values", value, 0, 0xFFFF)));
    }
    SetAll(values);
  }
  std::optional<GPSAntHeightC> HeldAntennaHeight() const {
    GPSAntHeightC height;
    return GetAntennaHeight(height) ? std::optional(height) : std::nullopt;
  }

 private:
  std::vector<std::uint8_t> frame_;
};

nb::bytes ToBytes(const std::vector<std::uint8_t>& bytes) {
  return nb::bytes(bytes.data(), bytes.size());
}

std::vector<std::uint8_t> FromBytes(nb::handle bytes) {
  const BufferC buffer(bytes);
  if (!buffer.IsContiguous()) throw nb::value_error("the bytes have gaps");
  return {buffer.GetBytes(), buffer.GetBytes() + buffer.GetByteCount()};
}

void AddMeasurements(nb::module_& module) {
  using M = MeasurementC;
  using Pair = std::optional<std::pair<std::uint8_t, std::uint8_t>>;
  const auto pair = [](bool (SDI::GPSMeasDataC::*get)(std::uint8_t&, std::uint8_t&) const) {
    return [get](const M& self) -> Pair {
      std::uint8_t first = 0;
      std::uint8_t second = 0;
      if (!(self.*get)(first, second)) return {};
      return std::pair(first, second);
    };
  };
  const auto time = [](Vorlin::TimeC (SDI::GPSMeasDataC::*get)() const) {
    return [get](const M& self) {
      const Vorlin::TimeC stored = (self.*get)();
      return std::tuple<std::uint16_t, std::int32_t>(stored.week, stored.timeOfWeek);
    };
  };
  nb::class_<M> cls(
      module, "GPSMeasData",
      "One GNSS measurement. Without a frame it has only an antenna height and values. "
      "Fields that are not set are None.");
  cls.def(
         "__init__",
         [](M* self, const std::optional<nb::object>& frame, const GPSAntHeightC* antennaHeight,
            const std::optional<std::vector<Integer>>& values) {
           M made(frame ? FromBytes(*frame) : std::vector<std::uint8_t>());
           if (antennaHeight != nullptr) made.SetAntennaHeight(*antennaHeight);
           if (values) made.ChangeValues(*values);
           new (self) M(made);
         },
         nb::kw_only(), "frame"_a.none() = nb::none(), "antenna_height"_a.none() = nb::none(),
         "values"_a.none() = nb::none(),
         "The measurement of a whole frame. Raises ValueError with the reason for other bytes.",
         nb::sig("def __init__(self, *, frame: bytes | bytearray | memoryview | None = None, "
                 "antenna_height: GPSAntHeight | None = None, "
                 "values: collections.abc.Sequence[int] | None = None) -> None"))
      .def_prop_ro("time_a", time(&SDI::GPSMeasDataC::GetTimeA),
                   "Week of GPS time, and milliseconds of the week.")
      .def_prop_ro("time_b", time(&SDI::GPSMeasDataC::GetTimeB))
      .def_prop_ro("status_bit_0", [](const M& self) { return self.IsStatusBit0(); })
      .def_prop_ro("status_bit_1", [](const M& self) { return self.IsStatusBit1(); })
      .def_prop_ro("status_bit_2", [](const M& self) { return self.IsStatusBit2(); })
      .def_prop_ro("status_bit_3", [](const M& self) { return self.IsStatusBit3(); })
      .def_prop_ro("system_1_used", [](const M& self) { return self.IsSystem1Used(); })
      .def_prop_ro("system_2_used", [](const M& self) { return self.IsSystem2Used(); })
      .def_prop_rw(
          "antenna_height", &M::HeldAntennaHeight,
          [](M& self, const GPSAntHeightC& height) { self.SetAntennaHeight(height); },
          nb::for_setter("value"_a), "A copy.")
      .def_prop_rw("values", &M::GetValues, &M::ChangeValues, nb::for_setter("value"_a),
                   "Up to two numbers, as a new list.")
      .def_prop_ro("dops",
                   [](const M& self) {
                     GPSDOPsC dops;
                     return self.GetDOPs(dops) ? std::optional(dops) : std::nullopt;
                   })
      .def_prop_ro("word_16",
                   [](const M& self) {
                     std::uint16_t word = 0;
                     return self.GetWord16(word) ? std::optional(word) : std::nullopt;
                   })
      .def_prop_ro("total_pair", pair(&SDI::GPSMeasDataC::GetTotalPair))
      .def_prop_ro("system_1_pair", pair(&SDI::GPSMeasDataC::GetSystem1Pair))
      .def_prop_ro("system_2_pair", pair(&SDI::GPSMeasDataC::GetSystem2Pair))
      .def_prop_ro("system_3_pair", pair(&SDI::GPSMeasDataC::GetSystem3Pair))
      .def_prop_ro(
          "vector",
          [](const M& self) -> std::optional<std::tuple<double, double, double>> {
            double vector[3] = {};
            if (!self.GetVector(vector)) return {};
            return std::tuple(vector[0], vector[1], vector[2]);
          },
          "Three components in metres.")
      .def_prop_ro("flag_a", [](const M& self) { return self.GetFlagA(); })
      .def_prop_ro("value_b", [](const M& self) { return self.GetValueB(); })
      .def_prop_ro("value_c",
                   [](const M& self) {
                     return self.IsValueCSet() ? std::optional(self.GetValueC()) : std::nullopt;
                   })
      .def_prop_ro("flag_e", [](const M& self) { return self.GetFlagE(); })
      .def("__repr__",
           [](const M& self) {
             const Vorlin::TimeC at = self.GetTimeA();
             return "<GPSMeasData at " + std::to_string(at.timeOfWeek) + " ms of GPS week " +
                    std::to_string(at.week) + ">";
           })
      .def(
          "__getstate__",
          [](const M& self) {
            return nb::make_tuple(ToBytes(self.Frame()), self.HeldAntennaHeight(),
                                  self.GetValues());
          },
          nb::sig(kGetState))
      .def(
          "__setstate__",
          [](M* self, const nb::tuple& state) {
            RestoreFrom(state, 3, [&] {
              M made(FromBytes(state[0]));
              // Only what was changed after decoding; setting a value would mark it as present.
              const auto height = nb::cast<std::optional<GPSAntHeightC>>(state[1]);
              const std::optional<GPSAntHeightC> held = made.HeldAntennaHeight();
              if (height && !(held && held->IsEqual(*height))) made.SetAntennaHeight(*height);
              const auto values = nb::cast<M::Values>(state[2]);
              if (values != made.GetValues()) made.SetAll(values);
              new (self) M(made);
            });
          },
          "state"_a, nb::sig(kSetState));
  BindCopies(cls);
}

// ----- Total stations, images, scans

void AddTotalStations(nb::module_& module) {
  using S = SDI::TPSSetupDataC;
  BindDataClass<S>(module, "TPSSetupData", "The set-up of a total station.",
                   MakeProperty<S>("value_1", &S::GetValue1, &S::SetValue1), Flags<S>(),
                   MakeProperty<S>("byte_1", &S::GetByte1, &S::SetByte1),
                   MakeProperty<S>("value_2", &S::GetValue2, &S::SetValue2),
                   MakeProperty<S>("value_3", &S::GetValue3, &S::SetValue3),
                   MakeProperty<S>("value_4", &S::GetValue4, &S::SetValue4),
                   MakeProperty<S>("value_5", &S::GetValue5, &S::SetValue5),
                   MakeProperty<S>("single_1", &S::GetSingle1, &S::SetSingle1),
                   MakeProperty<S>("single_2", &S::GetSingle2, &S::SetSingle2),
                   MakeProperty<S>("single_3", &S::GetSingle3, &S::SetSingle3),
                   MakeProperty<S>("word_1", &S::GetWord1, &S::SetWord1),
                   MakeProperty<S>("word_2", &S::GetWord2, &S::SetWord2),
                   MakeProperty<S>("word_3", &S::GetWord3, &S::SetWord3));

  using M = SDI::TPSMeasDataC;
  BindDataClass<M>(module, "TPSMeasData", "One measurement of a total station.",
                   MakeText<M>("text", &M::GetText, &M::SetText, 16, "Up to 16 UTF-16 units."),
                   MakeProperty<M>("value_1", &M::GetValue1, &M::SetValue1),
                   MakeProperty<M>("value_2", &M::GetValue2, &M::SetValue2),
                   MakeProperty<M>("value_3", &M::GetValue3, &M::SetValue3),
                   MakeProperty<M>("value_4", &M::GetValue4, &M::SetValue4),
                   MakeProperty<M>("value_5", &M::GetValue5, &M::SetValue5),
                   MakeProperty<M>("value_6", &M::GetValue6, &M::SetValue6),
                   MakeProperty<M>("single_1", &M::GetSingle1, &M::SetSingle1),
                   MakeProperty<M>("value_7", &M::GetValue7, &M::SetValue7),
                   MakeProperty<M>("value_8", &M::GetValue8, &M::SetValue8),
                   MakeProperty<M>("value_9", &M::GetValue9, &M::SetValue9),
                   MakeProperty<M>("value_10", &M::GetValue10, &M::SetValue10),
                   MakeProperty<M>("value_11", &M::GetValue11, &M::SetValue11),
                   MakeProperty<M>("single_2", &M::GetSingle2, &M::SetSingle2),
                   MakeProperty<M>("single_3", &M::GetSingle3, &M::SetSingle3),
                   MakeProperty<M>("single_4", &M::GetSingle4, &M::SetSingle4),
                   MakeProperty<M>("single_5", &M::GetSingle5, &M::SetSingle5),
                   MakeProperty<M>("single_6", &M::GetSingle6, &M::SetSingle6),
                   MakeProperty<M>("word_1", &M::GetWord1, &M::SetWord1),
                   MakeProperty<M>("word_2", &M::GetWord2, &M::SetWord2),
                   MakeProperty<M>("word_3", &M::GetWord3, &M::SetWord3),
                   MakeProperty<M>("word_4", &M::GetWord4, &M::SetWord4),
                   MakeProperty<M>("word_5", &M::GetWord5, &M::SetWord5),
                   MakeProperty<M>("word_6", &M::GetWord6, &M::SetWord6),
                   MakeProperty<M>("word_7", &M::GetWord7, &M::SetWord7),
                   MakeProperty<M>("word_8", &M::GetWord8, &M::SetWord8), Flags<M>(),
                   MakeProperty<M>("word_9", &M::GetWord9, &M::SetWord9));

  using C = SDI::TPSCorrectionDataC;
  BindDataClass<C>(module, "TPSCorrectionData", "The corrections of a total station.",
                   MakeProperty<C>("value_1", &C::GetValue1, &C::SetValue1),
                   MakeProperty<C>("value_2", &C::GetValue2, &C::SetValue2),
                   MakeProperty<C>("value_3", &C::GetValue3, &C::SetValue3),
                   MakeProperty<C>("scale_factor", &C::GetScaleFactor, &C::SetScaleFactor),
                   MakeProperty<C>("value_5", &C::GetValue5, &C::SetValue5),
                   MakeProperty<C>("value_6", &C::GetValue6, &C::SetValue6),
                   MakeProperty<C>("value_7", &C::GetValue7, &C::SetValue7),
                   MakeProperty<C>("value_8", &C::GetValue8, &C::SetValue8),
                   MakeProperty<C>("single_1", &C::GetSingle1, &C::SetSingle1),
                   MakeProperty<C>("single_2", &C::GetSingle2, &C::SetSingle2),
                   MakeProperty<C>("single_3", &C::GetSingle3, &C::SetSingle3),
                   MakeProperty<C>("single_4", &C::GetSingle4, &C::SetSingle4), Flags<C>())
      .def_static("scale_from_ppm", &C::ScaleFromPpm, "ppm"_a,
                  "The scale factor of a correction in parts per million.")
      .def_static("ppm_from_scale", &C::PpmFromScale, "scale"_a,
                  "The correction of a scale factor in parts per million.");

  using K = SDI::TPSCalibrationDataC;
  BindDataClass<K>(module, "TPSCalibrationData", "The calibration of a total station.",
                   MakeProperty<K>("value_1", &K::GetValue1, &K::SetValue1),
                   MakeProperty<K>("value_2", &K::GetValue2, &K::SetValue2),
                   MakeProperty<K>("value_3", &K::GetValue3, &K::SetValue3),
                   MakeProperty<K>("value_4", &K::GetValue4, &K::SetValue4),
                   MakeProperty<K>("value_5", &K::GetValue5, &K::SetValue5),
                   MakeProperty<K>("value_6", &K::GetValue6, &K::SetValue6),
                   MakeProperty<K>("value_7", &K::GetValue7, &K::SetValue7),
                   MakeProperty<K>("value_8", &K::GetValue8, &K::SetValue8));
}

void AddImages(nb::module_& module) {
  using C = SDI::ImgCameraInfoC;
  BindDataClass<C>(module, "ImgCameraInfo", "The description of a camera.",
                   MakeProperty<C>("int_1", &C::GetInt1, &C::SetInt1),
                   MakeProperty<C>("int_2", &C::GetInt2, &C::SetInt2),
                   MakeProperty<C>("int_3", &C::GetInt3, &C::SetInt3),
                   MakeProperty<C>("real_1", &C::GetReal1, &C::SetReal1),
                   MakeProperty<C>("real_2", &C::GetReal2, &C::SetReal2),
                   MakeProperty<C>("real_3", &C::GetReal3, &C::SetReal3),
                   MakeProperty<C>("real_4", &C::GetReal4, &C::SetReal4),
                   MakeProperty<C>("int_4", &C::GetInt4, &C::SetInt4),
                   MakeProperty<C>("int_5", &C::GetInt5, &C::SetInt5));

  using W = SDI::ImgChipWindowInfoC;
  BindDataClass<W>(module, "ImgChipWindowInfo", "A window on the image chip.",
                   MakeProperty<W>("value_1", &W::GetValue1, &W::SetValue1),
                   MakeProperty<W>("value_2", &W::GetValue2, &W::SetValue2),
                   MakeProperty<W>("value_3", &W::GetValue3, &W::SetValue3),
                   MakeProperty<W>("value_4", &W::GetValue4, &W::SetValue4));

  using E = SDI::ImgExteriorOrientationC;
  BindDataClass<E>(module, "ImgExteriorOrientation", "The exterior orientation of a camera.",
                   MakeProperty<E>("value_1", &E::GetValue1, &E::SetValue1),
                   MakeProperty<E>("value_2", &E::GetValue2, &E::SetValue2),
                   MakeProperty<E>("value_3", &E::GetValue3, &E::SetValue3),
                   MakeProperty<E>("value_4", &E::GetValue4, &E::SetValue4),
                   MakeProperty<E>("value_5", &E::GetValue5, &E::SetValue5),
                   MakeProperty<E>("value_6", &E::GetValue6, &E::SetValue6));

  using I = SDI::ImgInteriorOrientationC;
  BindDataClass<I>(module, "ImgInteriorOrientation", "The interior orientation of a camera.",
                   MakeProperty<I>("model_code", &I::GetModelCode, &I::SetModelCode),
                   MakeProperty<I>("value_1", &I::GetValue1, &I::SetValue1),
                   MakeProperty<I>("value_2", &I::GetValue2, &I::SetValue2),
                   MakeProperty<I>("value_3", &I::GetValue3, &I::SetValue3),
                   MakeProperty<I>("value_4", &I::GetValue4, &I::SetValue4),
                   MakeProperty<I>("value_5", &I::GetValue5, &I::SetValue5),
                   MakeProperty<I>("value_6", &I::GetValue6, &I::SetValue6));

  using P = ScanDefPointC;
  BindDataClass<P>(
      module, "ScanDefPoint",
      "A direction in radians, with a distance in metres where there is one. Equality ignores "
      "distances.",
      MakeProperty<P>("hz", &P::GetHz, &P::SetHz), MakeProperty<P>("v", &P::GetV, &P::SetV),
      MakeProperty<P>("distance", &P::GetDistance, &P::SetDistance, "-1 by default."))
      .def_prop_ro("has_distance", &P::HasDistance, "Whether the distance is above 0.")
      .def("clear_distance", &P::ClearDistance, "Sets the distance to -1.");
}

}  // namespace

void AddObjects(nb::module_& module) {
  AddPoints(module);
  AddPositions(module);
  AddStations(module);
  AddMeasurements(module);
  AddTotalStations(module);
  AddImages(module);
}

}  // namespace Python
