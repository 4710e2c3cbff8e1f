#include <iterator>

#ifdef SURVEYDATA_COMPILE_FMT
#include <fmt/format-inl.h>
#endif

#include <platform/format.h>

#ifdef SURVEYDATA_COMPILE_FMT
// fmt's own source, for systems that have only a shared library of fmt. Instantiates the templates
// that only format-inl.h defines for all files.
FMT_BEGIN_NAMESPACE
namespace detail {
template auto dragonbox::to_decimal(float x) noexcept -> dragonbox::decimal_fp<float>;
template auto dragonbox::to_decimal(double x) noexcept -> dragonbox::decimal_fp<double>;
template locale_ref::locale_ref(const std::locale& locale);
template auto locale_ref::get<std::locale>() const -> std::locale;
template auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template auto decimal_point_impl(locale_ref) -> char;
template void buffer<char>::append(const char*, const char*);
}  // namespace detail
FMT_END_NAMESPACE
#endif

namespace Tool {

void AppendFormatted(std::string& out, fmt::string_view format, fmt::format_args args) {
  fmt::vformat_to(std::back_inserter(out), format, args);
}

void AppendFormatted(fmt::memory_buffer& out, fmt::string_view format, fmt::format_args args) {
  fmt::vformat_to(fmt::appender(out), format, args);
}

}  // namespace Tool
