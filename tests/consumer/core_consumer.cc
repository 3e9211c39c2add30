// Uses one thing of the core, so that the link is put to the test. Succeeds when it answers.
#include "marlune/util/format.h"

int main() { return marlune::formatted("%@ km", {5}) == "5 km" ? 0 : 1; }
