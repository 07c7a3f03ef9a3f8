#include "run/stage_form.h"

namespace host {

Form FormOf(const FileUse& input) {
  Form form = {.samples = input.samples, .leastRate = input.leastRate};
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
      form.formats = {{input.rate, input.channels}};
      if (input.alsoRight.rate > 0 || input.alsoRight.channels > 0) {
        form.formats.push_back(input.alsoRight);
      }
      break;
  }
  return form;
}

}  // namespace host
