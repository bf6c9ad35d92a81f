#include "launch/reachability.h"

#include "platform/log.h"
#include "platform/shell_command.h"

#include <arpa/inet.h>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// Left to itself, connect() to a silent server waits for the kernel's SYN retries,
// about two minutes, and the failover to a secondary connection waits with it. A
// non-blocking connect bounded by poll() gives up after a few seconds instead; a
// server on the local network that is up answers far sooner.
constexpr int connect_timeout_ms = 5000;

// Resolves host into address: a host beginning with a digit is a dotted address and is
// never looked up by name. Returns false when a name look-up fails.
bool resolve_host(const char* host, in_addr* address)
{
    if (std::isdigit(static_cast<unsigned char>(host[0]))) {
        // A text that is not a dotted address leaves the address at 0.0.0.0.
        inet_pton(AF_INET, host, address);
        return true;
    }
    const hostent* entry = gethostbyname(host);
    if (!entry || entry->h_addrtype != AF_INET || !entry->h_addr_list[0])
        return false;
    std::memcpy(address, entry->h_addr_list[0], sizeof *address);
    return true;
}

// Waits until a non-blocking connect has finished. Returns 0 or the error number.
int finish_connect(int fd)
{
    pollfd waiting{fd, POLLOUT, 0};
    int ready;
    do
        ready = poll(&waiting, 1, connect_timeout_ms);
    while (ready < 0 && errno == EINTR);
    if (ready < 0)
        return errno;
    if (ready == 0)
        return ETIMEDOUT;
    int error = 0;
    socklen_t length = sizeof error;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) < 0)
        return errno;
    return error;
}

int connect_within_timeout(int fd, const sockaddr_in& server)
{
    if (connect(fd, reinterpret_cast<const sockaddr*>(&server), sizeof server) == 0)
        return 0;
    if (errno != EINPROGRESS)
        return errno;
    return finish_connect(fd);
}

}  // namespace

int smart_ping(const char* host, const char* port)
{
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        const int error = errno;
        log_printf("Socket creation failed with error %s (%x).\n", std::strerror(error), error);
        return error;
    }
    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = htons(static_cast<uint16_t>(decimal_column(port)));
    if (!resolve_host(host, &server.sin_addr)) {
        const int error = errno;
        log_printf("Unknown host %s.\n", host);
        close(fd);
        return error;
    }
    const int error = connect_within_timeout(fd, server);
    close(fd);
    if (error != 0)
        log_printf("Connection to server %s failed with error %s (%x).\n",
                   inet_ntoa(server.sin_addr), std::strerror(error), error);
    return error;
}

int run_reachability_check(const reachability_check& check)
{
    switch (check.how) {
    case reachability_check::method::icmp:
        return run_shell_command(check.command);
    case reachability_check::method::tcp:
        return smart_ping(check.host.c_str(), check.port.c_str());
    case reachability_check::method::none:
        break;
    }
    return 0;
}
