#include "metrics_server.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "mono_clock.h"

namespace authmng_hostapd {
namespace {

// Longest request read; a scrape's request is a few hundred bytes.
constexpr size_t kRequestMax = 4096;

// A port number: 1 to 65535 in decimal digits.
bool is_port(const std::string &text) {
    return !text.empty() && text.size() <= 5 &&
           text.find_first_not_of("0123456789") == std::string::npos && atoi(text.c_str()) >= 1 &&
           atoi(text.c_str()) <= 65535;
}

}  // namespace

bool split_listen_address(const std::string &text, std::string *host, std::string *port) {
    if (is_port(text)) {
        *host = "127.0.0.1";
        *port = text;
        return true;
    }
    size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) return false;
    *host = text.substr(0, colon);
    *port = text.substr(colon + 1);
    if (host->size() >= 2 && host->front() == '[' && host->back() == ']') {
        *host = host->substr(1, host->size() - 2);
    }
    return !host->empty() && is_port(*port);
}

std::string http_response(const std::string &request, const std::function<std::string()> &body) {
    bool metrics = request.compare(0, 13, "GET /metrics ") == 0 ||
                   request.compare(0, 14, "GET /metrics\r\n") == 0;
    std::string content = metrics ? body() : "not found: the metrics are at /metrics\n";
    std::string head = metrics ? "HTTP/1.0 200 OK\r\n" : "HTTP/1.0 404 Not Found\r\n";
    head += metrics ? "Content-Type: text/plain; version=0.0.4; charset=utf-8\r\n"
                    : "Content-Type: text/plain; charset=utf-8\r\n";
    head += "Content-Length: " + std::to_string(content.size()) + "\r\nConnection: close\r\n\r\n";
    return head + content;
}

bool MetricsServer::start(const std::string &address, std::function<std::string()> body,
                          std::string *error) {
    std::string host, port;
    if (!split_listen_address(address, &host, &port)) {
        *error = "bad metrics address \"" + address + "\" (PORT, ADDR:PORT or [ADDR6]:PORT)";
        return false;
    }
    addrinfo hints;
    memset(&hints, 0, sizeof hints);
    hints.ai_flags = AI_PASSIVE | AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    int rc = getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
    if (rc != 0) {
        *error = "metrics address " + address + ": " + gai_strerror(rc);
        return false;
    }
    int fd = socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int on = 1;
    bool ok = fd >= 0 && setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
              bind(fd, found->ai_addr, found->ai_addrlen) == 0 && listen(fd, 16) == 0;
    freeaddrinfo(found);
    if (!ok) {
        *error = "metrics address " + address + ": " + strerror(errno);
        if (fd >= 0) close(fd);
        return false;
    }
    body_ = std::move(body);
    loop_.start(fd, SOCK_NONBLOCK, [this](int client) { answer(client); });
    return true;
}

void MetricsServer::stop() {
    loop_.stop();
}

void MetricsServer::answer(int client) {
    int64_t deadline = monotonic_us() + kScrapeTimeoutMs * 1000LL;
    std::string request;
    char buffer[1024];
    bool complete = false;
    while (!complete && request.size() < kRequestMax) {
        int64_t left = deadline - monotonic_us();
        pollfd in = {client, POLLIN, 0};
        if (left <= 0 || poll(&in, 1, static_cast<int>(left / 1000) + 1) <= 0) break;
        ssize_t got = recv(client, buffer, sizeof buffer, 0);
        if (got <= 0) break;
        request.append(buffer, static_cast<size_t>(got));
        complete = request.find("\r\n\r\n") != std::string::npos ||
                   request.find("\n\n") != std::string::npos;
    }
    if (complete) {
        std::string response = http_response(request, body_);
        size_t sent = 0;
        while (sent < response.size()) {
            int64_t left = deadline - monotonic_us();
            pollfd out = {client, POLLOUT, 0};
            if (left <= 0 || poll(&out, 1, static_cast<int>(left / 1000) + 1) <= 0) break;
            ssize_t n = send(client, response.data() + sent, response.size() - sent, MSG_NOSIGNAL);
            if (n <= 0) break;
            sent += static_cast<size_t>(n);
        }
    }
}

}  // namespace authmng_hostapd
