#include "marlune/testing/fake_platform.h"

#include <utility>

#include "marlune/playback/shared_playback.h"

namespace marlune {

namespace {

// Without folder and extension.
std::string nameOf(const std::string& path) {
  const std::string file = path.substr(path.rfind('/') + 1);
  return file.substr(0, file.rfind('.'));
}

}  // namespace

FakePlatform::FakePlatform(std::vector<std::string> recordings, double latencySeconds)
    : voice(std::make_shared<FakeResourceBundle>(std::move(recordings))),
      _latencySeconds(latencySeconds),
      _former(Platform::shared()) {
  SharedPlayback::ofProcess().startAfresh();
  Platform& platform = Platform::shared();
  platform.clock = clock;
  platform.mainThread = mainThread;
  platform.audioSession = session;
  platform.makeQueuePlayer = [this] {
    _queue = std::make_shared<FakeQueuePlayer>(clock, _latencySeconds);
    _queue->itemBegins = [this](const FakePlayerItem&) {
      if (!session->isActive) ++soundsWithoutSession;
    };
    session->isSoundRunning = [this] { return _queue->rate() != 0 && _queue->currentItem(); };
    return _queue;
  };
  platform.makePlayerItem = [this](const std::string& path) {
    const auto length = seconds.find(nameOf(path));
    auto item = _item(path, length == seconds.end() ? 1 : length->second);
    const auto outcome = outcomes.find(nameOf(path));
    if (outcome != outcomes.end()) item->outcome = outcome->second;
    return item;
  };
  platform.silentItem = [this](double length) { return _item("", length); };
  platform.examineRecording = [this](const std::string& path) -> Result<RecordingFacts> {
    const auto fault = faults.find(nameOf(path));
    if (fault != faults.end()) return Failure::malformed(fault->second);
    const auto length = seconds.find(nameOf(path));
    return RecordingFacts{length == seconds.end() ? 1 : length->second};
  };
}

FakePlatform::~FakePlatform() {
  SharedPlayback::ofProcess().startAfresh();
  Platform::shared() = std::move(_former);
}

std::unique_ptr<Decomposer> FakePlatform::decomposer() const {
  return Decomposer::initWithDirectory("Sounds", voice);
}

void FakePlatform::loseDevice() {
  session->hasDevice = false;
  if (_queue) _queue->fail();
}

std::shared_ptr<FakePlayerItem> FakePlatform::_item(const std::string& path, double length) {
  auto item = std::make_shared<FakePlayerItem>(path, length);
  _items.push_back(item);
  return item;
}

}  // namespace marlune
