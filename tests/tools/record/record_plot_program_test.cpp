#include <cstddef>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <gtest/gtest.h>

#include "tests/tools/program.h"

namespace {

using boost::property_tree::ptree;
using nlohmann::json;

// Throws if the text is not well-formed XML.
ptree ParseXml(const std::string& text) {
  std::istringstream in(text);
  ptree tree;
  boost::property_tree::read_xml(in, tree);
  return tree;
}

// The texts of all elements of a kind, in order.
std::vector<std::string> Texts(const ptree& svg, const char* element) {
  std::vector<std::string> texts;
  for (const auto& [name, child] : svg.get_child("svg")) {
    if (name == element) texts.push_back(child.data());
  }
  return texts;
}

// Points of the lines and dots of a colour, one entry per run.
std::vector<std::size_t> Runs(const ptree& svg, const std::string& colour) {
  std::vector<std::size_t> runs;
  for (const auto& [name, child] : svg.get_child("svg")) {
    if (name == "polyline" && child.get<std::string>("<xmlattr>.stroke") == colour) {
      std::istringstream points(child.get<std::string>("<xmlattr>.points"));
      std::size_t count = 0;
      for (std::string point; points >> point;) ++count;
      runs.push_back(count);
    } else if (name == "circle" && child.get<std::string>("<xmlattr>.fill") == colour) {
      runs.push_back(1);
    }
  }
  return runs;
}

// The same from the expectation lines; `medianStep` is that of the samples.
std::vector<std::size_t> ExpectedRuns(const std::vector<json>& records, long medianStep,
                                      bool (*hasValue)(const json&)) {
  std::vector<std::size_t> runs;
  long before = 0;
  for (const json& record : records) {
    if (!hasValue(record)) continue;
    const json& time = record["measurement"]["timeA"];
    const long now = time[0].get<long>() * 604800000 + time[1].get<long>();
    if (runs.empty() || now - before > 3 * medianStep) runs.push_back(0);
    ++runs.back();
    before = now;
  }
  return runs;
}

Outcome Plot(const std::string& file, const std::string& picture) {
  return RunProgram({"record", "plot", file, "-o", picture});
}

TEST(RecordPlot, DrawsEveryValueAndLeavesGapsOpen) {
  const auto hasHdop = [](const json& record) {
    const json& dops = record["getters"]["dops"];
    return !dops.is_null() && dops["hdop"] >= 0;
  };
  const auto hasVdop = [](const json& record) {
    const json& dops = record["getters"]["dops"];
    return !dops.is_null() && dops["vdop"] >= 0;
  };
  const auto hasPdop = [](const json& record) {
    const json& dops = record["getters"]["dops"];
    return !dops.is_null() && dops["pdop"] >= 0;
  };
  const auto hasPair = [](const json& record) { return !record["getters"]["totalPair"].is_null(); };
  const struct {
    const char* name;
    long medianStep;  // milliseconds
  } samples[] = {{"valley_drive", 4000}, {"desert_highway", 22000}};
  for (const auto& [name, medianStep] : samples) {
    SCOPED_TRACE(name);
    const TempFolderC folder;
    const Outcome outcome = Plot(DataPath(std::string(name) + ".rec"), folder / "out.svg");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    const ptree svg = ParseXml(ReadText(folder / "out.svg"));
    const auto records = JsonLines(ReadText(DataPath(std::string(name) + ".expected.jsonl")));
    EXPECT_GT(ExpectedRuns(records, medianStep, hasPair).size(), 2u) << "no gap to leave open";
    EXPECT_EQ(Runs(svg, "#56b4e9"), ExpectedRuns(records, medianStep, hasHdop));
    EXPECT_EQ(Runs(svg, "#d55e00"), ExpectedRuns(records, medianStep, hasVdop));
    EXPECT_EQ(Runs(svg, "#222222"), ExpectedRuns(records, medianStep, hasPdop));
    EXPECT_EQ(Runs(svg, "#e69f00"), ExpectedRuns(records, medianStep, hasPair));
    EXPECT_EQ(Runs(svg, "#0072b2"), ExpectedRuns(records, medianStep, hasPair));
  }
}

TEST(RecordPlot, NamesFileAxesAndLines) {
  const TempFolderC folder;
  Plot(DataPath("valley_drive.rec"), folder / "out.svg");
  const std::vector<std::string> texts = Texts(ParseXml(ReadText(folder / "out.svg")), "text");
  for (const char* const text :
       {"valley_drive.rec",
        "414 measurements, 2020-02-07 02:14:35 to 2020-02-07 02:43:22, GPS time",
        "dilution of precision (no unit)", "satellites (number)", "HDOP", "VDOP", "PDOP", "used",
        "in view", "GPS time (no leap seconds), from 2020-02-07", "02:15", "02:40"}) {
    EXPECT_EQ(std::count(texts.begin(), texts.end(), text), 1) << text;
  }
}

TEST(RecordPlot, PutsTheNamesOfTheLegendAfterTheirSamples) {
  const TempFolderC folder;
  Plot(DataPath("valley_drive.rec"), folder / "out.svg");
  const ptree svg = ParseXml(ReadText(folder / "out.svg"));
  std::size_t names = 0;
  double sampleEnd = 0, textEnd = 0, y = 0;
  for (const auto& [element, child] : svg.get_child("svg")) {
    const auto attribute = [&child = child](const char* name) {
      return child.get<double>(std::string("<xmlattr>.") + name);
    };
    if (element == "line" && child.get<std::string>("<xmlattr>.stroke-width") == "3") {
      if (attribute("y1") != y) textEnd = 0;  // the other panel
      EXPECT_GT(attribute("x1"), textEnd);
      y = attribute("y1");
      sampleEnd = attribute("x2");
    }
    const std::string text = child.data();
    if (element != "text" || sampleEnd == 0) continue;
    for (const char* const name : {"PDOP", "VDOP", "HDOP", "in view", "used"}) {
      if (text != name) continue;
      ++names;
      EXPECT_GT(attribute("x"), sampleEnd) << name;
      constexpr double kLetter = 9;  // of 13 high, on average at most
      textEnd = attribute("x") + kLetter * static_cast<double>(text.size());
      EXPECT_EQ(child.get<std::string>("<xmlattr>.text-anchor", "start"), "start") << name;
    }
  }
  EXPECT_EQ(names, 5u);
}

TEST(RecordPlot, EscapesTheNameOfTheFile) {
  const TempFolderC folder;
  for (const char* const name : {"a&b'c.rec", "Höhe.rec"}) {
    SCOPED_TRACE(name);
    WriteBytes(folder / name, ReadBytes(DataPath("valley_drive.rec")));
    EXPECT_EQ(Plot(folder / name, folder / "out.svg").exitCode, 0);
    const ptree svg = ParseXml(ReadText(folder / "out.svg"));
    EXPECT_EQ(Texts(svg, "title").at(0), name);
    EXPECT_EQ(Texts(svg, "text").at(0), name);
  }
}

TEST(RecordPlot, DrawsASingleMeasurement) {
  const TempFolderC folder;
  WriteBytes(folder / "one.rec", MakeFrame(113, MakeBody(0x0100, {12, 7})));
  EXPECT_EQ(Plot(folder / "one.rec", folder / "out.svg").exitCode, 0);
  const std::string text = ReadText(folder / "out.svg");
  const ptree svg = ParseXml(text);
  EXPECT_EQ(Runs(svg, "#0072b2"), std::vector<std::size_t>{1});
  EXPECT_EQ(Runs(svg, "#222222"), std::vector<std::size_t>{});
  EXPECT_EQ(text.find("nan"), std::string::npos);
  EXPECT_EQ(text.find("inf"), std::string::npos);
}

TEST(RecordPlot, LeavesOutAFrameWhoseBlocksDoNotFitAndSaysSo) {
  const TempFolderC folder;
  const Bytes good = MakeFrame(113, MakeBody(0x0100, {12, 7}));
  WriteBytes(folder / "two.rec", good + MakeFrame(113, MakeBody(0x0008, {2})));
  const Outcome outcome = Plot(folder / "two.rec", folder / "out.svg");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("the frame at " + std::to_string(good.size()) + " is left out"),
            std::string::npos)
      << outcome.err;
  EXPECT_EQ(Runs(ParseXml(ReadText(folder / "out.svg")), "#0072b2"), std::vector<std::size_t>{1});
}

