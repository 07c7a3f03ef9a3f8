#include <gtest/gtest.h>

#include "desktop/platform/paths.h"
#include "engine_api/platform/paths.h"
#include "engine_api/platform/place_string.h"

TEST(GetPlaceString, NamesTheFunctionAndTheLine) {
  EXPECT_EQ(GetPlaceString("Convert", "engine/converter.cc", 12),
            "Convert (engine/converter.cc:12)");
  EXPECT_EQ(GetPlaceString(nullptr, nullptr, -1), " (:-1)");
}

TEST(Paths, AreEmptyUntilTheOwnerSetsThem) {
  EXPECT_EQ(GetIosDocPath(), "");
  EXPECT_EQ(GetDebugPath(), "");

  desktop::SetIosDocPath("documents/");
  desktop::SetDebugPath("debug/");

  EXPECT_EQ(GetIosDocPath(), "documents/");
  EXPECT_EQ(GetDebugPath(), "debug/");
  desktop::SetIosDocPath("");
  desktop::SetDebugPath("");
}
