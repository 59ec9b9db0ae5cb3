// A minimal HTTP/1.0 responder for the metrics: GET /metrics answers with
// the exposition text, anything else with 404. One connection at a time on
// its own thread, each bounded in time, so a slow or hostile client never
// holds up the event loop.
#ifndef AUTHMNG_HOSTAPD_METRICS_SERVER_H
#define AUTHMNG_HOSTAPD_METRICS_SERVER_H

#include <functional>
#include <string>

#include "accept_loop.h"

namespace authmng_hostapd {

// How long one scrape may take to send its request and read the answer.
constexpr int kScrapeTimeoutMs = 2000;

// "PORT", "ADDR:PORT" or "[ADDR6]:PORT" -> host and port; a bare port
// listens on the loopback. false when the text is none of these.
bool split_listen_address(const std::string &text, std::string *host, std::string *port);

// The response to one request (request line and headers as received).
std::string http_response(const std::string &request, const std::function<std::string()> &body);

class MetricsServer {
public:
    ~MetricsServer() { stop(); }
    // Listens on address ("ADDR:PORT") and starts the thread; false with
    // *error set when that fails.
    bool start(const std::string &address, std::function<std::string()> body, std::string *error);
    void stop();

private:
    void answer(int client);
    std::function<std::string()> body_;
    AcceptLoop loop_;
};

}  // namespace authmng_hostapd

#endif
