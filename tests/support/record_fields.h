#ifndef SURVEYDATA_TESTS_SUPPORT_RECORD_FIELDS_H_
#define SURVEYDATA_TESTS_SUPPORT_RECORD_FIELDS_H_

#include "tests/support/record_field_lists.h"

/// \file
/// The lists of the fields of all records. They are compiled only once, in record_fields.cpp,
/// because each takes up to a second to compile.

// clang-format off
#define RECORDS_EACH_LIST(prefix) \
  prefix template Fields<ODM::CoordinatePointC> FieldsOf<ODM::CoordinatePointC>(); \
  prefix template Fields<SDI::CoordinatePointC> FieldsOf<SDI::CoordinatePointC>(); \
  prefix template Fields<ODM::QMatrixC> FieldsOf<ODM::QMatrixC>(); \
  prefix template Fields<SDI::QMatrixC> FieldsOf<SDI::QMatrixC>(); \
  prefix template Fields<ODM::CoordinateQualityC> FieldsOf<ODM::CoordinateQualityC>(); \
  prefix template Fields<SDI::CoordinateQualityC> FieldsOf<SDI::CoordinateQualityC>(); \
  prefix template Fields<ODM::CoordinateReferenceSystemC> FieldsOf<ODM::CoordinateReferenceSystemC>(); \
  prefix template Fields<SDI::CoordinateReferenceSystemC> FieldsOf<SDI::CoordinateReferenceSystemC>(); \
  prefix template Fields<ODM::UndulationMementoC> FieldsOf<ODM::UndulationMementoC>(); \
  prefix template Fields<SDI::UndulationMementoC> FieldsOf<SDI::UndulationMementoC>(); \
  prefix template Fields<ODM::PositionC> FieldsOf<ODM::PositionC>(); \
  prefix template Fields<SDI::PositionC> FieldsOf<SDI::PositionC>(); \
  prefix template Fields<ODM::RectangleC> FieldsOf<ODM::RectangleC>(); \
  prefix template Fields<SDI::RectangleC> FieldsOf<SDI::RectangleC>(); \
  prefix template Fields<ODM::DisplayAttributesC> FieldsOf<ODM::DisplayAttributesC>(); \
  prefix template Fields<SDI::DisplayAttributesC> FieldsOf<SDI::DisplayAttributesC>(); \
  prefix template Fields<SDI::InstrumentInfoDataC> FieldsOf<SDI::InstrumentInfoDataC>(); \
  prefix template Fields<ODM::InstrumentInfoDataC> FieldsOf<ODM::InstrumentInfoDataC>(); \
  prefix template Fields<SDI::GPSAntHeightImplC> FieldsOf<SDI::GPSAntHeightImplC>(); \
  prefix template Fields<SDI::GPSAntHeightC> FieldsOf<SDI::GPSAntHeightC>(); \
  prefix template Fields<SDI::GPSRefStationDataImplC> FieldsOf<SDI::GPSRefStationDataImplC>(); \
  prefix template Fields<ODM::TPSSetupDataC> FieldsOf<ODM::TPSSetupDataC>(); \
  prefix template Fields<SDI::TPSSetupDataC> FieldsOf<SDI::TPSSetupDataC>(); \
  prefix template Fields<ODM::TPSMeasDataC> FieldsOf<ODM::TPSMeasDataC>(); \
  prefix template Fields<SDI::TPSMeasDataC> FieldsOf<SDI::TPSMeasDataC>(); \
  prefix template Fields<ODM::TPSCorrectionDataC> FieldsOf<ODM::TPSCorrectionDataC>(); \
  prefix template Fields<SDI::TPSCorrectionDataC> FieldsOf<SDI::TPSCorrectionDataC>(); \
  prefix template Fields<ODM::TPSCalibrationDataC> FieldsOf<ODM::TPSCalibrationDataC>(); \
  prefix template Fields<SDI::TPSCalibrationDataC> FieldsOf<SDI::TPSCalibrationDataC>(); \
  prefix template Fields<SDI::ImgCameraInfoImplC> FieldsOf<SDI::ImgCameraInfoImplC>(); \
  prefix template Fields<SDI::ImgCameraInfoC> FieldsOf<SDI::ImgCameraInfoC>(); \
  prefix template Fields<SDI::ImgChipWindowInfoImplC> FieldsOf<SDI::ImgChipWindowInfoImplC>(); \
  prefix template Fields<SDI::ImgChipWindowInfoC> FieldsOf<SDI::ImgChipWindowInfoC>(); \
  prefix template Fields<SDI::ImgExteriorOrientationImplC> FieldsOf<SDI::ImgExteriorOrientationImplC>(); \
  prefix template Fields<SDI::ImgExteriorOrientationC> FieldsOf<SDI::ImgExteriorOrientationC>(); \
  prefix template Fields<SDI::ImgInteriorOrientationImplC> FieldsOf<SDI::ImgInteriorOrientationImplC>(); \
  prefix template Fields<SDI::ImgInteriorOrientationC> FieldsOf<SDI::ImgInteriorOrientationC>();
// clang-format on

namespace Records {

RECORDS_EACH_LIST(extern)

}  // namespace Records

#endif  // SURVEYDATA_TESTS_SUPPORT_RECORD_FIELDS_H_
