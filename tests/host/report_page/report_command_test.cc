// report, open and suite --report, through the program itself.

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>

#include "bench_process.h"
#include "page_fixture.h"
#include "support/file_bytes.h"
#include "support/signals.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;

class ReportCommandTest : public PageTest {
 protected:
  static Finished Bench(std::vector<std::string> words) {
    words.insert(words.begin(), AUDIO_BENCH_PROBE);
    return RunProcess(words);
  }

  static std::string Error(const std::vector<std::string>& words) {
    const Finished run = Bench(words);
    EXPECT_EQ(run.exitCode, 2) << run.err;
    return run.err;
  }
};

TEST_F(ReportCommandTest, RefusesWhatItCannotDoInOneLine) {
  WriteSuite("r", {CaseOf("c", "pass")});
  EXPECT_EQ(Error({"report", "r"}),
            "audio_bench: report needs --out FILE or --folder DIR (audio_bench report --help)\n");
  EXPECT_EQ(Error({"report", "r", "-o", "p.html", "--folder", "d"}),
            "audio_bench: --out and --folder exclude each other\n");
  EXPECT_THAT(Error({"report"}), HasSubstr("RESULTS is required"));
  EXPECT_THAT(Error({"report", "r", "-o", "p.html", "--most-mb", "-1"}), HasSubstr("--most-mb"));
  EXPECT_THAT(Error({"report", "r", "-o", "p.html", "--excerpt-s", "0"}), HasSubstr("--excerpt-s"));
  EXPECT_EQ(Error({"open", "nowhere"}),
            "audio_bench: cannot read nowhere: No such file or directory\n");
  std::filesystem::create_directory("empty");
  EXPECT_EQ(Error({"open", "empty"}),
            "audio_bench: empty holds neither results.json of a suite nor a page\n");
}

#if HAS_PAGE

