#pragma once
// The password and group databases. With KESTRELLE_ROOT set they are read from the
// root's etc/passwd and etc/group, and home directories found there are moved under
// the root too; unset, the system's own databases are used.
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

struct user_entry {
    std::string name;
    std::string home;           // where the user's files are (root prefix applied)
    std::string database_home;  // the home directory as the database writes it
    uid_t uid = 0;
    gid_t gid = 0;
};

std::optional<user_entry> user_by_uid(uid_t uid);
std::optional<user_entry> user_by_name(const std::string& name);
std::vector<user_entry> all_users();
// True when the group exists and lists the user among its members. Membership through
// the primary group does not count.
bool group_lists_member(const std::string& group, const std::string& user);
