#ifndef SURVEYDATA_SCANNING_SCAN_DEFINITION_H_
#define SURVEYDATA_SCANNING_SCAN_DEFINITION_H_

#include <cstdint>

#include <boost/noncopyable.hpp>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API ScanDefinitionC;

/// The kinds of scan areas. Other codes are stored as given.
enum ScanAreaType : std::uint32_t {
  kRectangularArea = 1,
  kPolygonArea = 2,
  kDomeArea = 3,
};

/// The data of a `ScanDefinitionC`: the kind of area.
class SURVEYDATA_API ScanDefinitionImplC : public API::ImplC<ScanDefinitionImplC, ScanDefinitionC> {
 public:
  explicit ScanDefinitionImplC(std::uint32_t type);
  ScanDefinitionImplC(const ScanDefinitionImplC& other);
  ScanDefinitionImplC& operator=(const ScanDefinitionImplC& other);
  ~ScanDefinitionImplC() override;
  API::BaseC* GetBase() override;

  /// Whether `other` is a scan definition of the same type; areas compare their data as well.
  virtual bool IsEqual(const API::ImplObjectC& other) const;

  std::uint32_t GetType() const;

 private:
  std::uint32_t type_;
};

/// The base of the scan areas, through which a scan holds its area without knowing its kind.
///
/// Scan definitions cannot be copied. Pass them by pointer or reference, and copy their
/// implementations.
class SURVEYDATA_API ScanDefinitionC : public API::BaseC, private boost::noncopyable {
 public:
  /// Takes ownership of `impl`; a public object that owned it before is destroyed.
  explicit ScanDefinitionC(ScanDefinitionImplC* impl);
  ~ScanDefinitionC() override;

  /// The implementation, or null if it is missing or of another class.
  ScanDefinitionImplC* GetImpl() const;

  std::uint32_t GetType() const;

  /// The comparison of the actual kind of area: false for different kinds.
  bool IsEqual(const ScanDefinitionC& other) const;
};

}  // namespace SDI

#endif  // SURVEYDATA_SCANNING_SCAN_DEFINITION_H_