TEST_F(ReportCommandTest, WritesThePage) {
  WriteSuite("r", {CaseOf("c", "fail")});
  const std::vector<double> sound(16000, 0.1);
  WriteSounds("r", "c", sound, sound);
  const Finished run = Bench({"report", "r", "-o", "page.html"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out,
              testing::MatchesRegex(
                  "1 case: 1 fails\npage  page.html  .*, 1 of 1 case, 2 of 2 recordings\n"));
  const std::string page = ReadFile("page.html");
  EXPECT_THAT(page, HasSubstr("\"sentence\":\"1 case: 1 fails\""));
  EXPECT_THAT(page, HasSubstr("id=\"audio-0-0-output\""));
  EXPECT_THAT(page, HasSubstr("default-src 'none'"));
  EXPECT_THAT(page, Not(HasSubstr("<!--DATA-->")));
  EXPECT_THAT(Error({"report", "nowhere", "-o", "page.html"}), HasSubstr("cannot read nowhere"));
  EXPECT_EQ(ReadFile("page.html"), page) << "what is there stays";
}

TEST_F(ReportCommandTest, TakesTheLengthOfExcerptsAndOfThePage) {
  WriteSuite("r", {CaseOf("c", "fail")});
  const std::vector<double> noise = WhiteNoise(16000 * 9, 0.9, 1);
  WriteSounds("r", "c", noise, noise);
  EXPECT_EQ(Bench({"report", "r", "-o", "page.html", "--excerpt-s", "2.5"}).exitCode, 0);
  EXPECT_THAT(ReadFile("page.html"), HasSubstr("\"seconds\":2.5,"));
  const Finished run = Bench({"report", "r", "-o", "page.html", "--most-mb", "0.5"});
  EXPECT_THAT(run.out, HasSubstr(", 0 of 2 recordings\n"));
  EXPECT_THAT(ReadFile("page.html"), HasSubstr("to stay below 0.5 MB. --folder writes all."));
  EXPECT_LE(std::filesystem::file_size("page.html"), 501'000U);
}

TEST_F(ReportCommandTest, PutsABaselineBesideTheRun) {
  WriteSuite("a", {CaseOf("c", "pass")});
  WriteSuite("b", {CaseOf("c", "fail")});
  const std::vector<double> sound(16000, 0.1);
  for (const char* const folder : {"a", "b"}) WriteSounds(folder, "c", sound, sound);
  const std::string home = "XDG_DATA_HOME=" + std::filesystem::current_path().string();
  const auto bench = [&](std::vector<std::string> words) {
    words.insert(words.begin(), {"/usr/bin/env", home, AUDIO_BENCH_PROBE});
    return RunProcess(words);
  };
  ASSERT_EQ(bench({"baseline", "save", "spring", "a"}).exitCode, 0);
  const Finished run = bench({"report", "b", "--against", "baseline:spring", "-o", "page.html"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("1 case: 1 fails, 1 is worse than baseline:spring\n"));
  const std::string page = ReadFile("page.html");
  EXPECT_THAT(page, HasSubstr("\"name\":\"baseline:spring\""));
  EXPECT_THAT(page, HasSubstr("id=\"audio-0-0-input\""));
  EXPECT_THAT(page, Not(HasSubstr("id=\"audio-0-0-against\""))) << "it has no recordings";
}

TEST_F(ReportCommandTest, WritesAFolderWithWholeRecordings) {
  WriteSuite("r", {CaseOf("c", "fail")});
  const std::vector<double> sound(16000 * 9, 0.1);
  WriteSounds("r", "c", sound, sound);
  const Finished run = Bench({"report", "r", "--folder", "page", "--most-mb", "0"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(ReadFile("page/index.html"), HasSubstr("\"href\":\"files/0-0-output.flac\""));
  ASSERT_TRUE(std::filesystem::exists("page/files/0-0-input.flac"));
  EXPECT_THAT(Bench({"measure", "page/files/0-0-output.flac", "--against", "r/cases/c/out.wav",
                     "--measure", "delay"})
                  .out,
              HasSubstr("9.00 s"));
}

TEST_F(ReportCommandTest, WritesThePageOfASuite) {
  WriteFile("s.toml", "[[case]]\nid = \"good\"\nroutine = \"WritePcm\"\n");
  EXPECT_EQ(Bench({"suite", "s.toml", "--out", "r", "--report"}).exitCode, 0);
  EXPECT_THAT(ReadFile("r/report.html"), HasSubstr("\"sentence\":\"1 case: 1 passes\""));
}

// What a server on this machine answers to a request.
std::string Ask(uint16_t port, const std::string& request) {
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  const std::string bytes = request + " HTTP/1.1\r\nHost: localhost\r\n\r\n";
  EXPECT_EQ(send(connection, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  std::string answer;
  char block[4096];
  for (ssize_t count = 0; (count = recv(connection, block, sizeof block, 0)) > 0;) {
    answer.append(block, static_cast<size_t>(count));
  }
  close(connection);
  return answer;
}

// Waits for a file to hold a line with an address.
std::string AddressIn(const std::string& path) {
  while (true) {
    const std::string text = ReadFile(path);
    const size_t at = text.find("http://");
    const size_t end = text.find('\n', at == std::string::npos ? text.size() : at);
    if (end != std::string::npos) return text.substr(at, end - at);
    usleep(10'000);
  }
}

// Opens a folder of results with this program in the place of the browser's.
Finished Open(const std::string& folder, const std::string& program) {
  std::filesystem::create_directory("bin");
  WriteFile("bin/xdg-open", "#!/bin/sh\n" + program);
  std::filesystem::permissions("bin/xdg-open", std::filesystem::perms::owner_all);
  return RunProcess({"/usr/bin/env", "PATH=bin:/usr/bin:/bin", AUDIO_BENCH_PROBE, "open", folder});
}

TEST_F(ReportCommandTest, HandsThePageToTheBrowser) {
  const std::string note = "echo \"$1\" >opened\n";
  const std::string page = std::filesystem::current_path().string() + "/r/report.html";
  WriteSuite("r", {CaseOf("c", "pass")});
  EXPECT_EQ(Open("r", note).exitCode, 0);
  EXPECT_EQ(ReadFile("opened"), page + "\n");
  EXPECT_THAT(ReadFile("r/report.html"), HasSubstr("\"sentence\":\"1 case: 1 passes\""));

  // One that is not older than the results is opened as it is.
  WriteFile("r/report.html", "of the reader's own");
  EXPECT_EQ(Open("r", note).exitCode, 0);
  EXPECT_EQ(ReadFile("r/report.html"), "of the reader's own");
  const auto results = std::filesystem::last_write_time("r/results.json");
  std::filesystem::last_write_time("r/report.html", results - std::chrono::seconds(10));
  EXPECT_EQ(Open("r", note).exitCode, 0);
  EXPECT_THAT(ReadFile("r/report.html"), HasSubstr("\"sentence\":\"1 case: 1 passes\""));
}

TEST_F(ReportCommandTest, OpensTheFolderOfAPage) {
  std::filesystem::create_directory("page");
  WriteFile("page/index.html", "a page");
  EXPECT_EQ(Open("page", "echo \"$1\" >opened\n").exitCode, 0);
  EXPECT_EQ(ReadFile("opened"), std::filesystem::current_path().string() + "/page/index.html\n");
}

TEST_F(ReportCommandTest, ServesThePageWhereNoBrowserCanBeCalled) {
  WriteSuite("r", {CaseOf("c", "pass")});
  // Without a path there is nothing that opens it.
  Process server({"/bin/sh", "-c", "PATH=/nowhere exec " AUDIO_BENCH_PROBE " open r > address"});
  const std::string address = AddressIn("address");
  ASSERT_THAT(address, testing::MatchesRegex("http://127.0.0.1:[0-9]+/[0-9a-f]+/"));
  const auto port = static_cast<uint16_t>(std::stoi(address.substr(17)));
  const std::string path = address.substr(address.find('/', 17));
  EXPECT_EQ(path.size(), 34U) << "128 bits";
  const std::string page = Ask(port, "GET " + path);
  EXPECT_THAT(page, testing::StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_THAT(page, HasSubstr("\"sentence\":\"1 case: 1 passes\""));
  for (const char* const other : {"GET /", "GET /../../etc/passwd", "POST /", ""}) {
    EXPECT_THAT(Ask(port, other), testing::StartsWith("HTTP/1.1 404 Not Found\r\n")) << other;
  }
  kill(server.pid(), SIGINT);
  EXPECT_EQ(server.Wait().exitCode, 0);
}

#else

TEST_F(ReportCommandTest, SaysThatThisBuildHasNoPage) {
  WriteSuite("r", {CaseOf("c", "pass")});
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string> >{{"report", "r", "-o", "page.html"},
                                              {"open", "r"},
                                              {"suite", "--report", "--out", "s"}}) {
    const Finished run = Bench(words);
    EXPECT_EQ(run.exitCode, 77);
    EXPECT_THAT(run.err, HasSubstr("this build has no page"));
  }
  EXPECT_FALSE(std::filesystem::exists("page.html"));
  EXPECT_FALSE(std::filesystem::exists("s"));
}

#endif

}  // namespace
}  // namespace host
