#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <gtest/gtest.h>

#include <area/area_file.h>

#include "tests/tools/program.h"

namespace {

using boost::property_tree::ptree;
using nlohmann::json;
namespace fs = std::filesystem;

const char* const kAreas[] = {"facade", "doorway", "dome", "ceiling", "bow_tie"};

std::string AreaPath(std::string_view name) {
  return DataPath("areas/" + std::string(name) + ".json");
}

Outcome Area(const std::string& command, const std::string& file,
             const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments = {"area", command, file};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunProgram(arguments);
}

std::string Written(const TempFolderC& folder, const std::string& text) {
  const std::string file = folder / "made.json";
  WriteBytes(file, Bytes(text.begin(), text.end()));
  return file;
}

// Throws if the text is not well-formed XML.
ptree ParseXml(const std::string& text) {
  std::istringstream in(text);
  ptree tree;
  boost::property_tree::read_xml(in, tree);
  return tree;
}

// The number of elements of a kind, at any depth, that have an attribute with this value.
std::size_t Count(const ptree& tree, const std::string& element, const std::string& attribute,
                  const std::string& value) {
  std::size_t count = 0;
  for (const auto& [name, child] : tree) {
    if (name == element && child.get<std::string>("<xmlattr>." + attribute, "") == value) ++count;
    count += Count(child, element, attribute, value);
  }
  return count;
}

bool HasText(const ptree& svg, const std::string& text) {
  return std::any_of(
      svg.get_child("svg").begin(), svg.get_child("svg").end(),
      [&](const auto& child) { return child.first == "text" && child.second.data() == text; });
}

TEST(AreaInfo, ReportsTheSamples) {
  for (const char* const name : kAreas) {
    SCOPED_TRACE(name);
    const Outcome outcome = Area("info", AreaPath(name));
    EXPECT_EQ(outcome.exitCode, std::string(name) == "bow_tie" ? 1 : 0);
    EXPECT_EQ(outcome.out, ReadText(DataPath("areas/" + std::string(name) + ".info.txt")));
    EXPECT_EQ(outcome.err, "");
  }
}

TEST(AreaInfo, GivesJsonInTheUnitOfTheFile) {
  const json facade = json::parse(Area("info", AreaPath("facade"), {"--json"}).out);
  EXPECT_EQ(facade["kind"], "polygon");
  EXPECT_EQ(facade["unit"], "gon");
  EXPECT_EQ(facade["points"], 19);
  EXPECT_EQ(facade["hzStep"], 0.05);
  EXPECT_EQ(facade["valid"], true);
  EXPECT_EQ(facade["faults"], json::array());
  EXPECT_EQ(facade["bounds"]["hzMin"], 22.7505);
  EXPECT_EQ(facade["bounds"]["hzMax"], 96.1646);
  EXPECT_EQ(facade["bounds"]["vMin"], 60.3342);
  EXPECT_EQ(facade["bounds"]["enclosesZenith"], false);
  EXPECT_NEAR(facade["solidAngle"]["steradians"].get<double>(), 0.577283, 2e-6);
  EXPECT_LT(facade["solidAngle"]["accuracy"].get<double>(), 1e-12);
  EXPECT_LT(facade["solidAngle"]["band"].get<double>(), 1e-4);

  const json doorway = json::parse(Area("info", AreaPath("doorway"), {"--json"}).out);
  EXPECT_EQ(doorway["bounds"]["hzMin"], 347.5);
  EXPECT_EQ(doorway["bounds"]["hzMax"], 8.25);
  EXPECT_EQ(doorway["bounds"]["hzWidth"], 20.75);
  EXPECT_EQ(doorway["directions"]["count"], 2374944);
  EXPECT_EQ(doorway["directions"]["exact"], true);

  const Outcome outcome = Area("info", AreaPath("bow_tie"), {"--json"});
  EXPECT_EQ(outcome.exitCode, 1);
  const json bowTie = json::parse(outcome.out);
  EXPECT_EQ(bowTie["valid"], false);
  ASSERT_EQ(bowTie["faults"].size(), 1u);
  EXPECT_EQ(bowTie["faults"][0]["rule"], "crossingEdges");
  EXPECT_EQ(bowTie["faults"][0]["edges"], json({1, 3}));
  EXPECT_TRUE(bowTie["bounds"].is_null());
  EXPECT_TRUE(bowTie["solidAngle"].is_null());
  EXPECT_TRUE(bowTie["directions"].is_null());
}

// The bounds need only the points.
TEST(AreaInfo, ReportsTheBoundsOfAnAreaWithoutSteps) {
  const TempFolderC folder;
  const std::string file = Written(folder, R"({"kind": "rectangle", "unit": "deg", "hzStep": 0,
      "vStep": -1, "points": [[10, 20], [30, 50]]})");
  const Outcome outcome = Area("info", file, {"--json"});
  EXPECT_EQ(outcome.exitCode, 1);
  const json info = json::parse(outcome.out);
  EXPECT_EQ(info["name"], "made.json");
  EXPECT_EQ(info["faults"].size(), 2u);
  EXPECT_EQ(info["bounds"]["hzMax"], 30);
  EXPECT_TRUE(info["directions"].is_null());
}

// The library returns bounds for two points of a polygon, which form a rectangle on the sphere, but
// they are not a polygon.
TEST(AreaInfo, ReportsNoBoundsIfThePointsDoNotMakeAPolygon) {
  const TempFolderC folder;
  for (const char* const points :
       {"[10, 20], [30, 50]", "[10, 20], [30, 50], [30.00000000000001, 50], [20, 60]",
        "[10, 20], [30, 50], [20, 60], [10.00000000000001, 20]"}) {
    SCOPED_TRACE(points);
    const std::string file =
        Written(folder, R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1,
            "points": [)" + std::string(points) +
                            "]}");
    const Outcome outcome = Area("info", file);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.out.find("valid         no\n"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("bounds"), std::string::npos) << outcome.out;
    const json info = json::parse(Area("info", file, {"--json"}).out);
    EXPECT_EQ(info["faults"].size(), 1u);
    EXPECT_TRUE(info["bounds"].is_null());
    EXPECT_TRUE(info["solidAngle"].is_null());
  }
}

