// Says phrases with recordings, and those that the recordings cannot say with a synthesiser: the
// announcer reports them as unsayable.
//
//     synthesiser VOICE OUTPUT.wav SYNTHESISED.raw PHRASE...
//
// Each phrase is an argument of words parted by blanks. SYNTHESISED.raw receives the synthesiser's
// sound: 16 bits, one channel, at its own rate; an app would play it.
#include <espeak-ng/speak_lib.h>

#include <cstdio>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "marlune/announce.h"
#include "marlune/desktop.h"

using namespace marlune;

namespace {

std::FILE* synthesised = nullptr;

int writeSamples(short* samples, int count, espeak_EVENT*) {
  if (samples) std::fwrite(samples, sizeof *samples, static_cast<std::size_t>(count), synthesised);
  return 0;  // go on
}

void synthesise(const std::string& text) {
  espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0, espeakCHARS_UTF8, nullptr,
               nullptr);
  espeak_Synchronize();
}

std::vector<std::string> wordsOf(const std::string& phrase) {
  std::istringstream stream(phrase);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fputs("usage: synthesiser VOICE OUTPUT.wav SYNTHESISED.raw PHRASE...\n", stderr);
    return 2;
  }
  synthesised = std::fopen(argv[3], "wb");
  const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 0, nullptr, 0);
  if (!synthesised || rate <= 0) {
    std::fputs("The synthesiser or its output could not be opened.\n", stderr);
    return 1;
  }
  espeak_SetSynthCallback(&writeSamples);

  const auto loop = installDesktopServices();
  installDesktopAudio(std::make_shared<FileOutput>(argv[2]));
  const auto voice = std::make_shared<FolderBundle>(argv[1]);
  const auto announcer =
      Announcer::initWithParser(nullptr, Decomposer::initWithDirectory("", voice), "", voice);

  std::map<AnnouncementId, std::string> phrases;  // that have not ended
  announcer->setObserver({.ended = [&](AnnouncementId id, const AnnouncementEnd& end) {
    const std::string phrase = phrases.extract(id).mapped();
    if (end.kind == AnnouncementEnd::Kind::unsayable) {
      std::printf("synthesised: %s (%s)\n", phrase.c_str(), end.message.c_str());
      synthesise(phrase);
    } else {
      std::printf("recorded: %s\n", phrase.c_str());
    }
    if (phrases.empty()) loop->stop();
  }});
  for (int i = 4; i < argc; ++i) {
    phrases[announcer->say({.words = wordsOf(argv[i])})] = argv[i];
  }
  loop->run();
  espeak_Terminate();
  return std::fclose(synthesised) == 0 ? 0 : 1;
}
