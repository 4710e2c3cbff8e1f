#ifndef SURVEYDATA_WEB_MODULE_FILES_H_
#define SURVEYDATA_WEB_MODULE_FILES_H_

#include <string>

namespace Page {

/// The name of the only file that the module can open: the last text that was passed to it.
inline constexpr const char* kFileName = "page";

void SetFile(std::string text);

}  // namespace Page

#endif  // SURVEYDATA_WEB_MODULE_FILES_H_