TEST(AreaFile, IsRefusedWithThePlaceAndTheReason) {
  const std::string head = R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1, )";
  const struct {
    std::string text;
    const char* message;
  } cases[] = {
      {"", "not JSON: parse error at line 1"},
      {"{\n\"kind\": \"polygon\",\n\"unit\": deg}", "not JSON: parse error at line 3"},
      {"5", "the file is not a JSON object"},
      {"[]", "the file is not a JSON object"},
      {"{}", "\"unit\" is missing"},
      {R"({"unit": "grad"})", "\"unit\" is not rad, deg or gon"},
      {R"({"unit": 1})", "\"unit\" is not a text"},
      {R"({"unit": "deg", "kind": "circle"})", "\"kind\" is not rectangle, polygon or dome"},
      {R"({"unit": "deg", "kind": "dome"})", "\"hzStep\" is missing"},
      {R"({"unit": "deg", "kind": "dome", "hzStep": 1})", "\"vStep\" is missing"},
      {R"({"unit": "deg", "kind": "dome", "hzStep": "1"})", "\"hzStep\" is not a number"},
      {R"({"unit": "deg", "hzstep": 1})", "\"hzstep\" is not a member of this format"},
      {R"({"unit": "deg", "unit": "gon"})", "\"unit\" appears twice in one object"},
      {R"({"unit": "deg", "kind": "dome", "hzStep": 1, "vStep": 1, "points": []})",
       "\"points\" do not belong to a dome"},
      {head + "\"points\": 5}", "\"points\" is not an array"},
      {head + "\"name\": 5}", "\"name\" is not a text"},
      {head + "\"settingE\": 65536}", "\"settingE\" is not a whole number from 0 to 65535"},
      {head + "\"settingA\": -1}", "\"settingA\" is not a whole number from 0 to 4294967295"},
      {head + "\"limitLow\": null}", "\"limitLow\" is not a number"},
      {head.substr(0, head.size() - 2) + "}", "\"points\" is missing"},
      {head + "\"points\": [[1, 2], 3]}", "point 2 is neither [hz, v]"},
      {head + "\"points\": [[1, 2], [3]]}", "point 2 is neither [hz, v]"},
      {head + "\"points\": [[1, 2], [3, \"4\"]]}",
       "point 2: the second number, v, is not a number"},
      {head + "\"points\": [{\"hz\": 1}]}", "point 1: \"v\" is missing"},
      {head + "\"points\": [{\"hz\": 1, \"v\": 2, \"d\": 3}]}",
       "point 1: \"d\" is not a member of this format"},
      {head + "\"points\": [{\"hz\": 1, \"v\": 2, \"distance\": null}]}",
       "point 1: \"distance\" is not a number"},
      {head + "\"points\": [[1e999, 2]]}", "not JSON: "},
      {head + "\"points\": [[1, 2, 3, 4]]}", "point 1 is neither [hz, v]"},
      {head + "\"points\": [[1, [2]]]}", "point 1: the second number, v, is not a number"},
      {head + "\"points\": [{\"hz\": 1, \"hz\": 1}]}", "point 1: \"hz\" appears twice"},
      {head + "\"points\": [{\"hz\": {}}]}", "point 1: \"hz\" is not a number"},
      {head + "\"points\": [], \"points\": []}", "\"points\" appears twice"},
      {head + "\"unit\": {\"unit\": 1}}", "\"unit\" appears twice"},
      {R"({"unit": {"deg": 1}})", "\"unit\" is not a text"},
      {R"({"name": true})", "\"name\" is not a text"},
  };
  const TempFolderC folder;
  for (const auto& [text, message] : cases) {
    SCOPED_TRACE(text);
    const Outcome outcome = Area("info", Written(folder, text));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("made.json: " + std::string(message)), std::string::npos)
        << outcome.err;
  }
}

// The limits are documented, and larger files are refused quickly.
TEST(AreaFile, IsRefusedWhenItIsTooLarge) {
  const TempFolderC folder;
  const std::string head =
      R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1, "points": [)";
  std::string many = head + "[1,2]";
  for (std::size_t i = 1; i <= Tool::kMostAreaPoints; ++i) many += ",[1,2]";
  const Outcome points = Area("info", Written(folder, many + "]}"));
  EXPECT_EQ(points.exitCode, 3);
  EXPECT_NE(points.err.find("the file has more than 1000000 points"), std::string::npos)
      << points.err;
  const Outcome bytes =
      Area("info", Written(folder, std::string(Tool::kMostAreaBytes + 1, ' ') + "{}"));
  EXPECT_EQ(bytes.exitCode, 3);
  EXPECT_NE(bytes.err.find("the file is larger than 64 MiB"), std::string::npos) << bytes.err;
  if (!fs::exists("/dev/zero")) return;
  const Outcome zeros = Area("info", "/dev/zero");
  EXPECT_EQ(zeros.exitCode, 3);
  EXPECT_NE(zeros.err.find("the file is larger than 64 MiB"), std::string::npos) << zeros.err;
}

TEST(AreaFile, MayHaveAMillionPoints) {
  const TempFolderC folder;
  std::string text = R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1, "points": [)";
  for (std::size_t i = 0; i < Tool::kMostAreaPoints; ++i) {
    text += i > 0 ? "," : "";
    text += R"({"v":2,"hz":)" + std::to_string(i % 300) + "}";
  }
  const Tool::AreaFile file = Tool::LoadAreaFile(Written(folder, text + "]}"));
  EXPECT_EQ(file.Sphere().GetPoints().size(), Tool::kMostAreaPoints);
}

TEST(AreaFile, KeepsEverySetting) {
  const TempFolderC folder;
  const Tool::AreaFile file = Tool::LoadAreaFile(Written(folder, R"({
      "kind": "polygon", "unit": "gon", "name": "all", "hzStep": 1, "vStep": 2,
      "limitLow": 0.5, "limitHigh": 80, "settingA": 7, "settingB": 8, "settingC": 4294967295,
      "settingD": 1.5, "settingE": 65535,
      "points": [[10, 20], [30, 40, 5.5], {"hz": 50, "v": 20, "distance": 6}]})"));
  const SDI::ScanAreaC& area = *file.area;
  EXPECT_EQ(file.name, "all");
  EXPECT_EQ(area.GetHzStep(), GMAT::GonToRad(1));
  EXPECT_EQ(area.GetVStep(), GMAT::GonToRad(2));
  EXPECT_EQ(area.GetLimitLow(), 0.5);
  EXPECT_EQ(area.GetLimitHigh(), 80);
  EXPECT_EQ(area.GetSettingA(), 7u);
  EXPECT_EQ(area.GetSettingB(), 8u);
  EXPECT_EQ(area.GetSettingC(), 4294967295u);
  EXPECT_EQ(area.GetSettingD(), 1.5);
  EXPECT_EQ(area.GetSettingE(), 65535);
  std::vector<SDI::ScanDefPointC> points;
  area.GetPoints(points);
  ASSERT_EQ(points.size(), 3u);
  EXPECT_EQ(points[1].GetHz(), GMAT::GonToRad(30));
  EXPECT_EQ(points[1].GetV(), GMAT::GonToRad(40));
  EXPECT_FALSE(points[0].HasDistance());
  EXPECT_EQ(points[1].GetDistance(), 5.5);
  EXPECT_EQ(points[2].GetDistance(), 6);
}

TEST(AreaOutline, ListsTheCornersWithDistances) {
  EXPECT_EQ(Area("outline", AreaPath("facade")).out,
            ReadText(DataPath("areas/facade.outline.txt")));
  EXPECT_EQ(Area("outline", AreaPath("doorway"), {"--csv"}).out,
            "hz,v,distance\r\n347.5,71.25,6.2\r\n8.25,71.25,6.2\r\n8.25,117,6.2\r\n"
            "347.5,117,6.2\r\n");
  const json ceiling = json::parse(Area("outline", AreaPath("ceiling"), {"--json"}).out);
  EXPECT_EQ(ceiling["unit"], "deg");
  ASSERT_EQ(ceiling["points"].size(), 11u);
  EXPECT_EQ(ceiling["points"][1], json({{"hz", 353.8845}, {"v", 101.0514}, {"distance", 2.869}}));
}

TEST(AreaOutline, TakesTheDefaultWhereNoCornerHasADistance) {
  const TempFolderC folder;
  const std::string file = Written(folder, R"({"kind": "polygon", "unit": "deg", "hzStep": 1,
      "vStep": 1, "points": [[10, 20], [30, 20], [20, 50]]})");
  EXPECT_EQ(Area("outline", file, {"--csv"}).out,
            "hz,v,distance\r\n10,20,\r\n30,20,\r\n20,50,\r\n");
  EXPECT_EQ(Area("outline", file, {"--csv", "--default-distance", "7.5"}).out,
            "hz,v,distance\r\n10,20,7.5\r\n30,20,7.5\r\n20,50,7.5\r\n");
  EXPECT_EQ(Area("outline", AreaPath("dome"), {"--csv"}).out, "hz,v,distance\r\n");
}

// An area that is not valid cannot be queried; its picture shows why.
TEST(AreaCommands, ExitWithFourAndReportWhyAnAreaIsNotValid) {
  const TempFolderC folder;
  const std::string reason = "surveydata: the area is not valid: edges 1 (point 1 to 2) and 3";
  for (const Outcome& outcome :
       {Area("outline", AreaPath("bow_tie")), Area("contains", AreaPath("bow_tie"), {"130,70"}),
        Area("contains", AreaPath("bow_tie"), {"--csv", "/dev/null"}),
        Area("grid", AreaPath("bow_tie")),
        Area("plot", AreaPath("bow_tie"), {"-o", folder / "out.svg"})}) {
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.substr(0, reason.size()), reason);
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"out.svg"});
  EXPECT_EQ(Area("info", AreaPath("bow_tie")).exitCode, 1);
}

