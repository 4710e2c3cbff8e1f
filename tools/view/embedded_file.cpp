#include <algorithm>
#include <cstddef>

#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>
#include <view/embedded_file.h>

#include <output/svg.h>

namespace Tool {
namespace {

void AppendBase64(std::string_view bytes, OutputC& out) {
  using boost::archive::iterators::base64_from_binary;
  using boost::archive::iterators::transform_width;
  using Base64 = base64_from_binary<transform_width<const char*, 6, 8>>;
  constexpr std::size_t kTogether = std::size_t{3} * 16 * 1024;  // whole groups of Base64
  for (std::size_t at = 0; at < bytes.size(); at += kTogether) {
    const std::string_view part = bytes.substr(at, kTogether);
    // The iterator reads beyond the end unless it is the end of a group.
    std::string whole(part);
    const std::size_t missing = (3 - part.size() % 3) % 3;
    whole.append(missing, '\0');
    std::string text(Base64(whole.data()), Base64(whole.data() + whole.size()));
    std::fill(text.end() - static_cast<std::ptrdiff_t>(missing), text.end(), '=');
    out.Print("{}", text);
  }
}

}  // namespace

bool WriteWithFile(std::string_view page, std::string_view name, std::string_view bytes,
                   OutputC& out) {
  const std::size_t place = page.find(kFilePlace);
  if (place == std::string_view::npos) return false;
  out.Print("{}<template id=\"file\" data-name=\"{}\">", page.substr(0, place), EscapeXml(name));
  AppendBase64(bytes, out);
  out.Print("</template>{}", page.substr(place + kFilePlace.size()));
  return true;
}

}  // namespace Tool
