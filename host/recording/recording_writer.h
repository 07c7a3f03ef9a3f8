#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "recording/dither.h"

struct sf_private_tag;

namespace host {

// What a file that is written is.
struct WrittenForm {
  enum class Kind { kWave, kHeaderless, kFlac, kVorbis };
  enum class Samples { kPcm16, kPcm24, kFloat32 };  // Vorbis takes floats.
  Kind kind = Kind::kWave;
  Samples samples = Samples::kPcm16;
  int rate = 0;  // Hz
  int channels = 0;
};

// What has been seen of the samples that were to be written.
struct WrittenLevel {
  double highest = 0;  // Of the samples, full scale at 1.
  double lowest = 0;
  bool exact = true;  // All of them are multiples of the step of the file.
  uint64_t frames = 0;
};

// Writes samples to an open file, of a kind and at a level.
class RecordingWriter {
 public:
  // `file` stays open. Samples are multiplied by `gain`; with `dithered`, 16-bit ones are dithered.
  RecordingWriter(int file, const WrittenForm& form, double gain, bool dithered);
  ~RecordingWriter();
  RecordingWriter(const RecordingWriter&) = delete;
  RecordingWriter& operator=(const RecordingWriter&) = delete;

  // Whole frames, interleaved, full scale at 1; what is beyond is clipped where the file has no
  // room for it. False on failure.
  bool Write(std::span<const double> samples);

  // Completes the file. False on failure.
  bool Close();

  const WrittenLevel& Level() const { return m_level; }

  // Why something failed.
  std::string Fault() const { return m_fault; }

 private:
  void Look(std::span<const double> samples);
  bool WriteBlock(std::span<const double> samples);
  bool Fail(const std::string& fault);

  WrittenForm m_form;
  double m_gain;
  bool m_dithered;
  Dither m_dither;
  WrittenLevel m_level;
  sf_private_tag* m_sound = nullptr;
  std::vector<short> m_shorts;
  std::vector<int> m_ints;
  std::vector<float> m_floats;
  std::string m_fault;
};

// The gain at which nothing of this level clips in a file of this form: 1 unless it would.
// `dithered` leaves room for that.
double GainWithoutClipping(const WrittenLevel& level, const WrittenForm& form, bool dithered);

}  // namespace host
