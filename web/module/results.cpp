#include <exception>
#include <new>

#include <module/results.h>

namespace Page {
namespace {

fmt::memory_buffer& Buffer() {
  static fmt::memory_buffer buffer;
  return buffer;
}

}  // namespace

fmt::memory_buffer& NewResult() {
  Buffer().clear();
  return Buffer();
}

fmt::memory_buffer& Result() { return Buffer(); }

void SetResult(std::string_view text) {
  NewResult().append(text.data(), text.data() + text.size());
}

void SetResultToException() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    SetResult("there is not enough memory");
  } catch (const std::exception& error) {
    SetResult(error.what());
  } catch (...) {
    SetResult("unknown error");
  }
}

}  // namespace Page

SURVEYDATA_PAGE const char* page_result() { return Page::Result().data(); }
SURVEYDATA_PAGE std::uint32_t page_result_size() {
  return static_cast<std::uint32_t>(Page::Result().size());
}
SURVEYDATA_PAGE void page_clear_result() { Page::NewResult(); }