// The table of exit codes names the commands that exit with 4.
TEST(AreaCommands, ThatExitWithFourAreInTheTableOfExitCodes) {
  const std::string help = RunProgram({"--help"}).out;
  const std::string before = "the area is not valid (area ";
  const std::size_t begin = help.find(before, help.find("\n  4  "));
  ASSERT_NE(begin, std::string::npos) << help;
  const std::size_t end = help.find(')', begin);
  const std::string named = help.substr(begin + before.size(), end - begin - before.size()) + ",";
  const TempFolderC folder;
  int codes = 0;
  for (const auto& [command, more] : {std::pair<std::string, std::vector<std::string>>{"info", {}},
                                      {"outline", {}},
                                      {"contains", {"130,70"}},
                                      {"grid", {}},
                                      {"convert", {"--unit", "gon"}},
                                      {"plot", {"-o", folder / "out.svg"}}}) {
    const bool isFour = Area(command, AreaPath("bow_tie"), more).exitCode == 4;
    EXPECT_EQ(named.find(command + ",") != std::string::npos, isFour) << command;
    codes += isFour ? 1 : 0;
  }
  EXPECT_EQ(std::count(named.begin(), named.end(), ','), codes);
}

TEST(AreaCommands, ReportEightReasonsAndInfoReportsAll) {
  const TempFolderC folder;
  std::string points;
  for (int i = 0; i < 5000; ++i) points += std::string(i > 0 ? "," : "") + "[-1, 20]";
  const std::string file = Written(folder, R"({"kind": "polygon", "unit": "deg", "hzStep": 1,
      "vStep": 1, "points": [)" + points + "]}");
  for (const Outcome& outcome :
       {Area("contains", file, {"1,2"}), Area("plot", file, {"-o", folder / "out.svg"})}) {
    EXPECT_EQ(outcome.exitCode, 4);
    const std::vector<std::string> lines = Lines(outcome.err);
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[8], "surveydata: the area is not valid: 9991 more reasons, see area info");
  }
  EXPECT_EQ(json::parse(Area("info", file, {"--json"}).out)["faults"].size(), 9999u);
}

TEST(AreaContains, AnswersForDirectionsOfTheCommandLine) {
  const Outcome inside = Area("contains", AreaPath("doorway"), {"0,90", "355,100"});
  EXPECT_EQ(inside.exitCode, 0);
  EXPECT_EQ(inside.out,
            "        Hz [deg]           V [deg]  answer\n"
            "               0                90  inside\n"
            "             355               100  inside\n"
            "2 directions: 2 inside, 0 outside\n");
  const Outcome mixed = Area("contains", AreaPath("doorway"), {"-5,90", "20,90", "--json"});
  EXPECT_EQ(mixed.exitCode, 1);
  EXPECT_EQ(mixed.out,
            "{\"hz\":-5.0,\"v\":90.0,\"inside\":true}\n"
            "{\"hz\":20.0,\"v\":90.0,\"inside\":false}\n");
}

// Otherwise they would look like options.
TEST(AreaContains, TakesNegativeDirectionsAfterTwoDashes) {
  const Outcome middle = Area("contains", AreaPath("doorway"), {"0,90", "--", "-5,95"});
  EXPECT_TRUE(Lines(middle.out).back().starts_with("2 directions: ")) << middle.out << middle.err;
  EXPECT_NE(middle.out.find(" -5 "), std::string::npos) << middle.out;
  for (const std::vector<std::string>& words : {std::vector<std::string>{"--", "0,90", "-5,95"},
                                                {"--format", "text", "0,90", "--", "-5,95"}}) {
    EXPECT_EQ(Area("contains", AreaPath("doorway"), words).out, middle.out);
  }
  EXPECT_EQ(Area("contains", AreaPath("doorway"), {"0,90", "--", "-5,95", "--json"}).err,
            "surveydata: --json is not a direction HZ,V: two numbers, with a decimal point\n");
}

TEST(AreaContains, ReadsDirectionsFromAFileOrStandardInput) {
  const TempFolderC folder;
  const std::string text = "hz,v\r\n# a comment\r\n\r\n0,90\r\n355, 100\r\n+8 ,116\r\n";
  WriteBytes(folder / "d.csv", Bytes(text.begin(), text.end()));
  const std::vector<std::string> area = {"area", "contains", AreaPath("doorway"), "--json"};
  const std::string expected =
      "{\"hz\":0.0,\"v\":90.0,\"inside\":true}\n{\"hz\":355.0,\"v\":100.0,\"inside\":true}\n"
      "{\"hz\":8.0,\"v\":116.0,\"inside\":true}\n";
  const struct {
    std::vector<std::string> more;
    RunOptions run;
  } cases[] = {
      {{"--csv", "d.csv"}, {.folder = folder.Path().string()}},
      {{"--csv", "-"}, {.input = folder / "d.csv"}},
      {{}, {.input = folder / "d.csv"}},
  };
  for (const auto& [more, run] : cases) {
    SCOPED_TRACE(testing::PrintToString(more));
    std::vector<std::string> arguments = area;
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = RunProgram(arguments, run);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, expected);
    EXPECT_EQ(outcome.err, "");
  }
  const Outcome none = RunProgram(area);
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.out, "");
  EXPECT_EQ(none.err, "surveydata: standard input: there is no direction\n");
}

// Point names and remarks stay with their directions, for any order of the columns.
TEST(AreaContains, PassesOtherColumnsOn) {
  const TempFolderC folder;
  const std::string text =
      "id;V;remark;HZ\n\"P;1\";90;=1+1;0\n#2;90.5;\"say \"\"x\"\"\";20\n;91;;+1\n";
  WriteBytes(folder / "d.csv", Bytes(text.begin(), text.end()));
  const auto ask = [&](const std::vector<std::string>& more) {
    std::vector<std::string> all = {"--csv", folder / "d.csv"};
    all.insert(all.end(), more.begin(), more.end());
    const Outcome outcome = Area("contains", AreaPath("doorway"), all);
    EXPECT_EQ(outcome.exitCode, 1);
    return outcome.out;
  };
  EXPECT_EQ(ask({}),
            "        Hz [deg]           V [deg]  answer   id  remark\n"
            "               0                90  inside   P;1  =1+1\n"
            "              20              90.5  outside  #2  say \"x\"\n"
            "               1                91  inside     \n"
            "3 directions: 2 inside, 1 outside\n");
  EXPECT_EQ(ask({"--format", "csv"}),
            "id,V,remark,HZ,inside\r\n\"P;1\",90,'=1+1,0,true\r\n"
            "#2,90.5,\"say \"\"x\"\"\",20,false\r\n,91,,+1,true\r\n");
  EXPECT_NE(ask({"--format", "csv", "--formulas", "keep"}).find(",=1+1,"), std::string::npos);
  const std::string jsonLines =
      "{\"hz\":0.0,\"v\":90.0,\"inside\":true,\"columns\":{\"id\":\"P;1\",\"remark\":\"=1+1\"}}\n"
      "{\"hz\":20.0,\"v\":90.5,\"inside\":false,"
      "\"columns\":{\"id\":\"#2\",\"remark\":\"say \\\"x\\\"\"}}\n"
      "{\"hz\":1.0,\"v\":91.0,\"inside\":true,\"columns\":{\"id\":\"\",\"remark\":\"\"}}\n";
  EXPECT_EQ(ask({"--json"}), jsonLines);
  EXPECT_EQ(ask({"--format", "json"}), jsonLines);
}

