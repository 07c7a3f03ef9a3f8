#include <gtest/gtest.h>

#include <string>

#include "engine/engine_work.h"

namespace host {
namespace {

TEST(EngineFindings, KeepAsMuchOfARefusedFileAsFits) {
  EngineFindings findings;
  findings.Refuse("in.mp3", "not a WAVE file");
  EXPECT_STREQ(findings.refused[0].name, "in.mp3");
  EXPECT_STREQ(findings.refused[0].reason, "not a WAVE file");
  std::string name(252, 'n');
  std::string reason(100, 'r');
  findings.Refuse(name, reason);
  name.pop_back();
  reason.pop_back();
  EXPECT_EQ(findings.refused[1].name, name);
  EXPECT_EQ(findings.refused[1].reason, reason);
  EXPECT_EQ(findings.refusedCount, 2U);
  EXPECT_FALSE(findings.gaps);
}

TEST(EngineFindings, LeaveOutWhatThereIsNoRoomFor) {
  EngineFindings findings;
  EXPECT_EQ(findings.refusedCount, 0U);
  for (int i = 0; i < 10; ++i) findings.Refuse(std::to_string(i), "why");
  EXPECT_EQ(findings.refusedCount, 8U);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(findings.refused[i].name, std::to_string(i));
}

TEST(EngineFindings, KeepAsMuchOfALineAsFits) {
  EngineFindings findings;
  findings.Say("no such mode");
  findings.Say(std::string(200, 'l'));
  EXPECT_STREQ(findings.lines[0], "no such mode");
  EXPECT_EQ(findings.lines[1], std::string(199, 'l'));
  for (int i = 2; i < 10; ++i) findings.Say(std::to_string(i));
  EXPECT_EQ(findings.lineCount, 8U);
  EXPECT_STREQ(findings.lines[7], "7");
}

}  // namespace
}  // namespace host
