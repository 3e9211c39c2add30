#ifndef MARLUNE_TESTING_END_RECORDER_H_
#define MARLUNE_TESTING_END_RECORDER_H_

#include <map>
#include <string>
#include <vector>

#include "marlune/announce/announcement.h"
#include "marlune/announce/announcement_end.h"
#include "marlune/announce/announcement_observer.h"

namespace marlune {

// Keeps what an announcer reports. Must outlive the announcers that it observes.
class EndRecorder {
 public:
  AnnouncementObserver observer() {
    return {
        .started = [this](AnnouncementId id) { _add(id, "started"); },
        .recording = [this](AnnouncementId id,
                            const SpokenRecording& recording) { _add(id, recording.name); },
        .ended =
            [this](AnnouncementId id, const AnnouncementEnd& end) {
              _add(id, nameOf(end.kind));
              ends[id].push_back(end);
            },
    };
  }

  // One line for each report: the id and "started", the recording's name or the end's.
  std::vector<std::string> lines;
  std::map<AnnouncementId, std::vector<AnnouncementEnd>>
      ends;  // in order; one each, if all is well

  // The name of the announcement's end, "" before it, and several names if it has ended twice.
  std::string endOf(AnnouncementId id) const {
    std::string text;
    const auto found = ends.find(id);
    if (found == ends.end()) return text;
    for (const AnnouncementEnd& each : found->second) {
      text += (text.empty() ? "" : " ") + nameOf(each.kind);
    }
    return text;
  }

  static std::string nameOf(AnnouncementEnd::Kind kind) {
    using Kind = AnnouncementEnd::Kind;
    switch (kind) {
      case Kind::finished:
        return "finished";
      case Kind::interrupted:
        return "interrupted";
      case Kind::replaced:
        return "replaced";
      case Kind::expired:
        return "expired";
      case Kind::noLongerValid:
        return "no longer valid";
      case Kind::cancelled:
        return "cancelled";
      case Kind::unsayable:
        return "unsayable";
      case Kind::failed:
        return "failed";
      case Kind::stopped:
        return "stopped";
    }
    return {};
  }

 private:
  void _add(AnnouncementId id, const std::string& what) {
    lines.push_back(std::to_string(id) + " " + what);
  }
};

}  // namespace marlune

#endif  // MARLUNE_TESTING_END_RECORDER_H_
