#include "marlune/util/log_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>
#include <thread>

#include "support/platform_fixture.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// A standard stream of this process, closed or redirected until the destructor.
class BorrowedDescriptor {
 public:
  explicit BorrowedDescriptor(int descriptor, int leadsTo = -1)
      : _descriptor(descriptor), _former(::fcntl(descriptor, F_DUPFD_CLOEXEC, 100)) {
    if (leadsTo < 0) {
      ::close(descriptor);
    } else {
      ::dup2(leadsTo, descriptor);
    }
  }
  ~BorrowedDescriptor() {
    ::dup2(_former, _descriptor);
    ::close(_former);
  }

 private:
  const int _descriptor;
  const int _former;
};

class LogFileTest : public PlatformFixture {
 protected:
  void logTo(const std::string& path) {
    TQUtils::setShouldLogToFilesInDirectory(std::make_shared<const std::string>(path));
  }
  const TemporaryDirectory directory;
};

TEST_F(LogFileTest, LinesCarryStampAndKind) {
  preferences->set(TQUtilsApplicationTraceDefault, Value::boolean(true));
  TQUtils::log("before");
  logTo(directory.path());
  TQUtils::log("two\n%@", "lines");
  TQUtils::forDefaultLog(TQUtilsApplicationTraceDefault, "keyed");
  TQUtils::systemLog("straight to the system log");
  TQUtils::setShouldLogToFilesInDirectory(nullptr);
  TQUtils::log("after");
  const std::string stamp = "[0-9]{4}-[0-9]{2}-[0-9]{2}-[0-9]{2}-[0-9]{2}-[0-9]{2}";
  EXPECT_THAT(directory.contents(),
              ElementsAre(MatchesRegex(stamp + " ERROR two\nlines\n" + stamp +
                                       " TQUtilsApplicationTraceDefault keyed\n")));
  EXPECT_THAT(log->lines(),
              ElementsAre("before", "two\nlines", "keyed", "straight to the system log", "after"));
}

TEST_F(LogFileTest, OnlyAnotherObjectStartsANewFile) {
  const auto path = std::make_shared<const std::string>(directory.path() + "/");
  TQUtils::setShouldLogToFilesInDirectory(path);
  TQUtils::log("one");
  TQUtils::setShouldLogToFilesInDirectory(path);
  TQUtils::log("two");
  EXPECT_THAT(directory.contents(), ElementsAre(AllOf(HasSubstr("one"), HasSubstr("two"))));

  logTo(directory.path());  // it may get the name of the first one, which is then emptied
  TQUtils::log("three");
  for (const std::string& content : directory.contents()) {
    EXPECT_NE(content.find("one") == std::string::npos, content.find("three") == std::string::npos);
  }
}

TEST_F(LogFileTest, DescriptorZeroMeansNoFile) {
  const BorrowedDescriptor standardInput(STDIN_FILENO);
  logTo(directory.path());
  EXPECT_THAT(log->lines(),
              ElementsAre(MatchesRegex("Unable to create log file at \\[" + directory.path() +
                                       "/[-0-9]+_Oskavel\\.log\\]")));
  TQUtils::log("lost");
  EXPECT_THAT(directory.contents(), ElementsAre(""));
}

TEST_F(LogFileTest, FailedOpenLosesLinesWithoutAWord) {
  ::mkfifo(directory.path("fifo").c_str(), 0600);
  for (const char* place : {"missing", "fifo"}) {
    log->clear();
    logTo(directory.path(place));
    TQUtils::log("lost");
    EXPECT_THAT(log->lines(), ElementsAre("lost")) << place;
  }
}

TEST_F(LogFileTest, VanishedDirectoryHurtsNobody) {
  std::filesystem::create_directory(directory.path("logs"));
  logTo(directory.path("logs"));
  std::filesystem::remove_all(directory.path("logs"));
  TQUtils::log("lost");
  TQUtils::resetLogs();
  TQUtils::log("lost too");
  EXPECT_THAT(log->lines(), ElementsAre("lost", "lost too"));
}

TEST_F(LogFileTest, FifoAndFullDiskNeitherWaitNorFail) {
  const std::string fifo = directory.path("fifo");
  ::mkfifo(fifo.c_str(), 0600);
  LogFile::openAtPath(fifo)->write("no reader\n");

  const int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  const auto file = LogFile::openAtPath(fifo);
  for (int i = 0; i < 100; ++i) file->write(std::string(4096, 'x'));  // more than a pipe holds
  ::close(reader);
  file->write("the reader is gone\n");

  LogFile::openAtPath("/dev/full")->write("no space\n");
}

