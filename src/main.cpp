// Kestrelle: the connection manager and shell of a thin client. It takes no options
// of its own; the arguments go to the toolkit.
#include "admin/advanced.h"
#include "shell/startup.h"

namespace {

// Start-up builds the master list in one thread and the main window's list in another.
// GLib's slice allocator (before GLib 2.76, which always uses malloc) hands every thread
// its memory under one lock, and waiting on it made a start-up with 10,000 connections
// a fifth longer; plain malloc gives each thread memory of its own. The choice only
// takes effect before GLib's first allocation, which its libraries make before main, so
// it is made from the program's pre-initialisers, which run before any library's.
void use_malloc_for_slices(int, char**, char**)
{
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    g_slice_set_config(G_SLICE_CONFIG_ALWAYS_MALLOC, TRUE);
    G_GNUC_END_IGNORE_DEPRECATIONS
}

__attribute__((section(".preinit_array"), used)) void (*const before_libraries)(int, char**, char**) =
    use_malloc_for_slices;

}  // namespace

int main(int argc, char** argv) { return kestrelle_main(argc, argv, G_CALLBACK(advanced_dialog)); }
