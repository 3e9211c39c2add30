#include "marlune/desktop/audio/output/audio_source.h"

#include <algorithm>
#include <array>

#include "marlune/desktop/audio/base/sample_conversion.h"

namespace marlune {

std::size_t AudioSource::renderShorts(short* frames, std::size_t count, int channels) noexcept {
  std::array<float, 1'024> floats;
  const auto samples = static_cast<std::size_t>(channels);
  const std::size_t most = floats.size() / samples;  // an output has far fewer channels than that
  std::size_t sounding = 0;
  std::size_t done = 0;
  do {
    const std::size_t some = std::min(count - done, most);
    const std::size_t heard = render(floats.data(), some, channels);
    std::transform(floats.data(), floats.data() + some * samples, frames + done * samples,
                   shortFromFloat);
    if (sounding == done) sounding += heard;
    done += some;
  } while (done < count);
  return sounding;
}

}  // namespace marlune
