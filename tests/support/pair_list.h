#ifndef SURVEYDATA_TESTS_SUPPORT_PAIR_LIST_H_
#define SURVEYDATA_TESTS_SUPPORT_PAIR_LIST_H_

#include <surveydata/surveydata.h>

/// \file
/// The list of all pairs of a public class and an implementation, independent of a test framework.

namespace Pairs {

template <class Public, class Impl>
struct Pair {
  using PublicT = Public;
  using ImplT = Impl;
};

template <class... P>
struct PairList {
  /// The same pairs as arguments of another template.
  template <template <class...> class List>
  using As = List<P...>;

  /// Calls `use.template operator()<P>()` for every pair.
  template <class Use>
  static void ForEach(Use use) {
    (use.template operator()<P>(), ...);
  }
};

/// A public class and the implementation that it creates and reads. Every pair must be listed here.
using AllPairList = PairList<
    Pair<SDI::CoordinatePointC, ODM::CoordinatePointC>, Pair<SDI::QMatrixC, ODM::QMatrixC>,
    Pair<SDI::CoordinateQualityC, ODM::CoordinateQualityC>,
    Pair<SDI::CoordinateReferenceSystemC, ODM::CoordinateReferenceSystemC>,
    Pair<SDI::UndulationMementoC, ODM::UndulationMementoC>, Pair<SDI::PositionC, ODM::PositionC>,
    Pair<SDI::RectangleC, ODM::RectangleC>, Pair<SDI::DisplayAttributesC, ODM::DisplayAttributesC>,
    Pair<SDI::InstrumentInfoDataC, ODM::InstrumentInfoDataC>,
    Pair<SDI::GPSAntHeightC, SDI::GPSAntHeightImplC>, Pair<SDI::GPSDOPsC, SDI::GPSDOPsImplC>,
    Pair<SDI::GPSMeasDataC, SDI::GPSMeasDataImplC>,
    Pair<SDI::GPSRefStationDataC, SDI::GPSRefStationDataImplC>,
    Pair<SDI::TPSSetupDataC, ODM::TPSSetupDataC>, Pair<SDI::TPSMeasDataC, ODM::TPSMeasDataC>,
    Pair<SDI::TPSCorrectionDataC, ODM::TPSCorrectionDataC>,
    Pair<SDI::TPSCalibrationDataC, ODM::TPSCalibrationDataC>,
    Pair<SDI::ImgCameraInfoC, SDI::ImgCameraInfoImplC>,
    Pair<SDI::ImgChipWindowInfoC, SDI::ImgChipWindowInfoImplC>,
    Pair<SDI::ImgExteriorOrientationC, SDI::ImgExteriorOrientationImplC>,
    Pair<SDI::ImgInteriorOrientationC, SDI::ImgInteriorOrientationImplC>,
    Pair<SDI::ScanDefPointC, SDI::ScanDefPointImplC>,
    Pair<SDI::ScanRectangularAreaC, SDI::ScanRectangularAreaImplC>,
    Pair<SDI::ScanPolygonAreaC, SDI::ScanPolygonAreaImplC>,
    Pair<SDI::ScanDomeAreaC, SDI::ScanDomeAreaImplC>, Pair<SDI::ScanC, SDI::ScanImplC>>;

/// A public class and an implementation that creates it as its public object, although the class
/// cannot read that implementation.
using UnreadPairList =
    PairList<Pair<SDI::GPSAntHeightC, ODM::GPSAntHeightC>, Pair<SDI::GPSDOPsC, ODM::GPSDOPsC>,
             Pair<SDI::GPSMeasDataC, ODM::GPSMeasDataC>>;

}  // namespace Pairs

#endif  // SURVEYDATA_TESTS_SUPPORT_PAIR_LIST_H_
