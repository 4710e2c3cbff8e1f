#ifndef SURVEYDATA_TOOLS_VIEW_EMBEDDED_FILE_H_
#define SURVEYDATA_TOOLS_VIEW_EMBEDDED_FILE_H_

#include <string>
#include <string_view>

#include <output/output.h>

namespace Tool {

/// The placeholder for a file in a page for the browser; the project's page has one.
inline constexpr std::string_view kFilePlace = "<!-- file -->";

/// Writes `page` with a file at the first `kFilePlace`, in Base64 (RFC 4648) in an HTML element
/// that browsers neither show nor run. `name` is what the page calls the file. \return false, with
/// nothing written, if the page has no placeholder for a file.
bool WriteWithFile(std::string_view page, std::string_view name, std::string_view bytes,
                   OutputC& out);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_VIEW_EMBEDDED_FILE_H_
