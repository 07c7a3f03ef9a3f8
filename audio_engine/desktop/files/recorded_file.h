#pragma once

#include <chrono>
#include <memory>

#include "desktop/devices/block_worker.h"
#include "desktop/files/file_sink.h"

namespace desktop {

// A recording on its way into a file: takes blocks of 10 ms without waiting, and writes them on a
// thread of its own. Belongs to one thread, but for Put.
class RecordedFile {
 public:
  static constexpr std::chrono::seconds kPatience{10};

  // format: that of the blocks and of the sink. patience: how long to wait at the end for a disk
  // that writes nothing. Throws std::system_error when there is no thread to be had.
  RecordedFile(std::unique_ptr<FileSink> sink, DeviceFormat format,
               std::chrono::milliseconds patience = kPatience);

  // Finishes.
  ~RecordedFile();
  RecordedFile(const RecordedFile&) = delete;
  RecordedFile& operator=(const RecordedFile&) = delete;

  // Takes one block; it is lost and counted when ten seconds of audio wait to be written. One
  // thread.
  void Put(const short* samples) { m_worker.Put(samples); }

  // Writes all that was put, however long that takes, and finishes the file; gives up when the disk
  // writes nothing for as long as the patience. What is lost is counted as overruns of an input,
  // and the log has one line. To be called once nothing is put any more.
  void Finish();

 private:
  const std::string m_name;
  const std::chrono::milliseconds m_patience;
  bool m_finished = false;
  BlockWorker m_worker;
};

}  // namespace desktop
