// Kestrelle: the connection manager and shell of a thin client. It takes no options
// of its own; the arguments go to the toolkit.
#include "admin/advanced.h"
#include "shell/startup.h"

int main(int argc, char** argv) { return kestrelle_main(argc, argv, G_CALLBACK(advanced_dialog)); }
