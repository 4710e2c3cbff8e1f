#ifndef SURVEYDATA_TESTS_SUPPORT_RECORD_FIELD_LISTS_H_
#define SURVEYDATA_TESTS_SUPPORT_RECORD_FIELD_LISTS_H_

#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <surveydata/surveydata.h>

/// \file
/// The fields of the records by name, in order, for tests that treat all records alike.
///
/// `FieldsOf<Record>()` lists them; the name of a field of a part is prefixed with that of the
/// part, as in "Quality.Matrix.Q11". `DifferingFields(a, b)` names the fields in which two records
/// differ.

namespace Records {

/// How the equality of a record compares a field.
enum class Compared { kExactly, kWithTolerance };

/// How a field is read and written. The records are passed without their class: a function object
/// for each operation on each field would take compilers five times as long.
class AccessC {
 public:
  AccessC() = default;
  AccessC(const AccessC&) = delete;
  AccessC& operator=(const AccessC&) = delete;
  virtual ~AccessC() = default;

  virtual std::string Show(const void* record) const = 0;
  virtual void Fill(void* record, int seed) const = 0;
  virtual std::string Filled(int seed) const = 0;
  virtual void Move(void* record, int units) const = 0;
  virtual bool IsFloatingPoint() const = 0;
  virtual void Spoil(void* record) const = 0;
};

/// One field of a `Record`, read and written through its accessors.
template <class Record>
struct Field {
  std::string name;
  Compared compared;
  std::shared_ptr<const AccessC> access;

  /// The value as text, different for different values.
  std::string Show(const Record& record) const { return access->Show(&record); }
  /// Writes a value that is not the default of any field; a different `seed` gives a different
  /// value, except for a bool.
  void Fill(Record& record, int seed) const { access->Fill(&record, seed); }
  /// The result of `Show` after `Fill` with the same seed.
  std::string Filled(int seed) const { return access->Filled(seed); }
  /// Changes an integer by `units`, a floating-point number by `units` in the last place, and a
  /// text or a bool unless `units` is 0.
  void Move(Record& record, int units) const { access->Move(&record, units); }
  bool IsFloatingPoint() const { return access->IsFloatingPoint(); }
  /// Writes NaN. Only for floating-point numbers.
  void Spoil(Record& record) const { access->Spoil(&record); }
};

template <class Record>
using Fields = std::vector<Field<Record>>;

// The result of a getter, as a value.
template <class T>
struct Held : std::type_identity<T> {};
template <>
struct Held<const char*> : std::type_identity<std::string> {};
template <>
struct Held<const char16_t*> : std::type_identity<std::u16string> {};

inline std::string Show(const std::string& text) { return text; }

inline std::string Show(const std::u16string& text) {
  std::string shown;
  for (const char16_t unit : text) {
    char escape[8];
    std::snprintf(escape, sizeof(escape), unit < 0x80 ? "%c" : "\\u%04X", unsigned{unit});
    shown += escape;
  }
  return shown;
}

template <class Number>
std::string Show(Number value) {
  if constexpr (std::floating_point<Number>) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.17g", double{value});
    return text;
  } else {
    return std::to_string(value);
  }
}

template <class Value>
Value Sample(int seed) {
  if constexpr (std::same_as<Value, bool>) {
    return false;  // the one bool of the records is true by default
  } else if constexpr (std::floating_point<Value>) {
    return static_cast<Value>(seed + 1.25);
  } else if constexpr (std::integral<Value>) {
    return static_cast<Value>(seed + 3);
  } else {
    using Unit = typename Value::value_type;
    return {Unit{'S'}, static_cast<Unit>('a' + seed % 26)};
  }
}

