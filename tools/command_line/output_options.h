#ifndef SURVEYDATA_TOOLS_COMMAND_LINE_OUTPUT_OPTIONS_H_
#define SURVEYDATA_TOOLS_COMMAND_LINE_OUTPUT_OPTIONS_H_

#include <string>

#include <CLI/CLI.hpp>

namespace Tool {

/// Adds `-o,--output` with a file name that is not empty; - leaves `output` empty, for standard
/// output.
CLI::Option* AddOutputOption(CLI::App& command, std::string& output, const std::string& description,
                             const std::string& typeName);

/// Adds a required `-o,--output` for an SVG picture. Names that end like pictures of another kind
/// are refused.
CLI::Option* AddPictureOption(CLI::App& command, std::string& output);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_COMMAND_LINE_OUTPUT_OPTIONS_H_
