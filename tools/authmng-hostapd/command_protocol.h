// The command socket's messages, shared by authmng-hostapd and authmng-cli.
// A local sequenced-packet connection carries one command:
//   client -> daemon  one packet: a TLV buffer holding the command line
//   daemon -> client  one packet: a TLV element with the status byte
//                     ('0' run, '1' refused by the command line, '2' not
//                     allowed), then the output in TLV elements of at most
//                     kChunkMax bytes, one per packet; then the daemon
//                     closes the connection.
#ifndef AUTHMNG_HOSTAPD_COMMAND_PROTOCOL_H
#define AUTHMNG_HOSTAPD_COMMAND_PROTOCOL_H

#include <cstddef>
#include <string>

#include "authmng.h"

namespace authmng_cmd {

// Largest value of one element: the buffer less the element header.
constexpr size_t kChunkMax = AUTHMNG_TLV_BUF_SIZE - 4;
// Where the daemon listens unless told otherwise.
constexpr const char *kDefaultSocket = "/run/authmng-hostapd.sock";

enum Status : char { kRun = '0', kRefused = '1', kDenied = '2' };

// One element holding value (at most kChunkMax bytes); false when it does
// not fit.
bool pack(const char *value, size_t length, authmng_tlv_buf_t *buffer);

// The value of the one element of a received packet; false when the packet
// is not a well-formed element.
bool unpack(const void *packet, size_t length, std::string *value);

// Sends status and output as above on a connected socket, waiting at most
// timeout_ms in all for a reader that is slow to take them. false when the
// peer went away or did not read in time.
bool send_reply(int fd, Status status, const std::string &output, int timeout_ms);

}  // namespace authmng_cmd

#endif