template <class Value>
Value Moved(Value value, int units) {
  if constexpr (std::same_as<Value, bool>) {
    return value != (units != 0);
  } else if constexpr (std::floating_point<Value>) {
    const Value target = std::copysign(std::numeric_limits<Value>::infinity(), Value(units));
    for (int i = std::abs(units); i > 0; --i) value = std::nextafter(value, target);
    return value;
  } else if constexpr (std::integral<Value>) {
    return static_cast<Value>(value + static_cast<Value>(units));
  } else {
    using Unit = typename Value::value_type;
    value.back() = static_cast<Unit>(value.back() + units % 32);
    return value;
  }
}

// Accessors of a field of `Record`: members, or functions of the record.
template <class Record, class Get, class Set>
class FieldAccessC : public AccessC {
 public:
  using Value = typename Held<std::remove_cvref_t<std::invoke_result_t<Get, const Record&>>>::type;

  FieldAccessC(Get get, Set set) : get_(get), set_(set) {}

  std::string Show(const void* record) const override { return Records::Show(Read(record)); }
  void Fill(void* record, int seed) const override { Write(record, Sample<Value>(seed)); }
  std::string Filled(int seed) const override { return Records::Show(Sample<Value>(seed)); }
  void Move(void* record, int units) const override { Write(record, Moved(Read(record), units)); }
  bool IsFloatingPoint() const override { return std::floating_point<Value>; }
  void Spoil(void* record) const override {
    if constexpr (std::floating_point<Value>) {
      Write(record, std::numeric_limits<Value>::quiet_NaN());
    } else {
      throw std::logic_error("only a floating-point number can be NaN");
    }
  }

 private:
  Value Read(const void* record) const {
    return Value(std::invoke(get_, *static_cast<const Record*>(record)));
  }
  void Write(void* record, const Value& value) const {
    if constexpr (requires { value.c_str(); }) {
      std::invoke(set_, *static_cast<Record*>(record), value.c_str());
    } else {
      std::invoke(set_, *static_cast<Record*>(record), value);
    }
  }

  Get get_;
  Set set_;
};

template <class Record, class Get, class Set>
Field<Record> MakeField(const char* name, Get get, Set set) {
  using Access = FieldAccessC<Record, Get, Set>;
  const AccessC* const access = new Access(get, set);
  return {
      name,
      std::floating_point<typename Access::Value> ? Compared::kWithTolerance : Compared::kExactly,
      std::shared_ptr<const AccessC>(access)};
}

// Accesses a field of a part through the part's accessors.
template <class Record, class Get, class Set>
class PartAccessC : public AccessC {
 public:
  using Part = std::remove_cvref_t<std::invoke_result_t<Get, const Record&>>;

  PartAccessC(Get get, Set set, std::shared_ptr<const AccessC> part)
      : get_(get), set_(set), part_(std::move(part)) {}

  std::string Show(const void* record) const override {
    const Part& part = std::invoke(get_, *static_cast<const Record*>(record));
    return part_->Show(&part);
  }
  void Fill(void* record, int seed) const override {
    Change(record, [&](Part& part) { part_->Fill(&part, seed); });
  }
  std::string Filled(int seed) const override { return part_->Filled(seed); }
  void Move(void* record, int units) const override {
    Change(record, [&](Part& part) { part_->Move(&part, units); });
  }
  bool IsFloatingPoint() const override { return part_->IsFloatingPoint(); }
  void Spoil(void* record) const override {
    Change(record, [&](Part& part) { part_->Spoil(&part); });
  }

 private:
  template <class How>
  void Change(void* record, How how) const {
    Record& changed = *static_cast<Record*>(record);
    Part copy(std::invoke(get_, changed));
    how(copy);
    std::invoke(set_, changed, copy);
  }

  Get get_;
  Set set_;
  std::shared_ptr<const AccessC> part_;
};

// The fields of a part with the given accessors, as fields of `Record`.
template <class Record, class Get, class Set>
Fields<Record> FieldsOfPart(const std::string& name, Get get, Set set,
                            const Fields<typename PartAccessC<Record, Get, Set>::Part>& parts) {
  Fields<Record> fields;
  for (const auto& part : parts) {
    const AccessC* const access = new PartAccessC<Record, Get, Set>(get, set, part.access);
    fields.push_back(
        {name + "." + part.name, part.compared, std::shared_ptr<const AccessC>(access)});
  }
  return fields;
}

