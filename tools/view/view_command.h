#ifndef SURVEYDATA_TOOLS_VIEW_VIEW_COMMAND_H_
#define SURVEYDATA_TOOLS_VIEW_VIEW_COMMAND_H_

#include <command_line/command.h>

namespace Tool {

/// `surveydata view`.
Command ViewCommand();

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_VIEW_VIEW_COMMAND_H_
