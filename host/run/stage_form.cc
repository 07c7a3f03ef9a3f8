#include "run/stage_form.h"

#include <algorithm>
#include <vector>

namespace host {

namespace {

// Those that are right; where all are, those that are treated.
std::vector<WaveFormat> Formats(const FileUse& input) {
  std::vector<WaveFormat> formats = {{input.rate, input.channels}};
  if (input.alsoRight.rate > 0 || input.alsoRight.channels > 0) {
    formats.push_back(input.alsoRight);
  }
  if (formats.size() == 1 && input.channels == 0 && input.treated.mostChannels == 2) {
    formats = {{input.rate, 1}, {input.rate, 2}};
  }
  if (input.treated.rates.empty()) return formats;
  std::vector<WaveFormat> all;
  for (const WaveFormat& format : formats) {
    if (format.rate > 0) all.push_back(format);
    for (const int rate : input.treated.rates) {
      if (format.rate == 0) all.push_back({rate, format.channels});
    }
  }
  return all;
}

}  // namespace

Form FormOf(const FileUse& input) {
  Form form = {.samples = input.samples,
               .leastRate = std::max(input.leastRate, input.treated.leastRate),
               .mostRate = input.treated.mostRate};
  switch (input.container) {
    case Container::kOther:
      form.kind = Form::Kind::kBytes;
      break;
    case Container::kRecording:
      form.kind = Form::Kind::kRecording;
      break;
    case Container::kHeaderless:
      form.kind = Form::Kind::kHeaderless;
      form.formats = {{input.rate, input.channels}};
      break;
    case Container::kWave:
      form.plainHeader = input.header != WaveHeader::kRead;
      form.formats = Formats(input);
      break;
  }
  return form;
}

}  // namespace host
