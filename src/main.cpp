// Kestrelle: the connection manager and shell of a thin client. It takes no options
// of its own; the arguments go to the toolkit.
#include "shell/startup.h"

int main(int argc, char** argv) { return kestrelle_main(argc, argv); }