TEST(RecordPlot, ReportsHowManyBadFramesItLeavesOut) {
  const TempFolderC folder;
  const Bytes good = MakeFrame(113, MakeBody(0x0100, {12, 7}));
  Bytes bad = good;
  bad[10] ^= 1;
  WriteBytes(folder / "two.rec", good + bad);
  const Outcome outcome = Plot(folder / "two.rec", folder / "out.svg");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.err, BadFramesTold(1));
  EXPECT_EQ(Runs(ParseXml(ReadText(folder / "out.svg")), "#0072b2"), std::vector<std::size_t>{1});

  WriteBytes(folder / "none.rec", bad + bad);
  const Outcome none = Plot(folder / "none.rec", folder / "none.svg");
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.err,
            BadFramesTold(2) + "surveydata: " + folder / "none.rec" + " contains no measurement\n");
}

TEST(RecordPlot, RefusesNamesOfOtherPicturesAsAreaPlotDoes) {
  const TempFolderC folder;
  for (const char* const name : {"a.png", "a.PNG", "a.jpg", "a.jpeg", "a.pdf", "a.gif"}) {
    SCOPED_TRACE(name);
    for (const Outcome& outcome :
         {Plot(DataPath("valley_drive.rec"), folder / name),
          RunProgram({"area", "plot", DataPath("areas/facade.json"), "-o", folder / name})}) {
      EXPECT_EQ(outcome.exitCode, 2);
      EXPECT_NE(outcome.err.find("is not an SVG file name"), std::string::npos) << outcome.err;
    }
  }
  EXPECT_TRUE(folder.Names().empty());
  for (const char* const name : {"a.svg", "a.SVG", "png", "a.png.svg"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Plot(DataPath("valley_drive.rec"), folder / name).exitCode, 0);
  }
}