// As everywhere in CSV, control characters and bytes that are not UTF-8 become U+FFFD.
TEST(AreaContains, WritesNoControlCharactersToCsvOrJson) {
  const TempFolderC folder;
  const std::string text = "hz,v,a\x1B\n0,90,\x1B[31m\xFF\u009B\u00E9\n";
  WriteBytes(folder / "d.csv", Bytes(text.begin(), text.end()));
  const std::vector<std::string> options = {"--csv", folder / "d.csv", "--format"};
  const auto ask = [&](const std::string& format) {
    std::vector<std::string> all = options;
    all.push_back(format);
    return Area("contains", AreaPath("doorway"), all).out;
  };
  EXPECT_EQ(ask("csv"), "hz,v,a\uFFFD,inside\r\n0,90,\uFFFD[31m\uFFFD\uFFFD\u00E9,true\r\n");
  EXPECT_EQ(ask("json"),
            "{\"hz\":0.0,\"v\":90.0,\"inside\":true,\"columns\":{\"a\\u001b\":"
            "\"\\u001b[31m\uFFFD\\u009b\u00E9\"}}\n");
}

TEST(AreaFile, IsRefusedWithAShortMessage) {
  const TempFolderC folder;
  const Outcome outcome =
      Area("info", Written(folder, "{\"" + std::string(5'000'000, 'A') + "\": 1}"));
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_NE(outcome.err.find("\"" + std::string(60, 'A') + "...\" is not a member"),
            std::string::npos)
      << outcome.err.substr(0, 1000);
  EXPECT_LT(outcome.err.size(), 1000u);
}

TEST(AreaContains, WritesCsvWithoutOtherColumns) {
  EXPECT_EQ(Area("contains", AreaPath("doorway"), {"0,90", "20,90", "--format", "csv"}).out,
            "hz,v,inside\r\n0,90,true\r\n20,90,false\r\n");
  const TempFolderC folder;
  WriteBytes(folder / "d.csv", {'0', ' ', '9', '0'});
  EXPECT_EQ(
      Area("contains", AreaPath("doorway"), {"--csv", folder / "d.csv", "--format", "csv"}).out,
      "hz,v,inside\r\n0,90,true\r\n");
  WriteBytes(folder / "empty.csv", {});
  EXPECT_EQ(
      Area("contains", AreaPath("doorway"), {"--csv", folder / "empty.csv", "--format", "csv"}).out,
      "hz,v,inside\r\n");
}

TEST(AreaContains, GivesTheReasonsOfItsAnswers) {
  EXPECT_EQ(Area("contains", AreaPath("doorway"), {"0,90", "20,90", "--why"}).out,
            "        Hz [deg]           V [deg]  answer\n"
            "               0                90  inside\n"
            "    1 of 2 crossings of the meridian counts, an odd number\n"
            "      crosses edge 4 at V 71.25000 deg\n"
            "      crosses edge 2 at V 117.00000 deg, counts\n"
            "    nearest: edge 3, 8.25000 deg away\n"
            "              20                90  outside\n"
            "    the meridian crosses no edge\n"
            "    nearest: edge 3, 11.75000 deg away\n"
            "2 directions: 1 inside, 1 outside\n");
  EXPECT_EQ(Area("contains", AreaPath("doorway"), {"0,90", "--why", "--json"}).out,
            "{\"hz\":0.0,\"v\":90.0,\"inside\":true,\"why\":{\"rule\":\"parity\",\"hz\":0.0,"
            "\"v\":90.0,\"bandEdge\":null,\"crossings\":[{\"edge\":4,\"v\":71.25,"
            "\"isCounted\":false},{\"edge\":2,\"v\":117.0,\"isCounted\":true}],"
            "\"nearestEdge\":3,\"distance\":8.25}}\n");
}

TEST(AreaContains, NamesTheRuleThatDecided) {
  const std::string band = DataPath("../../docs/pictures/boundary_band.json");
  const struct {
    std::string area;
    std::string direction;
    std::string rule;
    std::string text;
  } cases[] = {
      {AreaPath("doorway"), "99999,90", "outOfRange", "an angle is beyond 100 rad"},
      {AreaPath("dome"), "57,92", "dome", "the dome reaches down to V 160.00000 gon"},
      {band, "320,85", "band", "in the boundary band of edge 2"},
      {AreaPath("doorway"), "20,90", "noCrossing", "the meridian crosses no edge"},
      {AreaPath("doorway"), "0,60", "nothingAbove",
       "all crossings of the meridian are below, and the area is not around the zenith"},
      {AreaPath("doorway"), "0,120", "parity", "0 of 2 crossings of the meridian count, an even "},
  };
  for (const auto& [area, direction, rule, text] : cases) {
    SCOPED_TRACE(rule);
    const json line = json::parse(Area("contains", area, {direction, "--why", "--json"}).out);
    EXPECT_EQ(line["why"]["rule"], rule);
    EXPECT_EQ(line["why"]["nearestEdge"].is_null(), rule == "outOfRange");
    EXPECT_EQ(line["why"]["bandEdge"], rule == "band" ? json(2) : json());
    const std::string out = Area("contains", area, {direction, "--why"}).out;
    EXPECT_NE(out.find("\n    " + text), std::string::npos) << out;
    EXPECT_EQ(out.find("the limit of the dome") != std::string::npos, rule == "dome") << out;
  }
}

// Hz and V of a table.
std::vector<std::pair<double, double>> DirectionsOf(const std::string& csv) {
  std::vector<std::pair<double, double>> directions;
  const std::vector<std::string> lines = Lines(csv);
  EXPECT_EQ(lines.front(), "hz,v\r");
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::size_t comma = lines[i].find(',');
    directions.emplace_back(std::stod(lines[i].substr(0, comma)),
                            std::stod(lines[i].substr(comma + 1)));
  }
  return directions;
}

// The tests of the Python package compare grids with the same file.
TEST(AreaGrid, ListsTheDirectionsInTheOrderOfASweep) {
  const TempFolderC folder;
  const json grids = json::parse(ReadText(DataPath("area_grids.json")));
  ASSERT_EQ(grids.size(), 7u);
  for (const json& grid : grids) {
    SCOPED_TRACE(grid["area"].dump());
    const std::string file = Written(folder, grid["area"].dump());
    const Outcome outcome = Area("grid", file);
    EXPECT_EQ(outcome.exitCode, 0);
    const auto directions = DirectionsOf(outcome.out);
    ASSERT_EQ(directions.size(), grid["directions"].size());
    for (std::size_t i = 0; i < directions.size(); ++i) {
      // The list has nine decimals.
      EXPECT_NEAR(directions[i].first, grid["directions"][i][0].get<double>(), 1e-9) << i;
      EXPECT_NEAR(directions[i].second, grid["directions"][i][1].get<double>(), 1e-9) << i;
    }
  }
}

// Columns of several thousand directions are computed in blocks, which must not show.
TEST(AreaGrid, GoesDownAndUpInColumnsOfAnyLength) {
  const TempFolderC folder;
  const std::string file = Written(folder, R"({"kind": "rectangle", "unit": "deg", "hzStep": 1,
      "vStep": 0.002, "points": [[10, 80], [12, 100]]})");
  const auto directions = DirectionsOf(Area("grid", file, {"-o", "-"}).out);
  constexpr std::size_t kRows = 10000;  // one side of the rectangle is not inside
  ASSERT_EQ(directions.size(), 3 * kRows);
  const double first = directions[0].second;
  for (std::size_t i = 0; i < directions.size(); ++i) {
    const std::size_t row = i / kRows % 2 == 0 ? i % kRows : kRows - 1 - i % kRows;
    ASSERT_EQ(directions[i].first, 10.0 + static_cast<double>(i / kRows));
    ASSERT_NEAR(directions[i].second, first + 0.002 * static_cast<double>(row), 1e-10) << i;
  }
}

