#ifndef MARLUNE_TOOLS_MARLUNE_EXIT_STATUS_H_
#define MARLUNE_TOOLS_MARLUNE_EXIT_STATUS_H_

namespace marlune::tool {

// The exit status of a run.
enum ExitStatus {
  kEverythingSaid = 0,
  kSomethingNotSaid = 1,  // some phrases could not be rewritten or said
  kUnusable = 2,          // bad usage, or input that cannot be read
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_EXIT_STATUS_H_
