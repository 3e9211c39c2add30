#include "tools/marlune/speaking/queued_items.h"

#include <filesystem>
#include <utility>

#include "marlune/platform/platform.h"
#include "tools/marlune/streams/report.h"

namespace marlune::tool {

namespace {

std::string causeOf(const ItemFate& fate) {
  return fate.kind == ItemFate::Kind::pending ? "it was not played" : fate.message;
}

}  // namespace

void QueuedItems::install(
    std::function<std::unique_ptr<Recording>(const std::string& path)> takeRecording) {
  Platform::shared().makePlayerItem = [this,
                                       take = std::move(takeRecording)](const std::string& path) {
    _items.push_back(std::make_shared<FilePlayerItem>(path, take(path)));
    return _items.back();
  };
}

// Groups adjacent recordings that were lost for the same reason.
std::string QueuedItems::lossesAmong(std::size_t count) const {
  std::vector<std::pair<Words, std::string>> losses;
  for (const auto& item : _items) {
    const ItemFate fate = item->fate();
    if (fate.kind == ItemFate::Kind::heardWhole) continue;
    const std::string cause = causeOf(fate);
    if (losses.empty() || losses.back().second != cause) losses.push_back({{}, cause});
    losses.back().first.push_back(std::filesystem::path(item->path()).filename().string());
  }
  std::string text;
  for (const auto& [names, cause] : losses) {
    (text += text.empty() ? "" : "; ") += quoted(names) + ": " + cause;
  }
  if (!text.empty() || _items.size() == count) return text;
  return "some of its recordings could not be queued";
}

}  // namespace marlune::tool
