#ifndef MARLUNE_BENCH_DECOMPOSE_PEERS_H_
#define MARLUNE_BENCH_DECOMPOSE_PEERS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace marlune {

// The dynamic program of both peers: for every end, the fewest recordings up to it and the begin of
// the last of them. Ends may be visited in any order in which a begin is complete before its ends.
// On a tie the later begin wins, as in the decomposer.
class FewestRecordings {
 public:
  explicit FewestRecordings(std::size_t wordCount) : _ends(wordCount + 1) { _ends[0].files = 0; }

  void add(std::size_t begin, std::size_t end) {
    const std::uint32_t files = _ends[begin].files;
    if (files != kNone && files + 1 <= _ends[end].files) _ends[end] = {files + 1, begin};
  }

  std::vector<std::string> result(const std::vector<std::string>& words) const {
    std::vector<std::string> files;
    if (_ends.back().files == kNone) return files;
    files.resize(_ends.back().files);
    std::size_t end = words.size();
    for (std::size_t i = files.size(); i-- > 0; end = _ends[end].begin) {
      for (std::size_t word = _ends[end].begin; word < end; ++word) {
        if (word > _ends[end].begin) files[i] += '_';
        files[i] += words[word];
      }
    }
    return files;
  }

 private:
  static constexpr std::uint32_t kNone = 0xffffffff;
  struct End {
    std::uint32_t files = kNone;
    std::size_t begin = 0;
  };
  std::vector<End> _ends;
};

// Looks up every stretch in a hash set of names; a stretch is a view into the joined phrase.
class HashSetPeer {
 public:
  explicit HashSetPeer(const std::vector<std::string>& files)
      : _files(files), _names(_files.begin(), _files.end()) {}

  std::vector<std::string> decompose(const std::vector<std::string>& words) const {
    std::string text;
    std::vector<std::size_t> begins, ends;
    for (const std::string& word : words) {
      if (!text.empty()) text += '_';
      begins.push_back(text.size());
      text += word;
      ends.push_back(text.size());
    }
    FewestRecordings fewest(words.size());
    for (std::size_t begin = 0; begin < words.size(); ++begin) {
      for (std::size_t end = begin; end < words.size(); ++end) {
        const std::string_view name =
            std::string_view(text).substr(begins[begin], ends[end] - begins[begin]);
        if (_names.contains(name)) fewest.add(begin, end + 1);
      }
    }
    return fewest.result(words);
  }

 private:
  std::vector<std::string> _files;
  std::unordered_set<std::string_view> _names;
};

// Follows a trie whose edges are words, from every begin for as long as an edge matches.
class TriePeer {
 public:
  explicit TriePeer(const std::vector<std::string>& files) {
    for (const std::string& file : files) _add(file);
  }

  std::vector<std::string> decompose(const std::vector<std::string>& words) const {
    FewestRecordings fewest(words.size());
    for (std::size_t begin = 0; begin < words.size(); ++begin) {
      std::uint32_t node = 0;
      for (std::size_t end = begin; end < words.size(); ++end) {
        const auto& edges = _nodes[node].edges;
        const auto edge = edges.find(words[end]);
        if (edge == edges.end()) break;
        node = edge->second;
        if (_nodes[node].isRecording) fewest.add(begin, end + 1);
      }
    }
    return fewest.result(words);
  }

 private:
  struct Node {
    std::unordered_map<std::string, std::uint32_t> edges;
    bool isRecording = false;
  };

  void _add(const std::string& file) {
    std::uint32_t node = 0;
    for (std::size_t begin = 0; begin <= file.size();) {
      const std::size_t end = std::min(file.find('_', begin), file.size());
      const auto next = static_cast<std::uint32_t>(_nodes.size());
      const auto [edge, isNew] =
          _nodes[node].edges.try_emplace(file.substr(begin, end - begin), next);
      node = edge->second;
      if (isNew) _nodes.emplace_back();
      begin = end + 1;
    }
    _nodes[node].isRecording = true;
  }

  std::vector<Node> _nodes = std::vector<Node>(1);
};

}  // namespace marlune

#endif  // MARLUNE_BENCH_DECOMPOSE_PEERS_H_
