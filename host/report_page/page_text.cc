#include "report_page/page_text.h"

#include "base/usage_error.h"

namespace host {

namespace {

std::string Escaped(const Json& json) {
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string escaped;
  escaped.reserve(text.size() + text.size() / 16);
  for (const char each : text) {
    if (each == '<') {
      escaped += "\\u003c";
    } else {
      escaped += each;
    }
  }
  return escaped;
}

size_t PlaceOf(std::string_view page, std::string_view marker) {
  const size_t at = page.find(marker);
  if (at != std::string_view::npos) return at;
  throw UsageError{"the template of the page is without " + std::string(marker)};
}

}  // namespace

std::string PageText(std::string_view page, const PageData& data) {
  const size_t dataAt = PlaceOf(page, kDataMarker);
  const size_t audioAt = PlaceOf(page, kAudioMarker);
  if (audioAt < dataAt) throw UsageError{"the template of the page has its markers the wrong way"};
  std::string text(page.substr(0, dataAt));
  text += "<script type=\"application/json\" id=\"data\">" + Escaped(data.json) + "</script>";
  const size_t between = dataAt + kDataMarker.size();
  text += page.substr(between, audioAt - between);
  for (const PageAudio& audio : data.audio) {
    text += "<script type=\"application/octet-stream\" id=\"audio-" + audio.key + "\">" +
            audio.base64 + "</script>\n";
  }
  text += page.substr(audioAt + kAudioMarker.size());
  return text;
}

}  // namespace host
