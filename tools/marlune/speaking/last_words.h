#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_LAST_WORDS_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_LAST_WORDS_H_

#include <csignal>
#include <string>

namespace marlune::tool {

// While one exists, SIGINT and SIGTERM write a sentence to standard error before they end the
// process. At most one may exist at a time.
class LastWords {
 public:
  explicit LastWords(const std::string& sentence);
  ~LastWords();
  LastWords(const LastWords&) = delete;
  LastWords& operator=(const LastWords&) = delete;

 private:
  struct sigaction _formerInterrupt = {};
  struct sigaction _formerTerminate = {};
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_LAST_WORDS_H_