TEST_F(LogFileTest, FileSizeLimitLosesLines) {
  logTo(directory.path());
  rlimit former;
  ::getrlimit(RLIMIT_FSIZE, &former);
  const rlimit none = {0, former.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &none);
  TQUtils::log("lost");
  ::setrlimit(RLIMIT_FSIZE, &former);
  TQUtils::log("written");
  EXPECT_THAT(directory.contents(), ElementsAre(EndsWith(" ERROR written\n")));
  EXPECT_THAT(directory.contents(), Each(Not(HasSubstr("lost"))));
}

// The write end of a pipe without a reader.
int brokenPipe() {
  int ends[2];
  EXPECT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  return ends[1];
}

TEST_F(LogFileTest, BrokenStandardErrorNeitherKillsNorSignals) {
  static volatile sig_atomic_t caught = 0;
  struct sigaction former;
  struct sigaction counting = {};
  counting.sa_handler = [](int) { caught = caught + 1; };
  Platform::shared().systemLog = nullptr;
  const int pipe = brokenPipe();
  {
    const BorrowedDescriptor standardError(STDERR_FILENO, pipe);
    TQUtils::log("lost");  // ends the process unless the signal is discarded
    ::sigaction(SIGPIPE, &counting, &former);
    TQUtils::log("lost");
  }
  EXPECT_EQ(caught, 0);

  // A signal that was pending before must stay pending.
  sigset_t set, formerMask, pending;
  sigemptyset(&set);
  sigaddset(&set, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &set, &formerMask);
  ::raise(SIGPIPE);
  {
    const BorrowedDescriptor standardError(STDERR_FILENO, pipe);
    TQUtils::log("lost");
  }
  ::sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 1);
  ::pthread_sigmask(SIG_SETMASK, &formerMask, nullptr);
  EXPECT_EQ(caught, 1);
  ::sigaction(SIGPIPE, &former, nullptr);
  ::close(pipe);
}

TEST_F(LogFileTest, ClosedStandardErrorDoesNotLeadIntoTheFile) {
  Platform::shared().systemLog = nullptr;
  const BorrowedDescriptor standardError(STDERR_FILENO);
  logTo(directory.path());
  TQUtils::systemLog("lost");
  TQUtils::log("written");
  EXPECT_THAT(directory.contents(), ElementsAre(MatchesRegex("[-0-9]+ ERROR written\n")));
}

TEST_F(LogFileTest, ACaptureReceivesItsThreadsLinesAlone) {
  using Kept = TQUtils::Capture::Kept;
  FakeSystemLog outer, inner;
  {
    const TQUtils::Capture all(outer, Kept::everything);
    TQUtils::comparisonLog("compared");
    {
      const TQUtils::Capture messages(inner);
      TQUtils::comparisonLog("left out");
      TQUtils::log("message");
      std::thread([] { TQUtils::log("other thread"); }).join();
    }
    TQUtils::systemLog("again");
  }
  TQUtils::systemLog("after");
  EXPECT_THAT(outer.lines(), ElementsAre("compared", "again"));
  EXPECT_THAT(inner.lines(), ElementsAre("message"));
  EXPECT_THAT(log->lines(), ElementsAre("other thread", "after"));
}

TEST_F(LogFileTest, LinesAreWholeWhileThreadsWriteAndFilesChange) {
  logTo(directory.path());
  const auto writeLines = [](std::size_t length, char letter) {
    for (int i = 0; i < 300; ++i) TQUtils::log("%@", std::string(length, letter));
  };
  std::thread one(writeLines, 200, 'a'), two(writeLines, 77, 'b');
  for (int i = 0; i < 30; ++i) TQUtils::resetLogs();
  one.join();
  two.join();
  EXPECT_EQ(log->lines().size(), 600u);
  for (const std::string& content : directory.contents()) {
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
      ASSERT_THAT(line, MatchesRegex("[-0-9]+ ERROR (a{200}|b{77})"));
    }
  }
}

TEST(LogStampTest, EndsInHundredths) {
  std::tm time = {};
  time.tm_year = 114, time.tm_mon = 2, time.tm_mday = 3;
  time.tm_hour = 10, time.tm_min = 7, time.tm_sec = 5, time.tm_isdst = -1;
  const auto second = std::chrono::system_clock::from_time_t(std::mktime(&time));
  EXPECT_EQ(TQUtils::__dateStringForDate(second + std::chrono::milliseconds(489)),
            "2014-03-03-10-07-48");
}

}  // namespace
}  // namespace marlune
