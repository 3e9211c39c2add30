// Uses one function of the core, to check that the library links. Succeeds if it returns.
#include "marlune/util/format.h"

int main() { return marlune::formatted("%@ km", {5}) == "5 km" ? 0 : 1; }
