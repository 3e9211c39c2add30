// An app with its own main loop announces each kilometre of a simulated run:
//
//     client GRAMMAR VOICE [OUTPUT [TRACE...]]
//
// Without OUTPUT it plays on the sound device. Each TRACE is a preference that switches on log
// lines, such as TQUtilsApplicationTraceDefault. The exit status is 0 if everything was said.
#include <poll.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <map>
#include <mutex>
#include <stdexcept>

#include "marlune/decompose/decomposer.h"
#include "marlune/desktop/audio/device/device_output.h"
#include "marlune/desktop/audio/output/file_output.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/platform.h"
#include "marlune/playback/player.h"

using namespace marlune;
using SteadyClock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

// Receives the library's log lines. They come from any thread, so each is written by a single call.
class AppLog : public SystemLog {
 public:
  void write(std::string_view message) noexcept override {
    std::fprintf(stderr, "[voice] %.*s\n", static_cast<int>(message.size()), message.data());
    if (message.starts_with("ERROR")) hasErrors = true;
  }
  std::atomic<bool> hasErrors = false;
};

// Preferences that last as long as the app. The library reads from here which traces are on.
class AppPreferences : public Preferences {
 public:
  Value valueForKey(std::string_view key, std::string_view domain) const override {
    const std::lock_guard lock(_mutex);
    const auto found = _values.find({std::string(domain), std::string(key)});
    return found == _values.end() ? Value() : found->second;
  }
  void setValueForKey(const Value& value, std::string_view key, std::string_view domain) override {
    const std::lock_guard lock(_mutex);
    _values[{std::string(domain), std::string(key)}] = value;
    _noteChange();
  }
  bool synchronize(std::string_view) override { return true; }  // never written to disk

 private:
  mutable std::mutex _mutex;
  std::map<std::pair<std::string, std::string>, Value> _values;
};

constexpr int kKilometers = 5;
constexpr int kSecondsAKilometer = 327;

std::vector<std::string> announcementOf(int kilometer) {
  const int time = kilometer * kSecondsAKilometer;
  const std::string seconds = std::to_string(100 + time % 60).substr(1);  // padded to two digits
  return {"run", std::to_string(kilometer), "km", "in", std::to_string(time / 60) + ":" + seconds};
}

// Returns whether everything could be said. `pace` is the duration of a kilometre in this
// simulation.
bool announceRun(const std::string& grammar, const std::string& folder, Milliseconds pace) {
  const auto loop = std::make_shared<RunLoop>();  // created on the main thread
  Platform::shared().mainThread = loop;
  const auto voice = std::make_shared<FolderBundle>(folder);
  const auto parser = Parser::initWithPlistAtPath(grammar, "Workout");
  const auto decomposer = Decomposer::initWithDirectory("", voice);
  const auto player = Player::initWithDirectory("", voice);
  if (!parser->theGrammar()) throw std::runtime_error("no grammar Workout in " + grammar);
  if (decomposer->availableSoundFiles().empty()) throw std::runtime_error("no voice in " + folder);
  pollfd library = {loop->fileDescriptor(), POLLIN, 0};
  if (library.fd < 0) throw std::runtime_error("the library's work cannot be waited for");

  // Waits for the library's work or for the next kilometre, until everything has been heard.
  bool isAllSaid = true;
  int kilometer = 0;
  for (auto next = SteadyClock::now() + pace; kilometer < kKilometers || player->isPlaying();) {
    const auto left = std::chrono::ceil<Milliseconds>(next - SteadyClock::now()).count();
    poll(&library, 1, kilometer < kKilometers ? std::max(0, static_cast<int>(left)) : -1);
    loop->runPending();
    if (kilometer == kKilometers || SteadyClock::now() < next) continue;
    const auto phrase = parser->resultOfRulesAppliedToStrings(announcementOf(++kilometer));
    const auto files = decomposer->optimalDecompositionOf(phrase->stringArray());
    std::ostream& line = files ? std::cout : std::cerr << "client: cannot be said: ";
    line << kilometer << " km:";
    for (const std::string& word : phrase->stringArray()) line << ' ' << word;
    line << std::endl;
    if (files) player->playSoundFilesInSequence(files);
    isAllSaid = isAllSaid && files;
    next += pace;
  }
  return isAllSaid;
}

int main(int argc, char** argv) try {
  if (argc < 3) throw std::runtime_error("usage: client GRAMMAR VOICE [OUTPUT [TRACE...]]");
  const auto log = std::make_shared<AppLog>();
  const auto preferences = std::make_shared<AppPreferences>();
  for (int i = 4; i < argc; ++i) preferences->setValueForKey(Value::boolean(true), argv[i], "");
  Platform::shared().systemLog = log;
  Platform::shared().preferences = preferences;
  installDesktopServices();  // fills in the services that the app has not set
  installDesktopAudio(argc == 3 ? makeDeviceOutput() : std::make_shared<FileOutput>(argv[3]));
  const bool isAllSaid = announceRun(argv[1], argv[2], Milliseconds(argc == 3 ? 6000 : 50));
  return isAllSaid && !log->hasErrors ? 0 : 1;
} catch (const std::runtime_error& error) {  // includes GrammarError
  std::cerr << "client: " << error.what() << '\n';
  return 1;
}
