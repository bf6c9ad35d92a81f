#pragma once
// Shared by the launcher tests: records, keyboard map lists, local ports and a private
// root with the program's log open in it.
#include "keymaps/keymaps.h"
#include "platform/log.h"
#include "store/record.h"
#include "support/test_support.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

using column_values = std::initializer_list<std::pair<int, const char*>>;

inline connection_record with_columns(connection_record record, column_values values)
{
    for (const auto& [column, text] : values)
        record[column] = text;
    return record;
}

inline connection_record make_record(const std::string& name, const std::string& type, column_values values = {},
                                     bool ping_first = false)
{
    connection_record record;
    record.ping_first = ping_first;
    return with_columns(with_columns(record, {{MC_NAME, name.c_str()}, {MC_TYPE, type.c_str()}}), values);
}

// A keyboard map list of (code, display name) rows; the GUI tests use it too.
inline GtkListStore* make_keymap_list(std::initializer_list<std::pair<const char*, const char*>> rows)
{
    GtkListStore* list = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
    for (const auto& [code, name] : rows)
        gtk_list_store_insert_with_values(list, nullptr, -1, KM_CODE, code, KM_DESCRIPTION, name, -1);
    return list;
}

// A TCP socket bound to a free port of 127.0.0.1, listening with the given backlog or not at all.
struct local_port {
    explicit local_port(int backlog = 16)
    {
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (bind(fd, reinterpret_cast<sockaddr*>(&address), length) || getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length))
            ADD_FAILURE() << "no local port";
        if (backlog >= 0)
            listen(fd, backlog);
        port = std::to_string(ntohs(address.sin_port));
    }
    ~local_port() { close(fd); }
    int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    std::string port;
};

class rooted_log_test : public rooted_test {
protected:
    void SetUp() override
    {
        make_dirs(root / "tmp");
        ASSERT_TRUE(log_open());
    }
    void TearDown() override { log_close(); }
    std::string log_text() const { return read_file_text(root / "tmp/zarvoca.log"); }
};
