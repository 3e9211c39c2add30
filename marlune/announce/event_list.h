#ifndef MARLUNE_ANNOUNCE_EVENT_LIST_H_
#define MARLUNE_ANNOUNCE_EVENT_LIST_H_

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "marlune/announce/announcement_end.h"
#include "marlune/announce/announcer_state.h"

namespace marlune {

// Events that are not yet reported to observers, in order. Internal: not installed.
class EventList {
 public:
  struct Event {
    enum class What { started, recording, ended };
    std::shared_ptr<Announcer::State> announcer;  // null: already taken
    What what = What::started;
    AnnouncementId id = 0;
    AnnouncementId lastId = 0;  // of a run of ids with the same end
    std::shared_ptr<const PreparedPhrase> phrase{};
    std::size_t recording = 0;  // its index in the phrase
    AnnouncementEnd::Kind kind{};
    std::unique_ptr<const AnnouncementEnd> end{};  // null: of that kind, with nothing to explain
  };

  void add(Event event) {
    if (!_events.empty() && _continues(_events.back(), event)) {
      _events.back().lastId = event.id;
    } else {
      _events.push_back(std::move(event));
    }
  }

  bool isEmpty() const { return _first == _events.size(); }

  // Takes the first event, or the first of one announcer. Returns false if there is none. Keeps the
  // list's memory.
  bool take(const Announcer::State* only, Event& event) {
    for (std::size_t i = _first; i < _events.size(); ++i) {
      if (!_events[i].announcer || (only && _events[i].announcer.get() != only)) continue;
      event = std::move(_events[i]);
      _events[i].announcer.reset();
      if (!only) _first = i + 1;
      return true;
    }
    if (!only) {
      _events.clear();
      _first = 0;
    }
    return false;
  }

 private:
  // A main thread that is late must not let refused and replaced announcements fill the memory.
  static bool _continues(const Event& last, const Event& event) {
    return last.what == Event::What::ended && event.what == Event::What::ended &&
           last.announcer == event.announcer && last.lastId + 1 == event.id &&
           last.kind == event.kind && _causeOf(last) && _causeOf(last) == _causeOf(event);
  }
  // Of the causes, only a full queue always has the same message. Nothing for the others.
  static std::optional<AnnouncementEnd::Cause> _causeOf(const Event& event) {
    if (!event.end) return AnnouncementEnd::Cause::none;
    if (event.end->cause == AnnouncementEnd::Cause::queueFull) return event.end->cause;
    return std::nullopt;
  }

  std::vector<Event> _events;
  std::size_t _first = 0;
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_EVENT_LIST_H_
