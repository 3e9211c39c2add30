#ifndef MARLUNE_DESKTOP_AUDIO_AUDIO_FORMAT_H_
#define MARLUNE_DESKTOP_AUDIO_AUDIO_FORMAT_H_

namespace marlune {

// How sound is cut up. Samples travel as floats, interleaved, full scale at 1: a sample of 24 bits
// or fewer survives the way there and back unchanged.
struct AudioFormat {
  int sampleRate = 0;  // frames a second
  int channels = 0;    // samples a frame

  bool operator==(const AudioFormat&) const = default;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_AUDIO_FORMAT_H_
