#include "base/units.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(Units, GiveShortTimesInMilliseconds) {
  EXPECT_EQ(Seconds(0), "0.0 ms");
  EXPECT_EQ(Seconds(0.0031), "3.1 ms");
  EXPECT_EQ(Seconds(0.0999), "99.9 ms");
  EXPECT_EQ(Seconds(0.1), "0.10 s");
  EXPECT_EQ(Seconds(12.346), "12.35 s");
}

TEST(Units, GiveBytesInTheUnitThatReadsBest) {
  EXPECT_EQ(Bytes(0), "0 bytes");
  EXPECT_EQ(Bytes(1), "1 byte");
  EXPECT_EQ(Bytes(2), "2 bytes");
  EXPECT_EQ(Bytes(9999), "9999 bytes");
  EXPECT_EQ(Bytes(10'000), "10.0 kB");
  EXPECT_EQ(Bytes(999'900), "999.9 kB");
  EXPECT_EQ(Bytes(1'000'000), "1.0 MB");
  EXPECT_EQ(Bytes(999'900'000), "999.9 MB");
  EXPECT_EQ(Bytes(1'000'000'000), "1.00 GB");
}

TEST(Units, RoundLevelsToATenthAndNeverBelowZero) {
  EXPECT_EQ(Decibels(std::nullopt), "silent");
  EXPECT_EQ(Decibels(-6.02), "-6.0 dBFS");
  EXPECT_EQ(Decibels(-6.06), "-6.1 dBFS");
  EXPECT_EQ(Decibels(3.01), "3.0 dBFS");
  EXPECT_EQ(Decibels(-0.04), "0.0 dBFS") << "not \"-0.0\"";
  EXPECT_EQ(Attenuation(3.25), "3.2 dB");
  EXPECT_EQ(Ratio(0.000523), "0.00052");
  EXPECT_EQ(Ratio(1.26), "1.3");
}

TEST(Units, GiveAmountsWithoutNeedlessDigits) {
  EXPECT_EQ(Amount(120, "BPM"), "120 BPM");
  EXPECT_EQ(Amount(0.123456, "MB"), "0.1235 MB");
  EXPECT_EQ(Amount(3, "1"), "3");
  EXPECT_EQ(Amount(-123456789, "Hz"), "-123456789 Hz");
  EXPECT_EQ(Amount(1e15, "Hz"), "1e+15 Hz");
}

TEST(Units, NameFormatsAndChannels) {
  EXPECT_EQ(Hertz(44100), "44100 Hz");
  EXPECT_EQ(Channels(1), "mono");
  EXPECT_EQ(Channels(2), "stereo");
  EXPECT_EQ(Channels(3), "3 channels");
  EXPECT_EQ(ChannelName(0, 1), "mono");
  EXPECT_EQ(ChannelName(0, 2), "left");
  EXPECT_EQ(ChannelName(1, 2), "right");
  EXPECT_EQ(ChannelName(0, 3), "channel 1");
  EXPECT_EQ(ChannelName(2, 3), "channel 3");
}

}  // namespace
}  // namespace host
