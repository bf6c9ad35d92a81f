#include "platform/users.h"

#include "platform/file.h"
#include "platform/paths.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <grp.h>
#include <pwd.h>

namespace {

bool private_databases() { return !root_prefix().empty(); }

user_entry to_entry(const passwd& pw, bool in_root)
{
    user_entry entry;
    entry.name = pw.pw_name ? pw.pw_name : "";
    std::string home = pw.pw_dir ? pw.pw_dir : "";
    entry.home = in_root ? root_path(home) : home;
    entry.database_home = home;
    entry.uid = pw.pw_uid;
    entry.gid = pw.pw_gid;
    return entry;
}

// Calls visit for every entry of the password database until it returns true.
void for_each_passwd(const std::function<bool(const passwd&)>& visit)
{
    if (private_databases()) {
        unique_file file = open_file(root_path("/etc/passwd"), "re");
        if (!file)
            return;
        while (passwd* pw = fgetpwent(file.get()))
            if (visit(*pw))
                break;
        return;
    }
    setpwent();
    while (passwd* pw = getpwent())
        if (visit(*pw))
            break;
    endpwent();
}

std::optional<user_entry> find_user(const std::function<bool(const passwd&)>& match)
{
    std::optional<user_entry> found;
    bool in_root = private_databases();
    for_each_passwd([&](const passwd& pw) {
        if (!match(pw))
            return false;
        found = to_entry(pw, in_root);
        return true;
    });
    return found;
}

bool members_contain(char** members, const std::string& user)
{
    for (char** member = members; member && *member; ++member)
        if (user == *member)
            return true;
    return false;
}

}  // namespace

std::optional<user_entry> user_by_uid(uid_t uid)
{
    if (!private_databases()) {
        passwd* pw = getpwuid(uid);
        if (!pw)
            return std::nullopt;
        return to_entry(*pw, false);
    }
    return find_user([uid](const passwd& pw) { return pw.pw_uid == uid; });
}

std::optional<user_entry> user_by_name(const std::string& name)
{
    if (!private_databases()) {
        passwd* pw = getpwnam(name.c_str());
        if (!pw)
            return std::nullopt;
        return to_entry(*pw, false);
    }
    return find_user([&name](const passwd& pw) { return pw.pw_name && name == pw.pw_name; });
}

std::vector<user_entry> all_users()
{
    std::vector<user_entry> users;
    bool in_root = private_databases();
    for_each_passwd([&](const passwd& pw) {
        users.push_back(to_entry(pw, in_root));
        return false;
    });
    return users;
}

bool group_lists_member(const std::string& group, const std::string& user)
{
    if (!private_databases()) {
        ::group* gr = getgrnam(group.c_str());
        return gr && members_contain(gr->gr_mem, user);
    }
    unique_file file = open_file(root_path("/etc/group"), "re");
    if (!file)
        return false;
    while (::group* gr = fgetgrent(file.get()))
        if (gr->gr_name && group == gr->gr_name)
            return members_contain(gr->gr_mem, user);
    return false;
}