template <class Record, class... More>
Fields<Record> Join(Fields<Record> fields, const More&... more) {
  (fields.insert(fields.end(), more.begin(), more.end()), ...);
  return fields;
}

template <class Record>
Fields<Record> Exactly(Fields<Record> fields) {
  for (auto& field : fields) field.compared = Compared::kExactly;
  return fields;
}

// The setter of a flags word, as a setter of its value.
template <class Record>
Field<Record> FlagsField() {
  return MakeField<Record>("Flags", &Record::GetFlags,
                           [](Record& r, std::uint32_t flags) { r.SetFlags(flags, ~flags); });
}

template <class T, class... Choices>
concept OneOf = (std::same_as<T, Choices> || ...);

// One list for both sides of a pair if their accessors have the same names.

template <OneOf<ODM::CoordinatePointC, SDI::CoordinatePointC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("X", &R::GetX, &R::SetX), MakeField<R>("Y", &R::GetY, &R::SetY),
          MakeField<R>("Z", &R::GetZ, &R::SetZ)};
}

template <OneOf<ODM::QMatrixC, SDI::QMatrixC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Q11", &R::GetQ11, &R::SetQ11), MakeField<R>("Q12", &R::GetQ12, &R::SetQ12),
          MakeField<R>("Q13", &R::GetQ13, &R::SetQ13), MakeField<R>("Q22", &R::GetQ22, &R::SetQ22),
          MakeField<R>("Q23", &R::GetQ23, &R::SetQ23), MakeField<R>("Q33", &R::GetQ33, &R::SetQ33)};
}

template <OneOf<ODM::CoordinateQualityC, SDI::CoordinateQualityC> R>
Fields<R> FieldsOf() {
  using Matrix = std::remove_cvref_t<decltype(std::declval<const R&>().GetMatrix())>;
  return Join(Fields<R>{MakeField<R>("Sigma", &R::GetSigma, &R::SetSigma)},
              FieldsOfPart<R>(
                  "Matrix", [](const R& r) -> decltype(auto) { return r.GetMatrix(); },
                  &R::SetMatrix, FieldsOf<Matrix>()),
              Fields<R>{MakeField<R>("ValidAxes", &R::GetValidAxes, &R::SetValidAxes)});
}

template <OneOf<ODM::CoordinateReferenceSystemC, SDI::CoordinateReferenceSystemC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Kind", &R::GetKind, &R::SetKind),
          MakeField<R>("Variant", &R::GetVariant, &R::SetVariant),
          MakeField<R>("HasHeight", &R::GetHasHeight, &R::SetHasHeight)};
}

// A memento has no setters: it is changed by assignment.
template <OneOf<ODM::UndulationMementoC, SDI::UndulationMementoC> R>
Fields<R> FieldsOf() {
  return {
      MakeField<R>("Undulation", &R::GetUndulation,
                   [](R& r, float undulation) { r = R(undulation, r.GetSource(), r.GetValid()); }),
      MakeField<R>(
          "Source", &R::GetSource,
          [](R& r, std::int32_t source) { r = R(r.GetUndulation(), source, r.GetValid()); }),
      MakeField<R>("Valid", &R::GetValid, [](R& r, std::uint8_t valid) {
        r = R(r.GetUndulation(), r.GetSource(), valid);
      })};
}