TEST(AreaGrid, ListsAsManyDirectionsAsInfoCountsAndAllAreInside) {
  const TempFolderC folder;
  const std::string file = folder / "grid.csv";
  EXPECT_EQ(Area("grid", AreaPath("facade"), {"-o", file}).exitCode, 0);
  const json info = json::parse(Area("info", AreaPath("facade"), {"--json"}).out);
  const Outcome asked = Area("contains", AreaPath("facade"), {"--csv", file});
  EXPECT_EQ(asked.exitCode, 0);
  EXPECT_TRUE(asked.out.ends_with("\n" + info["directions"]["count"].dump() + " directions: " +
                                  info["directions"]["count"].dump() + " inside, 0 outside\n"));
}

TEST(AreaGrid, ReportsThatThereIsNoDirectionOrThatTheStepsAreTooSmall) {
  const TempFolderC folder;
  const Outcome none =
      Area("grid", Written(folder, R"({"kind": "polygon", "unit": "deg", "hzStep": 300,
      "vStep": 170, "points": [[10, 90], [20, 80], [20, 100]]})"));
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.out, "hz,v\r\n");
  EXPECT_EQ(none.err, "surveydata: no direction at these steps is inside the area\n");
  const auto refusal = [&](const std::string& hzStep, const std::string& vStep) {
    const Outcome small =
        Area("grid", Written(folder, R"({"kind": "dome", "unit": "deg", "hzStep": )" + hzStep +
                                         R"(, "vStep": )" + vStep + "}"));
    EXPECT_EQ(small.exitCode, 4);
    EXPECT_EQ(small.out, "");
    return small.err;
  };
  EXPECT_EQ(
      refusal("1e-300", "1"),
      "surveydata: the grid has 3.6e+302 columns, more than 9.007e+15: the step is too small\n");
  EXPECT_EQ(
      refusal("1", "1e-9"),
      "surveydata: the grid has 1.44e+11 directions in a column, more than 1e+07: the step is too "
      "small\n");
}

TEST(AreaConvert, WritesTheSameAreaInAnotherUnit) {
  const TempFolderC folder;
  const std::string all = R"({
  "kind": "polygon",
  "unit": "gon",
  "name": "all \"ü\"",
  "hzStep": 1,
  "vStep": 0.05,
  "limitLow": 0.5,
  "limitHigh": 80,
  "settingA": 7,
  "settingB": 8,
  "settingC": 4294967295,
  "settingD": 1.5,
  "settingE": 65535,
  "points": [
    [10, 20.0001],
    [30, 40, 5.5],
    [50, 20, 0]
  ]
}
)";
  const std::string file = Written(folder, all);
  EXPECT_EQ(Area("convert", file, {"--unit", "gon"}).out, all);
  EXPECT_EQ(Area("convert", file, {"--unit", "deg", "-o", folder / "deg.json"}).exitCode, 0);
  const json inDegrees = json::parse(ReadText(folder / "deg.json"));
  EXPECT_EQ(inDegrees["unit"], "deg");
  EXPECT_EQ(inDegrees["hzStep"], 0.9);
  EXPECT_EQ(inDegrees["settingA"], 7);
  EXPECT_EQ(inDegrees["points"], json::parse("[[9, 18.00009], [27, 36, 5.5], [45, 18, 0]]"));
  EXPECT_EQ(Area("convert", folder / "deg.json", {"--unit", "gon"}).out, all);

  const std::string bare = R"({
  "kind": "dome",
  "unit": "deg",
  "hzStep": 1,
  "vStep": 60
}
)";
  EXPECT_EQ(Area("convert", Written(folder, bare), {"--unit", "deg"}).out, bare);
  EXPECT_DOUBLE_EQ(
      json::parse(Area("convert", Written(folder, bare), {"--unit", "gon"}).out)["vStep"],
      200.0 / 3);
}

TEST(AreaConvert, GivesAnglesBackAsTheyWere) {
  const TempFolderC folder;
  for (const char* const unit : {"deg", "gon"}) {
    SCOPED_TRACE(unit);
    std::string points;
    std::uint64_t state = 2026;
    const auto angle = [&](std::uint64_t turn) {
      state = state * 6364136223846793005U + 1442695040888963407U;
      const std::uint64_t units = (state >> 20) % (turn * 10'000'000'000U);
      return std::to_string(units / 10'000'000'000U) + "." +
             std::to_string(10'000'000'000U + units % 10'000'000'000U).substr(1);
    };
    for (int i = 0; i < 1000; ++i) {
      points += std::string(i > 0 ? "," : "") + "[" + angle(360) + "," + angle(180) + "]";
    }
    const std::string given =
        Area(
            "convert",
            Written(folder, R"({"kind": "polygon", "hzStep": 0.0123456789, "vStep": 1, "unit": ")" +
                                std::string(unit) + R"(", "points": [)" + points + "]}"),
            {"--unit", unit})
            .out;
    EXPECT_EQ(json::parse(given)["points"], json::parse("[" + points + "]"));
    for (const char* const other : {"rad", "deg", "gon"}) {
      SCOPED_TRACE(other);
      WriteBytes(folder / "given.json", Bytes(given.begin(), given.end()));
      EXPECT_EQ(Area("convert", folder / "given.json", {"--unit", other, "-o", folder / "b.json"})
                    .exitCode,
                0);
      EXPECT_EQ(Area("convert", folder / "b.json", {"--unit", unit}).out, given);
    }
  }
}

TEST(AreaConvert, RefusesAnAngleThatIsTooLargeAndTheInputAsOutput) {
  const TempFolderC folder;
  const std::string file =
      Written(folder, R"({"kind": "dome", "unit": "rad", "hzStep": 1e308, "vStep": 1})");
  const Outcome outcome = Area("convert", file, {"--unit", "gon"});
  EXPECT_EQ(outcome.exitCode, 4);
  EXPECT_EQ(outcome.err, "surveydata: an angle is too large for the unit gon\n");
  EXPECT_EQ(Area("convert", file, {"--unit", "rad", "-o", file}).exitCode, 2);
  EXPECT_EQ(Area("convert", file, {"--unit", "mil"}).exitCode, 2);
}

TEST(AreaCommands, RefuseToOverwriteAnyFileThatTheyRead) {
  const TempFolderC folder;
  fs::copy(AreaPath("doorway"), folder / "a.json");
  const Bytes area = ReadBytes(folder / "a.json");
  const std::string text = "hz,v\n0,90\n";
  const Bytes table(text.begin(), text.end());
  WriteBytes(folder / "d.csv", table);
  const auto refused = [&](const std::string& command, const std::vector<std::string>& more) {
    const Outcome outcome = Area(command, folder / "a.json", more);
    EXPECT_EQ(outcome.exitCode, 2) << command;
    EXPECT_TRUE(outcome.err.ends_with(" is the input itself\n")) << outcome.err;
  };
  refused("plot", {"--csv", folder / "d.csv", "-o", folder / "d.csv"});
#if !defined(_WIN32)  // there the standard library makes no links
  fs::create_symlink("d.csv", fs::path(folder / "link.csv"));
  refused("plot", {"--csv", folder / "d.csv", "-o", folder / "link.csv"});
  refused("plot", {"--csv", folder / "link.csv", "-o", folder / "d.csv"});
#endif
  refused("plot", {"--csv", folder / "d.csv", "-o", folder / "a.json"});
  refused("plot", {"-o", folder / "a.json"});
  refused("grid", {"-o", folder / "a.json"});
  refused("convert", {"--unit", "gon", "-o", folder / "a.json"});
  EXPECT_EQ(ReadBytes(folder / "d.csv"), table);
  EXPECT_EQ(ReadBytes(folder / "a.json"), area);
}

