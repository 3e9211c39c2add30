#ifndef MARLUNE_TOOLS_MARLUNE_EXIT_STATUS_H_
#define MARLUNE_TOOLS_MARLUNE_EXIT_STATUS_H_

namespace marlune::tool {

// How a run ends, for the shell.
enum ExitStatus {
  kEverythingSaid = 0,
  kSomethingNotSaid = 1,  // a phrase could not be rewritten or said; the others were
  kUnusable = 2,          // bad usage, or input that cannot be read
};

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_EXIT_STATUS_H_