template <OneOf<ODM::PositionC, SDI::PositionC> R>
Fields<R> FieldsOf() {
  const auto part = [](const char* name, auto get, auto set) {
    using Part = std::remove_cvref_t<std::invoke_result_t<decltype(get), const R&>>;
    return FieldsOfPart<R>(name, get, set, FieldsOf<Part>());
  };
  return Join(part(
                  "CRS", [](const R& r) -> auto& { return r.GetCRS(); }, &R::SetCRS),
              part(
                  "Point", [](const R& r) -> auto& { return r.GetCoordinatePoint(); },
                  &R::SetCoordinatePoint),
              part(
                  "Quality", [](const R& r) -> auto& { return r.GetCoordinateQuality(); },
                  &R::SetCoordinateQuality),
              part(
                  "Undulation", [](const R& r) -> auto& { return r.GetUndulationMemento(); },
                  &R::SetUndulationMemento),
              Fields<R>{MakeField<R>("Attribute1", &R::GetAttribute1, &R::SetAttribute1),
                        MakeField<R>("Attribute2", &R::GetAttribute2, &R::SetAttribute2),
                        MakeField<R>("Attribute3", &R::GetAttribute3, &R::SetAttribute3),
                        MakeField<R>("Attribute4", &R::GetAttribute4, &R::SetAttribute4),
                        MakeField<R>("Attribute5", &R::GetAttribute5, &R::SetAttribute5)});
}

template <OneOf<ODM::RectangleC, SDI::RectangleC> R>
Fields<R> FieldsOf() {
  const auto part = [](const char* name, auto get, auto set) {
    using Part = std::remove_cvref_t<std::invoke_result_t<decltype(get), const R&>>;
    return FieldsOfPart<R>(name, get, set, FieldsOf<Part>());
  };
  return Join(
      part(
          "CRS", [](const R& r) -> auto& { return r.GetCRS(); }, &R::SetCRS),
      part(
          "BottomLeft", [](const R& r) -> auto& { return r.GetBottomLeft(); }, &R::SetBottomLeft),
      part(
          "TopRight", [](const R& r) -> auto& { return r.GetTopRight(); }, &R::SetTopRight));
}

template <OneOf<ODM::DisplayAttributesC, SDI::DisplayAttributesC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Mode", &R::GetMode, &R::SetMode),
          MakeField<R>("Param1", &R::GetParam1, &R::SetParam1),
          MakeField<R>("Param2", &R::GetParam2, &R::SetParam2),
          MakeField<R>("Param3", &R::GetParam3, &R::SetParam3),
          MakeField<R>("Param4", &R::GetParam4, &R::SetParam4),
          MakeField<R>("Param5", &R::GetParam5, &R::SetParam5),
          MakeField<R>("Param6", &R::GetParam6, &R::SetParam6),
          MakeField<R>("Options", &R::GetOptions, &R::SetOptions)};
}

template <std::same_as<SDI::InstrumentInfoDataC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>(
              "Identifier", [](const R& r) { return r.GetIdentifier().GetData(); },
              [](R& r, const char16_t* identifier) { r.SetIdentifier(identifier); }),
          FlagsField<R>(),
          MakeField<R>("Text1", &R::GetText1, &R::SetText1),
          MakeField<R>("Text2", &R::GetText2, &R::SetText2),
          MakeField<R>("Text3", &R::GetText3, &R::SetText3),
          MakeField<R>("Text4", &R::GetText4, &R::SetText4),
          MakeField<R>("Value", &R::GetValue, &R::SetValue),
          MakeField<R>("Number1", &R::GetNumber1, &R::SetNumber1),
          MakeField<R>("Number2", &R::GetNumber2, &R::SetNumber2),
          MakeField<R>("Number3", &R::GetNumber3, &R::SetNumber3),
          MakeField<R>("Number4", &R::GetNumber4, &R::SetNumber4)};
}