// Tests each statement of the help with an area from Hz 100 to 160 deg, V 60 to 110.
TEST(AreaContains, SaysInItsHelpWhereTheBoundaryBandLies) {
  std::string help = RunProgram({"area", "contains", "--help"}).out;
  std::replace(help.begin(), help.end(), '\n', ' ');
  const std::string area = DataPath("../../docs/pictures/boundary_band.json");
  const struct {
    const char* statement;
    std::vector<std::string> inside;
    std::vector<std::string> outside;
  } cases[] = {
      {"A direction in the boundary band is inside. The band extends 0.0005 gon to both sides of "
       "lines that are displaced from the boundary: their Hz is that of the boundary minus twice "
       "the smallest Hz of the area,",
       {"320,85", "319.99956,85", "320.00044,85"},
       {"319.9995,85", "320.0005,85", "290,85"}},
      {"and they are straight in Hz and V where the boundary follows arcs.",
       {"290,60", "290,60.0004", "290,110"},
       {"290,56.5", "290,112.5"}},
      {"The closing edge of a polygon has no band.", {}, {"260,70", "260,85", "260,100"}}};
  for (const auto& [statement, inside, outside] : cases) {
    EXPECT_NE(help.find(statement), std::string::npos) << statement;
    for (const std::string& direction : inside) {
      EXPECT_EQ(Area("contains", area, {direction}).exitCode, 0) << direction;
    }
    for (const std::string& direction : outside) {
      EXPECT_EQ(Area("contains", area, {direction}).exitCode, 1) << direction;
    }
  }
}

// As for a record file without a measurement: an empty table is probably a mistake.
TEST(AreaContains, ExitsWithOneForATableWithoutADirection) {
  const TempFolderC folder;
  const std::string file = folder / "empty.csv";
  const std::string heading = "        Hz [deg]           V [deg]  answer\n";
  for (const char* const text : {"", "hz,v\n", "\n# nothing\n"}) {
    SCOPED_TRACE(text);
    WriteBytes(file, Bytes(text, text + std::string_view(text).size()));
    const struct {
      const char* form;
      std::string out;
    } cases[] = {{"text", heading + "0 directions: 0 inside, 0 outside\n"},
                 {"csv", "hz,v,inside\r\n"},
                 {"json", ""}};
    for (const auto& [form, out] : cases) {
      const Outcome outcome =
          Area("contains", AreaPath("doorway"), {"--csv", file, "--format", form});
      EXPECT_EQ(outcome.exitCode, 1);
      EXPECT_EQ(outcome.out, out);
      EXPECT_EQ(outcome.err, "surveydata: " + file + ": there is no direction\n");
    }
  }
}

TEST(AreaContains, TakesTheUnitInAHeadingOnlyIfItIsThatOfTheArea) {
  const TempFolderC folder;
  const std::string file = folder / "d.csv";
  const auto ask = [&](const std::string& text) {
    WriteBytes(file, Bytes(text.begin(), text.end()));
    return Area("contains", AreaPath("doorway"), {"--csv", file, "--format", "csv"});
  };
  EXPECT_EQ(ask("Hz [deg],V [deg]\n0,90\n").out, "Hz [deg],V [deg],inside\r\n0,90,true\r\n");
  const Outcome other = ask("Hz [gon],V [gon]\n0,100\n");
  EXPECT_EQ(other.exitCode, 3);
  EXPECT_EQ(other.out, "");
  EXPECT_EQ(other.err, "surveydata: " + file +
                           ": line 1 has the column Hz [gon], but the directions are in deg, the "
                           "unit of the area file\n");
  EXPECT_EQ(Area("plot", AreaPath("doorway"), {"-o", folder / "out.svg", "--csv", file}).err,
            other.err);
}

// Without a heading, columns are named by numbers.
TEST(AreaContains, TakesTheColumnsThatAreNamed) {
  const TempFolderC folder;
  const std::string text = "P1\t90\t0\n";
  WriteBytes(folder / "d.csv", Bytes(text.begin(), text.end()));
  const std::vector<std::string> options = {"--csv", folder / "d.csv", "--columns", "3,2"};
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--json"}, {"--json", "--no-header", "--separator", "tab"}}) {
    std::vector<std::string> all = options;
    all.insert(all.end(), more.begin(), more.end());
    EXPECT_EQ(Area("contains", AreaPath("doorway"), all).out,
              "{\"hz\":0.0,\"v\":90.0,\"inside\":true,\"columns\":{\"1\":\"P1\"}}\n");
  }
}

TEST(AreaCommands, DoNotControlTheTerminal) {
  const TempFolderC folder;
  // An escape sequence, DEL, a C1 control, a line separator, a bidirectional override.
  const std::string steering = "a\x1B[31m\x7F\u009B\u2028\u202Eb";
  const std::string shown = "a\\x1b[31m\\x7f\\u009b\\u2028\\u202eb";
  const std::string lines = "0,90\n" + steering + ",1\n";
  WriteBytes(folder / "d.csv", Bytes(lines.begin(), lines.end()));
  const std::string table = "id,hz,v\n" + steering + ",0,90\n";
  WriteBytes(folder / "t.csv", Bytes(table.begin(), table.end()));
  const std::string name = "a\x1B[31m\n\x7F\u009B\u2028\u202Eb";
  const std::string named = Written(
      folder, json({{"kind", "dome"}, {"unit", "deg"}, {"hzStep", 1}, {"vStep", 1}, {"name", name}})
                  .dump());
  const Outcome info = Area("info", named);
  EXPECT_NE(info.out.find("a\\x1b[31m\\n\\x7f\\u009b\\u2028\\u202eb\n"), std::string::npos)
      << info.out;
  EXPECT_EQ(json::parse(Area("info", named, {"--json"}).out)["name"], name);
  for (const Outcome& outcome :
       {Area("contains", AreaPath("doorway"), {"--csv", folder / "d.csv"}),
        Area("contains", AreaPath("doorway"), {"--csv", folder / "t.csv"}),
        Area("info", folder / steering), Area("contains", AreaPath("doorway"), {steering})}) {
    EXPECT_NE((outcome.out + outcome.err).find(shown), std::string::npos)
        << outcome.out << outcome.err;
    EXPECT_EQ((outcome.out + outcome.err).find_first_of("\x1B\x7F"), std::string::npos);
  }
  // A line break in a name does not start a new line of the message.
  const Outcome missing = Area("info", folder / "a\nsurveydata: done");
  EXPECT_EQ(Lines(missing.err).size(), 1u) << missing.err;
  EXPECT_NE(missing.err.find("a\\nsurveydata: done"), std::string::npos) << missing.err;
}

TEST(AreaInfo, AbbreviatesHugeNumbers) {
  const TempFolderC folder;
  const std::string dome = Written(folder, R"({"kind": "dome", "unit": "rad", "hzStep": 1e-200,
      "vStep": 1e-300})");
  const Outcome text = Area("info", dome);
  EXPECT_NE(text.out.find("Hz 1e-200 rad, V 1e-300 rad\n"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("1e+18 or more at these steps\n"), std::string::npos) << text.out;
  const json directions = json::parse(Area("info", dome, {"--json"}).out)["directions"];
  EXPECT_EQ(directions["count"], 1'000'000'000'000'000'000);
  EXPECT_EQ(directions["exact"], false);
  const std::string far = Written(folder, R"({"kind": "polygon", "unit": "deg", "hzStep": 1,
      "vStep": 1, "points": [[1e300, 20], [30, 20], [20, 50]]})");
  const Outcome outcome = Area("info", far);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.out.find("1e+300"), std::string::npos) << outcome.out;
}

TEST(AreaOutline, RefusesADefaultThatIsNotADistance) {
  for (const char* const distance : {"0", "-1", "nan", "inf", "1e400", "x", ""}) {
    SCOPED_TRACE(distance);
    EXPECT_EQ(Area("outline", AreaPath("facade"), {"--default-distance", distance}).exitCode, 2);
  }
}