TEST(RecordPlot, WritesToStandardOutputAsItsHelpSays) {
  const TempFolderC folder;
  const std::string file = DataPath("valley_drive.rec");
  Plot(file, folder / "out.svg");
  EXPECT_EQ(Plot(file, "-").out, ReadText(folder / "out.svg"));
  EXPECT_EQ(RunProgram({"record", "export", file, "-o", "-"}).out,
            RunProgram({"record", "export", file}).out);
  for (const char* const command : {"plot", "export"}) {
    const std::string help = RunProgram({"record", command, "--help"}).out;
    EXPECT_NE(help.find("- for standard output"), std::string::npos) << help;
  }
}

TEST(RecordPlot, RefusesAFileWithoutMeasurementsAndItsOwnInput) {
  const TempFolderC folder;
  for (const Bytes& bytes : {Bytes{}, MakeFrame(17, {1, 2, 3})}) {
    WriteBytes(folder / "none.rec", bytes);
    const Outcome outcome = Plot(folder / "none.rec", folder / "out.svg");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find("contains no measurement"), std::string::npos);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"none.rec"});
  }

  const Bytes good = MakeFrame(113, MakeBody(0x0100, {12, 7}));
  WriteBytes(folder / "one.rec", good);
  EXPECT_EQ(Plot(folder / "one.rec", folder / "one.rec").exitCode, 2);
  EXPECT_EQ(ReadBytes(folder / "one.rec"), good);
  EXPECT_EQ(Plot(folder / "one.rec", folder / "no/out.svg").exitCode, 3);
}

}  // namespace
