#ifndef SURVEYDATA_GEODETIC_COORDINATE_REFERENCE_SYSTEM_H_
#define SURVEYDATA_GEODETIC_COORDINATE_REFERENCE_SYSTEM_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API CoordinateReferenceSystemC;
}

namespace ODM {

/// The data of an `SDI::CoordinateReferenceSystemC`.
class SURVEYDATA_API CoordinateReferenceSystemC
    : public API::ImplC<CoordinateReferenceSystemC, SDI::CoordinateReferenceSystemC> {
 public:
  CoordinateReferenceSystemC();
  explicit CoordinateReferenceSystemC(API::BaseC* owner);
  CoordinateReferenceSystemC(const CoordinateReferenceSystemC& other);
  CoordinateReferenceSystemC& operator=(const CoordinateReferenceSystemC& other);
  ~CoordinateReferenceSystemC() override;
  API::BaseC* GetBase() override;
  CoordinateReferenceSystemC(std::int32_t kind, std::int32_t variant, std::int32_t hasHeight);

  std::int32_t GetKind() const;
  void SetKind(std::int32_t kind);
  std::int32_t GetVariant() const;
  void SetVariant(std::int32_t variant);
  std::int32_t GetHasHeight() const;
  void SetHasHeight(std::int32_t hasHeight);

  /// Whether all three words are the same.
  bool isEqual(const CoordinateReferenceSystemC& other) const;

 private:
  std::int32_t kind_ = 0;
  std::int32_t variant_ = 1;
  std::int32_t hasHeight_ = 0;
};

}  // namespace ODM

namespace SDI {

/// The coordinate system of a position. By default, the variant is 1 and the rest is 0. Any value
/// is accepted. The caller defines the meaning of the values, except for the kinds and the height
/// flag that `PositionC::GetDimension()` reads.
class SURVEYDATA_API CoordinateReferenceSystemC
    : public API::HandleC<ODM::CoordinateReferenceSystemC> {
 public:
  CoordinateReferenceSystemC();
  explicit CoordinateReferenceSystemC(ODM::CoordinateReferenceSystemC* impl);
  CoordinateReferenceSystemC(const CoordinateReferenceSystemC& other);
  CoordinateReferenceSystemC& operator=(const CoordinateReferenceSystemC& other);
  ~CoordinateReferenceSystemC() override;
  CoordinateReferenceSystemC(std::int32_t kind, std::int32_t variant, std::int32_t hasHeight);

  /// 1 to 4 are the kinds that a position knows: 1 always has three dimensions, 2 and 3 have two
  /// and optionally a height, 4 has only the optional height.
  std::int32_t GetKind() const;
  void SetKind(std::int32_t kind);
  std::int32_t GetVariant() const;
  void SetVariant(std::int32_t variant);
  /// Non-zero if there is a height. Only used for kinds 2, 3 and 4.
  std::int32_t GetHasHeight() const;
  void SetHasHeight(std::int32_t hasHeight);

  /// Whether all three words are the same.
  bool IsEqual(const CoordinateReferenceSystemC& other) const;
};

static_assert(API::kHasSize<CoordinateReferenceSystemC, 16> &&
              API::kHasSize<ODM::CoordinateReferenceSystemC, 32>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::CoordinateReferenceSystemC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_COORDINATE_REFERENCE_SYSTEM_H_