TEST(AreaPlot, WritesToStandardOutputForAHyphen) {
  const TempFolderC folder;
  const Outcome outcome = RunProgram({"area", "plot", AreaPath("doorway"), "-o", "-"},
                                     {.folder = folder.Path().string()});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NO_THROW(ParseXml(outcome.out));
  EXPECT_TRUE(folder.Names().empty());
}

TEST(AreaContains, NamesTheLineThatIsNotADirection) {
  const TempFolderC folder;
  const std::string input = "1,2\nheading\n";
  WriteBytes(folder / "in", Bytes(input.begin(), input.end()));
  const Outcome outcome =
      RunProgram({"area", "contains", AreaPath("doorway")}, {.input = folder / "in"});
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_EQ(outcome.err,
            "surveydata: standard input: line 2 has 1 column, not 2 as the first line: heading\n");
}

// Numbers around the size of a block, and a large one.
TEST(AreaContains, AnswersAsTheLibraryDoesForAnyNumberOfDirections) {
  const TempFolderC folder;
  const Tool::AreaFile file = Tool::LoadAreaFile(AreaPath("facade"));
  for (const int count : {1, 4095, 4096, 4097, 20'000}) {
    SCOPED_TRACE(count);
    std::string input;
    std::string expected;
    bool areAllInside = true;
    for (int i = 0; i < count; ++i) {
      const double hz = i * 7919 % 40000 / 400.0;
      const double v = 50 + i * 104729 % 60000 / 1000.0;
      const bool isInside =
          file.area->Contains(Tool::ToRadians(hz, file.unit), Tool::ToRadians(v, file.unit));
      areAllInside = areAllInside && isInside;
      input += std::to_string(hz) + "," + std::to_string(v) + "\n";
      expected += isInside ? "inside\n" : "outside\n";
    }
    WriteBytes(folder / "d.csv", Bytes(input.begin(), input.end()));
    const std::vector<std::string> lines =
        Lines(Area("contains", AreaPath("facade"), {"--csv", folder / "d.csv"}).out);
    std::string answers;  // after the heading, and before the sum
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
      answers += lines[i].substr(lines[i].rfind(' ') + 1) + "\n";
    }
    EXPECT_EQ(answers, expected);
    EXPECT_FALSE(areAllInside);
  }
}

TEST(AreaPlot, DrawsWellFormedPicturesOfEverySample) {
  const TempFolderC folder;
  for (const char* const name : kAreas) {
    SCOPED_TRACE(name);
    const Outcome outcome = Area("plot", AreaPath(name), {"-o", folder / "out.svg"});
    EXPECT_EQ(outcome.exitCode, std::string(name) == "bow_tie" ? 4 : 0);
    EXPECT_EQ(outcome.out, "");
    const std::string text = ReadText(folder / "out.svg");
    const ptree svg = ParseXml(text);
    for (const char* const label :
         {"Hz and V", "seen from the zenith", "zenith", "inside", "lowest direction"}) {
      EXPECT_TRUE(HasText(svg, label)) << label;
    }
    EXPECT_EQ(text.find("nan"), std::string::npos);
    EXPECT_EQ(text.find("inf"), std::string::npos);
    const std::size_t filled = Count(svg, "polygon", "fill", "#cfe3f3");
    EXPECT_EQ(filled > 0, std::string(name) != "bow_tie");
  }
}

TEST(AreaPlot, DrawsEveryEdgeInBothPanelsAndCrossingOnesRed) {
  const TempFolderC folder;
  Area("plot", AreaPath("facade"), {"-o", folder / "out.svg"});
  EXPECT_EQ(Count(ParseXml(ReadText(folder / "out.svg")), "polyline", "stroke", "#0072b2"), 38u);
  Area("plot", AreaPath("bow_tie"), {"-o", folder / "out.svg"});
  const ptree bowTie = ParseXml(ReadText(folder / "out.svg"));
  EXPECT_EQ(Count(bowTie, "polyline", "stroke", "#0072b2"), 4u);
  EXPECT_EQ(Count(bowTie, "polyline", "stroke", "#cc3311"), 4u);
  // The upper and the lower edge lie on both sides of Hz 0, the others on one.
  Area("plot", AreaPath("doorway"), {"-o", folder / "out.svg"});
  EXPECT_EQ(Count(ParseXml(ReadText(folder / "out.svg")), "polyline", "stroke", "#0072b2"),
            4u + 6u);
}

TEST(AreaPlot, MarksProbesByTheirAnswer) {
  const TempFolderC folder;
  WriteBytes(folder / "d.csv", {'5', ',', '9', '0', '\n'});
  Area("plot", AreaPath("doorway"),
       {"-o", folder / "out.svg", "--probe", "0,90", "--probe", "-5,90", "--probe", "20,90",
        "--csv", folder / "d.csv"});
  const ptree svg = ParseXml(ReadText(folder / "out.svg"));
  EXPECT_TRUE(HasText(svg, "3 directions inside"));
  EXPECT_TRUE(HasText(svg, "1 direction outside"));
  // In both panels and in the legend; a cross has two lines.
  EXPECT_EQ(Count(svg, "circle", "fill", "#117733"), 7u);
  EXPECT_EQ(Count(svg, "line", "stroke", "#aa3377"), 6u);
}

// The texts of a picture as boxes, hardly larger than the texts are in any font.
struct TextBox {
  double left, top, right, bottom;
  std::string text;
};

std::vector<TextBox> TextBoxes(const ptree& svg) {
  std::vector<TextBox> boxes;
  for (const auto& [name, child] : svg.get_child("svg")) {
    if (name != "text") continue;
    const auto attribute = [&child = child](const char* key) {
      return child.get<double>("<xmlattr>." + std::string(key));
    };
    std::size_t characters = 0;
    for (const char c : child.data()) {
      if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++characters;
    }
    const double size = attribute("font-size");
    const double width = 0.5 * size * static_cast<double>(characters);
    const auto anchor = child.get<std::string>("<xmlattr>.text-anchor");
    const double before = anchor == "middle" ? width / 2 : anchor == "end" ? width : 0;
    const double x = attribute("x");
    const double y = attribute("y");
    if (child.get<std::string>("<xmlattr>.transform", "").empty()) {
      boxes.push_back({x - before, y - 0.7 * size, x - before + width, y, child.data()});
    } else {
      boxes.push_back({x - 0.7 * size, y - width + before, x, y + before, child.data()});
    }
  }
  return boxes;
}

void ExpectNoOverlap(const ptree& svg) {
  const std::vector<TextBox> boxes = TextBoxes(svg);
  EXPECT_GT(boxes.size(), 10u);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const TextBox& a = boxes[i];
    EXPECT_TRUE(a.left >= 0 && a.top >= 0 && a.right <= 1100 && a.bottom <= 550) << a.text;
    for (std::size_t k = 0; k < i; ++k) {
      const TextBox& b = boxes[k];
      EXPECT_FALSE(a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom)
          << a.text << " | " << b.text;
    }
  }
}

