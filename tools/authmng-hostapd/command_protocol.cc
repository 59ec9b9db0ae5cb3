#include "command_protocol.h"

#include <poll.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "mono_clock.h"

namespace authmng_cmd {

bool pack(const char *value, size_t length, authmng_tlv_buf_t *buffer) {
    authmng_tlv_buf_init(buffer);
    if (length > kChunkMax) return false;
    return authmng_add_tlv(0, value, static_cast<unsigned>(length), buffer) > 0;
}

bool unpack(const void *packet, size_t length, std::string *value) {
    const uint8_t *bytes = static_cast<const uint8_t *>(packet);
    if (length < 4 || length > AUTHMNG_TLV_BUF_SIZE) return false;
    uint16_t type, value_len;
    memcpy(&type, bytes, 2);
    memcpy(&value_len, bytes + 2, 2);
    if (type != 0 || value_len == 0 || value_len != length - 4) return false;
    value->assign(reinterpret_cast<const char *>(bytes + 4), value_len);
    return true;
}

namespace {

// One packet; waits for room while the deadline allows.
bool send_packet(int fd, const authmng_tlv_buf_t &buffer, int64_t deadline_us) {
    for (;;) {
        int sent = authmng_unix_send(fd, buffer.data, buffer.used);
        if (sent == buffer.used) return true;
        if (sent < 0 && errno != EAGAIN && errno != EWOULDBLOCK) return false;
        int64_t left_us = deadline_us - authmng_hostapd::monotonic_us();
        if (left_us <= 0) return false;
        pollfd pfd = {fd, POLLOUT, 0};
        if (poll(&pfd, 1, static_cast<int>(left_us / 1000) + 1) <= 0) return false;
    }
}

}  // namespace

bool send_reply(int fd, Status status, const std::string &output, int timeout_ms) {
    int64_t deadline = authmng_hostapd::monotonic_us() + timeout_ms * 1000LL;
    authmng_tlv_buf_t buffer;
    char code = status;
    if (!pack(&code, 1, &buffer) || !send_packet(fd, buffer, deadline)) return false;
    for (size_t pos = 0; pos < output.size(); pos += kChunkMax) {
        size_t n = output.size() - pos < kChunkMax ? output.size() - pos : kChunkMax;
        if (!pack(output.data() + pos, n, &buffer) || !send_packet(fd, buffer, deadline)) {
            return false;
        }
    }
    return true;
}

}  // namespace authmng_cmd
