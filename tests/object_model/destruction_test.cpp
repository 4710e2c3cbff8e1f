// The results of `GetImpl` and `GetBase` inside the destructors of classes that callers derive from
// the two sides of a pair, depending on which side is destroyed first; see the table in
// docs/ownership.md.
#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/geodetic/coordinate_point.h>

namespace {

// The destructors of both sides call the given function.
class PointC : public SDI::CoordinatePointC {
 public:
  PointC(ODM::CoordinatePointC* data, std::function<void(PointC&)> atEnd)
      : CoordinatePointC(data), atEnd_(std::move(atEnd)) {}
  PointC(const PointC&) = delete;
  PointC& operator=(const PointC&) = delete;
  ~PointC() override { atEnd_(*this); }

 private:
  std::function<void(PointC&)> atEnd_;
};

class DataC : public ODM::CoordinatePointC {
 public:
  explicit DataC(std::function<void(DataC&)> atEnd)
      : CoordinatePointC(1.0, 2.0, 3.0), atEnd_(std::move(atEnd)) {}
  DataC(const DataC&) = delete;
  DataC& operator=(const DataC&) = delete;
  ~DataC() override { atEnd_(*this); }

 private:
  std::function<void(DataC&)> atEnd_;
};

const auto kNothing = [](auto&) {};

TEST(Destructor, OfThePublicSideThatGoesFirstHasTheWholePair) {
  int asked = 0;
  auto* const data = new DataC(kNothing);
  delete new PointC(data, [&](PointC& point) {
    ++asked;
    EXPECT_EQ(point.GetImpl(), data);
    EXPECT_EQ(data->GetBase(), &point);
    EXPECT_EQ(point.GetY(), 2.0);
    point.SetY(4.0);
    EXPECT_EQ(data->GetY(), 4.0);
  });
  EXPECT_EQ(asked, 1);
}

TEST(Destructor, OfTheImplementationThatGoesFirstHasTheWholePair) {
  int asked = 0;
  PointC* point = nullptr;
  auto* const data = new DataC([&](DataC& self) {
    ++asked;
    EXPECT_EQ(self.GetBase(), point);
    EXPECT_EQ(point->GetImpl(), &self);
    EXPECT_EQ(point->GetY(), 2.0);
  });
  point = new PointC(data, kNothing);
  delete data;
  EXPECT_EQ(asked, 1);
}

TEST(Destructor, OfThePublicSideThatGoesSecondHasNoImplementation) {
  int asked = 0;
  auto* const data = new DataC(kNothing);
  API::ImplObjectC* const base = data;
  new PointC(data, [&](PointC& point) {
    ++asked;
    EXPECT_EQ(point.GetImpl(), nullptr);
    EXPECT_EQ(point.API::BaseC::GetImpl(), nullptr);
    // Only the base of the implementation is left, which remains linked until its owner is
    // destroyed.
    EXPECT_EQ(base->GetBase(), &point);
  });
  delete data;
  EXPECT_EQ(asked, 1);
}

TEST(Destructor, OfTheImplementationThatGoesSecondHasNoOwner) {
  int asked = 0;
  API::BaseC* point = nullptr;
  auto* const data = new DataC([&](DataC& self) {
    ++asked;
    EXPECT_EQ(self.API::ImplObjectC::GetBase(), nullptr);
    // Only the base of the public object is left, which remains linked until its implementation is
    // destroyed.
    EXPECT_EQ(point->GetImpl(), &self);
    EXPECT_EQ(self.GetY(), 2.0);
  });
  point = new PointC(data, kNothing);
  delete point;
  EXPECT_EQ(asked, 1);
}

// `GetBase` of an implementation without an owner creates one, even here. The implementation
// destroys it, as always; LeakSanitizer checks that.
TEST(Destructor, OfTheImplementationThatGoesSecondMakesAnotherOwnerWhenItAsks) {
  int asked = 0;
  API::BaseC* point = nullptr;
  auto* const data = new DataC([&](DataC& self) {
    ++asked;
    auto* const made = dynamic_cast<SDI::CoordinatePointC*>(self.GetBase());
    ASSERT_NE(made, nullptr);
    EXPECT_NE(made, point);
    EXPECT_EQ(made->GetImpl(), &self);
    EXPECT_EQ(self.GetBase(), made);
    EXPECT_EQ(point->GetImpl(), &self) << "the object being destroyed is unchanged";
  });
  point = new PointC(data, kNothing);
  delete point;
  EXPECT_EQ(asked, 1);
}

TEST(Destructor, OfAnEarlierOwnerFindsTheImplementationWithTheNextOne) {
  for (const bool isLinkedByTheObject : {true, false}) {
    int asked = 0;
    SDI::CoordinatePointC next(static_cast<ODM::CoordinatePointC*>(nullptr));
    auto* const data = new DataC(kNothing);
    API::ImplObjectC* const base = data;
    new PointC(data, [&](PointC& earlier) {
      ++asked;
      EXPECT_EQ(earlier.API::BaseC::GetImpl(), nullptr);
      EXPECT_EQ(base->API::ImplObjectC::GetBase(), &earlier) << "the next owner is stored last";
      EXPECT_EQ(next.GetImpl(), isLinkedByTheObject ? data : nullptr);
    });
    if (isLinkedByTheObject) {
      next.SetImpl(data);
    } else {
      data->SetBase(&next);
    }
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(data->GetBase(), &next);
    next.SetImpl(data);  // links both ways
    EXPECT_EQ(next.GetImpl(), data);
  }
}

TEST(Destructor, OfAPublicObjectOnTheStackHasTheWholePair) {
  int asked = 0;
  {
    ODM::CoordinatePointC* data = nullptr;
    const PointC point(new DataC(kNothing), [&](PointC& self) {
      ++asked;
      EXPECT_EQ(self.GetImpl(), data);
      EXPECT_EQ(data->GetBase(), &self);
    });
    data = point.GetImpl();
  }
  EXPECT_EQ(asked, 1);
}

}  // namespace
