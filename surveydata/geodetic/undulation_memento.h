#ifndef SURVEYDATA_GEODETIC_UNDULATION_MEMENTO_H_
#define SURVEYDATA_GEODETIC_UNDULATION_MEMENTO_H_

#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API UndulationMementoC;
}

namespace ODM {

/// The data of an `SDI::UndulationMementoC`.
class SURVEYDATA_API UndulationMementoC
    : public API::ImplC<UndulationMementoC, SDI::UndulationMementoC> {
 public:
  UndulationMementoC();
  explicit UndulationMementoC(API::BaseC* owner);
  UndulationMementoC(const UndulationMementoC& other);
  UndulationMementoC& operator=(const UndulationMementoC& other);
  ~UndulationMementoC() override;
  API::BaseC* GetBase() override;
  UndulationMementoC(float undulation, std::int32_t source, std::uint8_t valid);

  float GetUndulation() const;
  std::int32_t GetSource() const;
  std::uint8_t GetValid() const;

  /// Whether validity and source are the same and the undulations agree within the tolerance of
  /// `API::CompareWithTolerance`.
  bool isEqual(const UndulationMementoC& other) const;

 private:
  float undulation_ = 0.0F;
  std::int32_t source_ = 0;
  std::uint8_t valid_ = 0;
};

}  // namespace ODM

namespace SDI {

/// The undulation at a position: the height of the geoid above the ellipsoid in metres, with its
/// source and validity, whose codes the caller defines. All are 0 by default. A memento can only be
/// changed by assigning another one.
class SURVEYDATA_API UndulationMementoC : public API::HandleC<ODM::UndulationMementoC> {
 public:
  UndulationMementoC();
  explicit UndulationMementoC(ODM::UndulationMementoC* impl);
  UndulationMementoC(const UndulationMementoC& other);
  UndulationMementoC& operator=(const UndulationMementoC& other);
  ~UndulationMementoC() override;
  UndulationMementoC(float undulation, std::int32_t source, std::uint8_t valid);

  float GetUndulation() const;
  std::int32_t GetSource() const;
  std::uint8_t GetValid() const;

  /// Whether validity and source are the same and the undulations agree within the tolerance of
  /// `API::CompareWithTolerance` in single precision. A NaN equals anything.
  bool IsEqual(const UndulationMementoC& other) const;
};

static_assert(API::kHasSize<UndulationMementoC, 16> && API::kHasSize<ODM::UndulationMementoC, 32>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::UndulationMementoC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_UNDULATION_MEMENTO_H_
