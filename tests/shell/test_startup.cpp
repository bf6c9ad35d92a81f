#include "shell/startup.h"

#include "launch/command_line.h"
#include "shell/globals.h"
#include "store/ica_paths.h"
#include "support/test_support.h"

namespace {

using startup = rooted_test;

TEST_F(startup, rights_come_from_member_lists_and_primary_group_zero)
{
    write_file(root / "etc/group",
               "root:x:0:ada\nshutdown:x:70:sam\nturnoff:x:71:tom,rex\nreboot:x:72:rex,ray\nusers:x:100:\n");
    struct expectation { const char* user; gid_t group; bool root, turnoff, reboot; } table[] = {
        {"ada", 100, true, true, true},    // listed in "root"
        {"sam", 100, false, true, true},   // "shutdown": both machine rights
        {"tom", 100, false, true, false},  // "turnoff" only
        {"ray", 100, false, false, true},  // "reboot" only
        {"zoe", 0, true, true, true},      // primary group 0, listed nowhere
        {"ned", 100, false, false, false}, // in no group
    };
    for (const expectation& e : table) {
        const user_rights rights = rights_of(e.user, e.group);
        EXPECT_EQ(std::tie(rights.root, rights.turnoff, rights.reboot), std::tie(e.root, e.turnoff, e.reboot)) << e.user;
    }
}

TEST_F(startup, the_last_existing_citrix_client_and_the_first_xsetup_win)
{
    for (const char* dir : {"opt/ICAClient", "usr/lib/ICAClient"})
        make_dirs(root / dir);
    for (const char* file : {"etc/X11/XF86Config-4", "etc/X11/XOrg.conf", "etc/X11/xdm/Xsetup",
                             "etc/X11/wdm/Xsetup", "opt/zarvo/marrow"})
        write_file(root / file, "");
    unsetenv("ICAROOT");
    find_citrix_client();
    find_x_files();
    find_programs();
    EXPECT_EQ(ica_root, root / "usr/lib/ICAClient");
    EXPECT_EQ(messages.label, "\nCitrix ICA configuration error, ICAROOT not set.\n");
    EXPECT_EQ(x_setup_file, root / "etc/X11/xdm/Xsetup");
    EXPECT_EQ(das, 1);
    EXPECT_EQ(firefox, 0);

    setenv("ICAROOT", "/elsewhere", 1);
    find_citrix_client();
    EXPECT_EQ(ica_root, "/elsewhere");
    unsetenv("ICAROOT");
}
}  // namespace