TEST(AreaPlot, HasNoTextsThatOverlap) {
  const TempFolderC folder;
  std::vector<std::string> files;
  for (const char* const name : kAreas) files.push_back(AreaPath(name));
  for (const auto& entry : fs::directory_iterator(DataPath("../../docs/pictures"))) {
    if (entry.path().extension() == ".json") files.push_back(entry.path().string());
  }
  std::string close;  // corners next to each other
  for (int i = 0; i < 90; ++i) {
    close += (i > 0 ? "," : "") + json({1 + i % 10 * 0.01, 1 + i / 10 * 0.02}).dump();
  }
  files.push_back(Written(folder, R"({"kind": "polygon", "unit": "rad", "hzStep": 1, "vStep": 1,
      "name": ")" + std::string(100'000, 'W') +
                                      R"(", "points": [)" + close + "]}"));
  for (const std::string& file : files) {
    for (const char* const window :
         {"", "0,0,0.00001,0.00001", "-7,-7,5.5,5.5", "0,0.1,12.5,12", "1,1,1.0123456,1.9"}) {
      SCOPED_TRACE(file + " " + window);
      std::vector<std::string> options = {"-o",  folder / "out.svg", "--probe",
                                          "1,1", "--probe",          "3,2"};
      if (*window != '\0') options.insert(options.end(), {"--window", window});
      EXPECT_NE(Area("plot", file, options).exitCode, 2);
      ExpectNoOverlap(ParseXml(ReadText(folder / "out.svg")));
    }
  }
}

// A polygon of these corners, deg.
std::string Ring(const std::vector<std::pair<double, double>>& corners) {
  std::string points;
  for (const auto& [hz, v] : corners) {
    points += (points.empty() ? "[" : ",[") + std::to_string(hz) + "," + std::to_string(v) + "]";
  }
  return R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1, "points": [)" + points +
         "]}";
}

// A comb whose teeth lie side by side along Hz.
std::string Comb(int teeth) {
  std::vector<std::pair<double, double>> corners = {{10, 20}};
  for (int i = 0; i < teeth; ++i) {
    const double width = 170.0 / teeth;
    const double hz = 10 + 2 * i * width;
    corners.insert(corners.end(),
                   {{hz, 140}, {hz + width, 140}, {hz + width, 30}, {hz + 2 * width - 1e-4, 30}});
  }
  corners.emplace_back(350, 20);
  return Ring(corners);
}

// Corners all over the sphere.
std::string Tangle(int count, double hzFrom) {
  std::vector<std::pair<double, double>> corners;
  for (int i = 0; i < count; ++i) {
    corners.emplace_back(hzFrom + i * 7919 % 359'000 / 1000.0, i * 3571 % 179'000 / 1000.0);
  }
  return Ring(corners);
}

// A ring around the zenith that crosses itself in many places.
std::string CrossedRing(int count) {
  std::vector<std::pair<double, double>> corners;
  for (int i = 0; i < count; ++i) {
    corners.emplace_back(5 + 345.0 * i / count + i % 2 * 5, 40 + i * 3571 % 60'000 / 1000.0);
  }
  return Ring(corners);
}

TEST(AreaPlot, WritesAtMostTwoMegabytesAndSaysWhatItLeavesOut) {
  const TempFolderC folder;
  std::string directions = "hz,v\n";
  for (int i = 0; i < 100'000; ++i) {
    directions += std::to_string(i * 7919 % 360'000 / 1000.0) + "," +
                  std::to_string(i * 3571 % 180'000 / 1000.0) + "\n";
  }
  WriteBytes(folder / "d.csv", Bytes(directions.begin(), directions.end()));
  const std::string asked = "100000 directions: drawn at the resolution of the picture";
  const struct {
    const char* what;
    std::string area;
    bool hasDirections;
    std::size_t titles;
    std::string notes;
  } cases[] = {
      {"a few corners", Comb(3), true, 2 * 14, asked},
      {"just few enough corners", Comb(499), true, 2 * 1998, asked},
      {"many corners", Comb(20'000), true, 0,
       "80002 corners: drawn at the resolution of the picture, without marks; " + asked},
      {"corners out of range", Tangle(50'000, -360), false, 2 * 2000,
       "50000 corners: drawn at the resolution of the picture, without marks except at the first "
       "2000 of "},
      {"a tangle", Tangle(1990, 0.5), false, 2 * 1990, ""},
      {"a large ring that crosses itself", CrossedRing(2'500), false, 0,
       "2500 corners: drawn at the resolution of the picture, without marks; the inside is not "
       "drawn"},
  };
  for (const auto& [what, area, hasDirections, titles, notes] : cases) {
    SCOPED_TRACE(what);
    std::vector<std::string> options = {"-o", folder / "out.svg"};
    if (hasDirections) options.insert(options.end(), {"--csv", folder / "d.csv"});
    const Outcome outcome = Area("plot", Written(folder, area), options);
    EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 4) << outcome.err;
    const std::string text = ReadText(folder / "out.svg");
    EXPECT_LE(text.size(), 2'000'000u);
    const ptree svg = ParseXml(text);
    ExpectNoOverlap(svg);
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find("><title>", at)) != std::string::npos; ++at) ++found;
    EXPECT_LE(found, titles);
    EXPECT_GE(found, titles / 2);  // in both panels, or only in that of the sphere
    const std::vector<TextBox> boxes = TextBoxes(svg);
    EXPECT_TRUE(notes.empty() || std::any_of(boxes.begin(), boxes.end(),
                                             [&notes = notes](const TextBox& box) {
                                               return box.text.starts_with(notes);
                                             }))
        << notes;
  }
}

// Directions in a raster are drawn at their positions.
TEST(AreaPlot, DrawsManyDirectionsWhereTheyAre) {
  const TempFolderC folder;
  std::string directions;
  for (int i = 0; i < 600; ++i) directions += std::to_string(90 + i * 0.01) + ",90\n";
  WriteBytes(folder / "d.csv", Bytes(directions.begin(), directions.end()));
  EXPECT_EQ(Area("plot", AreaPath("doorway"), {"-o", folder / "out.svg", "--csv", folder / "d.csv"})
                .exitCode,
            0);
  const ptree svg = ParseXml(ReadText(folder / "out.svg"));
  EXPECT_TRUE(HasText(svg, "600 directions outside"));
  // Hz 90 to 96 is a quarter of 600 pixels from the left and 10 wide; V 90 in the middle of 300.
  EXPECT_EQ(Count(svg, "path", "d", "M226 263h10"), 1u);
  EXPECT_EQ(Count(svg, "line", "stroke", "#aa3377"), 2u);  // in the legend
}

TEST(AreaPlot, ShowsAWindowOfThePlane) {
  const TempFolderC folder;
  const auto labels = [&](const std::vector<std::string>& more) {
    std::vector<std::string> all = {"-o", folder / "out.svg"};
    all.insert(all.end(), more.begin(), more.end());
    EXPECT_EQ(Area("plot", AreaPath("doorway"), all).exitCode, 0);
    return ParseXml(ReadText(folder / "out.svg"));
  };
  EXPECT_FALSE(HasText(labels({}), "-10"));
  const ptree svg = labels({"--window", "-20,60,20,130"});
  EXPECT_TRUE(HasText(svg, "-10"));
  EXPECT_TRUE(HasText(svg, "130"));
  // No seam within the window: every edge is drawn once there.
  EXPECT_EQ(Count(svg, "polyline", "stroke", "#0072b2"), 8u);
}

TEST(AreaPlot, DrawsWhateverPointsAFileHolds) {
  const TempFolderC folder;
  for (const char* const points :
       {"", "[0, 0]", "[1e300, 1], [2, 1e300], [3, 3]", "[0, 90], [180, 90], [90, 90]",
        "[0, 0], [90, 0], [45, 180]", "[10, 10], [10, 10], [10, 10]",
        "[0, 20], [180, 20], [90, 60]", "[-30, 500], [720, 20], [90, 60]"}) {
    SCOPED_TRACE(points);
    const std::string file =
        Written(folder, R"({"kind": "polygon", "unit": "deg", "hzStep": 1, "vStep": 1,
            "points": [)" + std::string(points) +
                            "]}");
    EXPECT_NE(Area("plot", file, {"-o", folder / "out.svg"}).exitCode, 3);
    const std::string text = ReadText(folder / "out.svg");
    EXPECT_NO_THROW(ParseXml(text));
    EXPECT_EQ(text.find("nan"), std::string::npos);
    EXPECT_EQ(text.find("inf\""), std::string::npos);
    EXPECT_LE(Area("info", file).exitCode, 1);
    EXPECT_NE(Area("outline", file).exitCode, 3);
  }
}

}  // namespace
