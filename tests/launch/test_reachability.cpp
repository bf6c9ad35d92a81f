#include "launch/reachability.h"

#include "launch_fixture.h"

#include <chrono>

namespace {

using reachability_test = rooted_log_test;

TEST_F(reachability_test, smart_ping_against_local_ports)
{
    const local_port open, closed(-1);
    const std::string refused = "Connection to server 127.0.0.1 failed with error Connection refused (6f).\n";
    const struct { std::string host, port; int result; std::string log; } cases[] = {
        {"127.0.0.1", open.port, 0, ""}, {"localhost", open.port, 0, ""},
        {"127.0.0.1", closed.port, ECONNREFUSED, refused},
        {"127.0.0.1", "http", ECONNREFUSED, refused},  // not a number: port 0
        // Begins with a digit: never looked up; unreadable, it stays 0.0.0.0, this machine.
        {"1nosuchhost", open.port, 0, ""},
        {"no-such-host.invalid", open.port, -1, "Unknown host no-such-host.invalid.\n"},
        {"", open.port, -1, "Unknown host .\n"},
    };
    for (const auto& c : cases) {
        const size_t before = log_text().size();
        const int result = smart_ping(c.host.c_str(), c.port.c_str());
        if (c.result >= 0) {
            EXPECT_EQ(result, c.result) << c.host << ":" << c.port;
        }
        EXPECT_EQ(log_text().substr(before), c.log) << c.host << ":" << c.port;
    }
}

// A server whose queue of pending connections is full drops new ones silently, as an
// unreachable one would: the check gives up after seconds, not the system's minutes.
TEST_F(reachability_test, silent_server_fails_within_seconds)
{
    const local_port busy(0);
    int clients[2];
    for (int& fd : clients) {
        fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        connect(fd, reinterpret_cast<const sockaddr*>(&busy.address), sizeof busy.address);
    }
    usleep(100 * 1000);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(smart_ping("127.0.0.1", busy.port.c_str()), ETIMEDOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(log_text(), "Connection to server 127.0.0.1 failed with error Connection timed out (6e).\n");
    for (int fd : clients)
        close(fd);
}

}  // namespace
