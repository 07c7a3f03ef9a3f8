// Engines in libraries that are not taken: exit code 2, and why.

#include <filesystem>

#include "engines/engine_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

class EngineRefusalTest : public EngineTest {
 protected:
  // `run` refuses the engine with this text, and nothing is written; so do `list` and `suite`.
  static void ExpectRefusal(const std::string& engine, const std::string& text) {
    const Finished run = Compress({"--engine", engine});
    EXPECT_EQ(run.exitCode, 2) << run.out;
    EXPECT_THAT(run.err, HasSubstr(text));
    EXPECT_THAT(run.err, StartsWith("audio_bench: "));
    EXPECT_FALSE(fs::exists("out.wav"));
    for (const char* const command : {"list", "suite"}) {
      const Finished other = Run({command, "--engine", engine});
      EXPECT_EQ(other.exitCode, 2) << other.out;
      EXPECT_THAT(other.err, HasSubstr(text));
    }
    EXPECT_FALSE(fs::exists("bench_results"));
  }
};

TEST_F(EngineRefusalTest, RefusesAFacilityInHalfAndNamesWhatIsMissing) {
  ExpectRefusal(Library("half"),
                "libhalf_engine.so has a facility in half: effects/drc is without "
                "Drc::Process(short*, int, int)\n");
}

TEST_F(EngineRefusalTest, RefusesAnotherVersionOfTheInterface) {
  ExpectRefusal(
      Library("later"),
      "was built on version 999 of the engine's interface, and this bench has version 1: ");
}

TEST_F(EngineRefusalTest, RefusesALibraryThatSaysNoVersion) {
  ExpectRefusal(Library("unversioned"),
                "does not say on which version of the engine's interface it was built; "
                "AUDIO_ENGINE_INTERFACE_VERSION; in one of its sources does");
}

TEST_F(EngineRefusalTest, RefusesALibraryWithNothingOfTheInterface) {
  ExpectRefusal(Library("nothing"), "exports nothing of the engine's interface (engine_api)\n");
}

TEST_F(EngineRefusalTest, RefusesALibraryThatCrashesWhenItIsOpened) {
  ExpectRefusal(Library("crashing"), "does not open: opening it crashed by signal 6 (Aborted)\n");
}

TEST_F(EngineRefusalTest, RefusesALibraryThatNeedsWhatNobodyHas) {
  ExpectRefusal(Library("incomplete"), "does not open: undefined symbol: _Z17SayWhatNobodySaysv");
}

TEST_F(EngineRefusalTest, RefusesWhatIsNoLibrary) {
  ExpectRefusal("missing.so", "--engine missing.so: No such file or directory\n");
  WriteFile("text.so", "This is no library.");
  ExpectRefusal("text.so", "/text.so is no shared library: it is no ELF file\n");
  WriteFile("empty.so", "");
  ExpectRefusal("empty.so", "/empty.so is no shared library: it is no ELF file\n");
  fs::create_directory("folder.so");
  ExpectRefusal("folder.so", "audio_bench: cannot read /");
}

// Wherever a library ends early, it is refused and nothing is read beyond its end.
TEST_F(EngineRefusalTest, RefusesADamagedLibrary) {
  const std::string whole = ReadFile(Library("whole"));
  for (size_t part = 1; part < 16; ++part) {
    WriteFile("damaged.so", whole.substr(0, whole.size() * part / 16));
    const Finished run = Run({"list", "--engine", "damaged.so"});
    EXPECT_EQ(run.exitCode, 2) << part;
    EXPECT_THAT(run.err, HasSubstr("/damaged.so is a damaged library")) << part;
  }
}

TEST_F(EngineRefusalTest, ReportsTheRefusal) {
  const Finished run = Compress({"--engine", Library("half"), "--json", "report.json"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(ReadFile("report.json"), HasSubstr("has a facility in half"));
}

}  // namespace
