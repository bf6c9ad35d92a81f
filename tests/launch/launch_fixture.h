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

inline connection_record make_record(const std::string& name, const std::string& type,
                                     column_values values = {}, bool ping_first = false)
{
    connection_record record;
    record[MC_NAME] = name;
    record[MC_TYPE] = type;
    record.ping_first = ping_first;
    return with_columns(record, values);
}

// A keyboard map list of (code, display name) rows; the GUI tests use it too.
inline GtkListStore* make_keymap_list(std::initializer_list<std::pair<const char*, const char*>> rows)
{
    GtkListStore* list = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
    for (const auto& [code, name] : rows)
        gtk_list_store_insert_with_values(list, nullptr, -1, KM_CODE, code, KM_DESCRIPTION, name, -1);
    return list;
}

// A TCP socket bound to a free port of 127.0.0.1; listening unless told otherwise.
class local_port {
public:
    explicit local_port(bool listening, int backlog = 16)
    {
        fd_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address_;
        if (bind(fd_, reinterpret_cast<sockaddr*>(&address_), length) != 0 ||
            getsockname(fd_, reinterpret_cast<sockaddr*>(&address_), &length) != 0)
            ADD_FAILURE() << "no local port";
        port_ = std::to_string(ntohs(address_.sin_port));
        if (listening)
            listen(fd_, backlog);
    }
    ~local_port() { close(fd_); }
    const char* port() const { return port_.c_str(); }
    const sockaddr_in& address() const { return address_; }

private:
    int fd_ = -1;
    sockaddr_in address_{};
    std::string port_;
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
