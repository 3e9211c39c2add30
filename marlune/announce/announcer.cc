#include "marlune/announce/announcer.h"

#include <utility>

#include "marlune/announce/announcer_state.h"
#include "marlune/announce/phrase_preparer.h"
#include "marlune/announce/shared_speech.h"
#include "marlune/platform/main_thread.h"
#include "marlune/platform/platform.h"

namespace marlune {

namespace {

SharedSpeech& shared() { return SharedSpeech::ofProcess(); }

// Without a main thread every thread counts as one.
void onMainThread(const std::function<void()>& work) {
  const auto mainThread = Platform::shared().mainThread;
  if (!mainThread || mainThread->isCurrent()) return work();
  mainThread->runAndWait(work);
}

}  // namespace

std::unique_ptr<Announcer> Announcer::initWithParser(std::unique_ptr<Parser> parser,
                                                     std::unique_ptr<Decomposer> decomposer,
                                                     std::string directory,
                                                     std::shared_ptr<const ResourceBundle> bundle,
                                                     const AnnouncerSettings& settings) {
  auto state = std::make_shared<State>(std::make_shared<PhrasePreparer>(
      std::move(parser), std::move(decomposer), std::move(directory), std::move(bundle)));
  state->settings = settings;
  return std::unique_ptr<Announcer>(new Announcer(std::move(state)));
}

Announcer::Announcer(std::shared_ptr<State> state) : _state(std::move(state)) {
  onMainThread([] { shared().enter(); });
}

Announcer::~Announcer() {
  onMainThread([this] { shared().leave(_state); });
}

void Announcer::setVoice(std::unique_ptr<Parser> parser, std::unique_ptr<Decomposer> decomposer,
                         std::string directory, std::shared_ptr<const ResourceBundle> bundle) {
  auto preparer = std::make_shared<PhrasePreparer>(std::move(parser), std::move(decomposer),
                                                   std::move(directory), std::move(bundle));
  const auto lock = shared().lock();
  _state->preparer.swap(preparer);
}

void Announcer::setObserver(AnnouncementObserver observer) {
  auto shared_ = std::make_shared<const AnnouncementObserver>(std::move(observer));
  const auto lock = shared().lock();
  _state->observer.swap(shared_);
}

void Announcer::setSettings(const AnnouncerSettings& settings) {
  const auto lock = shared().lock();
  _state->settings = settings;
}

AnnouncerSettings Announcer::settings() const {
  const auto lock = shared().lock();
  return _state->settings;
}

Preparation Announcer::prepare(const std::vector<std::string>& words) {
  std::shared_ptr<PhrasePreparer> preparer;
  {
    const auto lock = shared().lock();
    preparer = _state->preparer;
  }
  return preparer->prepare(words);
}

AnnouncementId Announcer::say(Announcement announcement) {
  return shared().say(_state, std::move(announcement));
}

void Announcer::cancel(AnnouncementId id) { shared().cancel(_state, id); }
void Announcer::cancelKey(std::string_view key) { shared().cancelKey(_state, key); }
void Announcer::stop() { shared().stop(_state); }
void Announcer::pause() { shared().setPaused(true); }
void Announcer::resume() { shared().setPaused(false); }
bool Announcer::isPaused() const { return shared().isPaused(); }
void Announcer::setVolume(float volume) { shared().setVolume(volume); }
float Announcer::volume() const { return shared().volume(); }

}  // namespace marlune