template <std::same_as<ODM::InstrumentInfoDataC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>(
              "Identifier", [](const R& r) { return r.getIdentifier().GetData(); },
              [](R& r, const char16_t* identifier) { r.setIdentifier(identifier); }),
          MakeField<R>("Flags", &R::getFlags,
                       [](R& r, std::uint32_t flags) { r.setFlags(flags, ~flags); }),
          MakeField<R>("Text1", &R::getText1, &R::setText1),
          MakeField<R>("Text2", &R::getText2, &R::setText2),
          MakeField<R>("Text3", &R::getText3, &R::setText3),
          MakeField<R>("Text4", &R::getText4, &R::setText4),
          MakeField<R>("Value", &R::getValue, &R::setValue),
          MakeField<R>("Number1", &R::getNumber1, &R::setNumber1),
          MakeField<R>("Number2", &R::getNumber2, &R::setNumber2),
          MakeField<R>("Number3", &R::getNumber3, &R::setNumber3),
          MakeField<R>("Number4", &R::getNumber4, &R::setNumber4)};
}

template <OneOf<SDI::GPSAntHeightImplC, SDI::GPSAntHeightC> R>
Fields<R> FieldsOf() {
  const auto get = [](const R& r) {
    std::pair<float, bool> height;
    r.GetHeight(height.first, height.second);
    return height;
  };
  return {MakeField<R>(
              "Height", [get](const R& r) { return get(r).first; },
              [get](R& r, float height) { r.SetHeight(height, get(r).second); }),
          MakeField<R>(
              "IsVertical", [get](const R& r) { return get(r).second; },
              [get](R& r, bool isVertical) { r.SetHeight(get(r).first, isVertical); }),
          MakeField<R>("HorizontalOffset", &R::GetHorizontalOffset, &R::SetHorizontalOffset)};
}

// The public side is read-only and has no list.
template <std::same_as<SDI::GPSRefStationDataImplC> R>
Fields<R> FieldsOf() {
  const auto field = [](const char* name, auto member) {
    return MakeField<R>(name, member, [member](R& r, const auto& value) { r.*member = value; });
  };
  const auto part = [](const char* name, auto member) {
    using Part = std::remove_cvref_t<std::invoke_result_t<decltype(member), const R&>>;
    return FieldsOfPart<R>(
        name, [member](const R& r) -> auto& { return r.*member; },
        [member](R& r, const Part& value) { r.*member = value; }, FieldsOf<Part>());
  };
  return Join(
      Fields<R>{field("stationNumber", &R::stationNumber), field("stationKind", &R::stationKind)},
      part("referenceSystem", &R::referenceSystem), part("point", &R::point),
      part("antennaHeight", &R::antennaHeight),
      Fields<R>{MakeField<R>(
                    "name", [](const R& r) -> const char16_t* { return r.name; },
                    [](R& r, const char16_t* text) {
                      std::u16string(text).copy(r.name, R::kNameUnits - 1);
                    }),
                field("reserved8", &R::reserved8), field("validMask", &R::validMask),
                field("stationCode2", &R::stationCode2)});
}

template <OneOf<ODM::TPSSetupDataC, SDI::TPSSetupDataC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Value1", &R::GetValue1, &R::SetValue1),
          FlagsField<R>(),
          MakeField<R>("Byte1", &R::GetByte1, &R::SetByte1),
          MakeField<R>("Value2", &R::GetValue2, &R::SetValue2),
          MakeField<R>("Value3", &R::GetValue3, &R::SetValue3),
          MakeField<R>("Value4", &R::GetValue4, &R::SetValue4),
          MakeField<R>("Value5", &R::GetValue5, &R::SetValue5),
          MakeField<R>("Single1", &R::GetSingle1, &R::SetSingle1),
          MakeField<R>("Single2", &R::GetSingle2, &R::SetSingle2),
          MakeField<R>("Single3", &R::GetSingle3, &R::SetSingle3),
          MakeField<R>("Word1", &R::GetWord1, &R::SetWord1),
          MakeField<R>("Word2", &R::GetWord2, &R::SetWord2),
          MakeField<R>("Word3", &R::GetWord3, &R::SetWord3)};
}

