#ifndef MARLUNE_ANNOUNCE_WAITING_LINE_H_
#define MARLUNE_ANNOUNCE_WAITING_LINE_H_

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "marlune/announce/speech.h"

namespace marlune {

// The announcements that wait, the most urgent first. Internal: not installed.
class WaitingLine {
 public:
  using Place = std::unique_ptr<Speech>;

  bool empty() const { return _line.empty(); }
  Speech& front() const { return *_line.back(); }
  const std::vector<Place>& all() const { return _line; }  // the most urgent last

  void add(Place speech) {
    const auto place = std::find_if(_line.begin(), _line.end(),
                                    [&](const Place& each) { return each->isBefore(*speech); });
    _line.insert(place, std::move(speech));
  }
  Place takeFront() {
    Place front = std::move(_line.back());
    _line.pop_back();
    return front;
  }
  // Removes those for which `isMeant` returns true, and hands each to `end`.
  template <typename IsMeant, typename End>
  void remove(const IsMeant& isMeant, const End& end) {
    for (std::size_t i = _line.size(); i-- > 0;) {
      if (!isMeant(*_line[i])) continue;
      Place speech = std::move(_line[i]);
      _line.erase(_line.begin() + static_cast<long>(i));
      end(std::move(speech));
    }
  }
  // The least urgent of an announcer: of the lowest priority the youngest. Null if none waits.
  Speech* leastUrgentOf(const Announcer::State& announcer) const {
    Speech* least = nullptr;
    for (const Place& each : _line) {
      if (each->announcer.get() != &announcer) continue;
      if (!least || each->content.priority < least->content.priority ||
          (each->content.priority == least->content.priority && each->id > least->id)) {
        least = each.get();
      }
    }
    return least;
  }

 private:
  std::vector<Place> _line;  // the front of the line is at the end, where removing is cheap
};

}  // namespace marlune

#endif  // MARLUNE_ANNOUNCE_WAITING_LINE_H_
