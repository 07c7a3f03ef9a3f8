#pragma once

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

// Matches a list of calls that reads as this text: one call a line, indented as it likes. Empty
// lines and what follows a "  # " are for the reader. A mismatch names the first line that differs
// and shows it among the three lines before and after it on both sides.
//   EXPECT_THAT(engine.calls, Transcript(R"(
//       WavReader#1(near.wav)
//       WavReader#1.ReadSamples(160) = 7  # Dropped: a part of a block is not written.
//       ~WavReader#1)"));
testing::Matcher<const std::vector<std::string>&> Transcript(std::string_view text);

// The same for the calls of another run, or for lines that a test has put together.
testing::Matcher<const std::vector<std::string>&> Transcript(std::vector<std::string> calls);

// The text `count` times: what a routine does for each of so many blocks.
std::string Times(int count, std::string_view text);