template <OneOf<ODM::TPSMeasDataC, SDI::TPSMeasDataC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Text", &R::GetText, &R::SetText),
          MakeField<R>("Value1", &R::GetValue1, &R::SetValue1),
          MakeField<R>("Value2", &R::GetValue2, &R::SetValue2),
          MakeField<R>("Value3", &R::GetValue3, &R::SetValue3),
          MakeField<R>("Value4", &R::GetValue4, &R::SetValue4),
          MakeField<R>("Value5", &R::GetValue5, &R::SetValue5),
          MakeField<R>("Value6", &R::GetValue6, &R::SetValue6),
          MakeField<R>("Single1", &R::GetSingle1, &R::SetSingle1),
          MakeField<R>("Value7", &R::GetValue7, &R::SetValue7),
          MakeField<R>("Value8", &R::GetValue8, &R::SetValue8),
          MakeField<R>("Value9", &R::GetValue9, &R::SetValue9),
          MakeField<R>("Value10", &R::GetValue10, &R::SetValue10),
          MakeField<R>("Value11", &R::GetValue11, &R::SetValue11),
          MakeField<R>("Single2", &R::GetSingle2, &R::SetSingle2),
          MakeField<R>("Single3", &R::GetSingle3, &R::SetSingle3),
          MakeField<R>("Single4", &R::GetSingle4, &R::SetSingle4),
          MakeField<R>("Single5", &R::GetSingle5, &R::SetSingle5),
          MakeField<R>("Single6", &R::GetSingle6, &R::SetSingle6),
          MakeField<R>("Word1", &R::GetWord1, &R::SetWord1),
          MakeField<R>("Word2", &R::GetWord2, &R::SetWord2),
          MakeField<R>("Word3", &R::GetWord3, &R::SetWord3),
          MakeField<R>("Word4", &R::GetWord4, &R::SetWord4),
          MakeField<R>("Word5", &R::GetWord5, &R::SetWord5),
          MakeField<R>("Word6", &R::GetWord6, &R::SetWord6),
          MakeField<R>("Word7", &R::GetWord7, &R::SetWord7),
          MakeField<R>("Word8", &R::GetWord8, &R::SetWord8),
          FlagsField<R>(),
          MakeField<R>("Word9", &R::GetWord9, &R::SetWord9)};
}

template <OneOf<ODM::TPSCorrectionDataC, SDI::TPSCorrectionDataC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Value1", &R::GetValue1, &R::SetValue1),
          MakeField<R>("Value2", &R::GetValue2, &R::SetValue2),
          MakeField<R>("Value3", &R::GetValue3, &R::SetValue3),
          MakeField<R>("ScaleFactor", &R::GetScaleFactor, &R::SetScaleFactor),
          MakeField<R>("Value5", &R::GetValue5, &R::SetValue5),
          MakeField<R>("Value6", &R::GetValue6, &R::SetValue6),
          MakeField<R>("Value7", &R::GetValue7, &R::SetValue7),
          MakeField<R>("Value8", &R::GetValue8, &R::SetValue8),
          MakeField<R>("Single1", &R::GetSingle1, &R::SetSingle1),
          MakeField<R>("Single2", &R::GetSingle2, &R::SetSingle2),
          MakeField<R>("Single3", &R::GetSingle3, &R::SetSingle3),
          MakeField<R>("Single4", &R::GetSingle4, &R::SetSingle4),
          FlagsField<R>()};
}

template <OneOf<ODM::TPSCalibrationDataC, SDI::TPSCalibrationDataC> R>
Fields<R> FieldsOf() {
  return {MakeField<R>("Value1", &R::GetValue1, &R::SetValue1),
          MakeField<R>("Value2", &R::GetValue2, &R::SetValue2),
          MakeField<R>("Value3", &R::GetValue3, &R::SetValue3),
          MakeField<R>("Value4", &R::GetValue4, &R::SetValue4),
          MakeField<R>("Value5", &R::GetValue5, &R::SetValue5),
          MakeField<R>("Value6", &R::GetValue6, &R::SetValue6),
          MakeField<R>("Value7", &R::GetValue7, &R::SetValue7),
          MakeField<R>("Value8", &R::GetValue8, &R::SetValue8)};
}

