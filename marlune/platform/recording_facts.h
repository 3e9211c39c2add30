#ifndef MARLUNE_PLATFORM_RECORDING_FACTS_H_
#define MARLUNE_PLATFORM_RECORDING_FACTS_H_

#include <optional>

namespace marlune {

// What the platform knows about a recording that it can play.
struct RecordingFacts {
  std::optional<double> seconds;  // its length; nothing if unknown
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_RECORDING_FACTS_H_