// Only the implementation has accessors for the two 16-bit numbers.
template <OneOf<SDI::ImgCameraInfoImplC, SDI::ImgCameraInfoC> R>
Fields<R> FieldsOf() {
  Fields<R> shorts;
  if constexpr (requires { &R::GetShort1; }) {
    shorts = {MakeField<R>("Short1", &R::GetShort1, &R::SetShort1),
              MakeField<R>("Short2", &R::GetShort2, &R::SetShort2)};
  }
  return Exactly(Join(Fields<R>{MakeField<R>("Int1", &R::GetInt1, &R::SetInt1),
                                MakeField<R>("Int2", &R::GetInt2, &R::SetInt2),
                                MakeField<R>("Int3", &R::GetInt3, &R::SetInt3),
                                MakeField<R>("Real1", &R::GetReal1, &R::SetReal1),
                                MakeField<R>("Real2", &R::GetReal2, &R::SetReal2)},
                      shorts,
                      Fields<R>{MakeField<R>("Real3", &R::GetReal3, &R::SetReal3),
                                MakeField<R>("Real4", &R::GetReal4, &R::SetReal4),
                                MakeField<R>("Int4", &R::GetInt4, &R::SetInt4),
                                MakeField<R>("Int5", &R::GetInt5, &R::SetInt5)}));
}

template <OneOf<SDI::ImgChipWindowInfoImplC, SDI::ImgChipWindowInfoC> R>
Fields<R> FieldsOf() {
  return Exactly(Fields<R>{MakeField<R>("Value1", &R::GetValue1, &R::SetValue1),
                           MakeField<R>("Value2", &R::GetValue2, &R::SetValue2),
                           MakeField<R>("Value3", &R::GetValue3, &R::SetValue3),
                           MakeField<R>("Value4", &R::GetValue4, &R::SetValue4)});
}

template <class R>
Fields<R> OrientationFields() {
  return Exactly(Fields<R>{MakeField<R>("Value1", &R::GetValue1, &R::SetValue1),
                           MakeField<R>("Value2", &R::GetValue2, &R::SetValue2),
                           MakeField<R>("Value3", &R::GetValue3, &R::SetValue3),
                           MakeField<R>("Value4", &R::GetValue4, &R::SetValue4),
                           MakeField<R>("Value5", &R::GetValue5, &R::SetValue5),
                           MakeField<R>("Value6", &R::GetValue6, &R::SetValue6)});
}

template <OneOf<SDI::ImgExteriorOrientationImplC, SDI::ImgExteriorOrientationC> R>
Fields<R> FieldsOf() {
  return OrientationFields<R>();
}

template <OneOf<SDI::ImgInteriorOrientationImplC, SDI::ImgInteriorOrientationC> R>
Fields<R> FieldsOf() {
  return Join(Fields<R>{MakeField<R>("ModelCode", &R::GetModelCode, &R::SetModelCode)},
              OrientationFields<R>());
}

using Texts = std::vector<std::string>;

/// The values of all fields as text, in order.
template <class Record>
Texts Values(const Record& record) {
  Texts values;
  for (const auto& field : FieldsOf<Record>()) values.push_back(field.Show(record));
  return values;
}

/// Writes every field, each with a different value.
template <class Record>
void FillAll(Record& record) {
  int seed = 0;
  for (const auto& field : FieldsOf<Record>()) field.Fill(record, seed++);
}

/// The names of the fields whose values differ, separated by ", "; empty if all are the same.
template <class Record>
std::string DifferingFields(const Record& a, const Record& b) {
  std::string names;
  for (const auto& field : FieldsOf<Record>()) {
    if (field.Show(a) != field.Show(b)) names += (names.empty() ? "" : ", ") + field.name;
  }
  return names;
}

}  // namespace Records

#endif  // SURVEYDATA_TESTS_SUPPORT_RECORD_FIELD_LISTS_H_
