// Type-length-value messages in a caller's fixed buffer. An element is the
// type (unsigned 16-bit), the value's length (unsigned 16-bit), both in
// host byte order, then the value; elements follow one another in data.
#include <cstdint>
#include <cstring>

#include "authmng.h"

namespace authmng {
namespace {

constexpr uint16_t kTlvHeaderSize = 4;
// The only element type defined so far.
constexpr short kTlvTypeDefault = 0;

// data is byte-aligned: fields are copied in, never stored through a cast.
void put_u16(uint8_t *at, uint16_t value) {
    memcpy(at, &value, sizeof(value));
}

}  // namespace
}  // namespace authmng

using namespace authmng;

void authmng_tlv_buf_init(authmng_tlv_buf_t *buffer) {
    if (buffer == nullptr) return;
    buffer->used = 0;
    buffer->left = AUTHMNG_TLV_BUF_SIZE;
    memset(buffer->data, 0, sizeof(buffer->data));
}

int authmng_add_tlv(short type, const void *value, unsigned int length, authmng_tlv_buf_t *buffer) {
    if (buffer == nullptr) return -1;
    if (length == 0 || value == nullptr) return 0;
    // In 64 bits so that a huge length cannot wrap. A buffer whose counts
    // were never initialised must not lead past the end of data either.
    uint64_t size = uint64_t{kTlvHeaderSize} + length;
    if (size > buffer->left || buffer->used + size > AUTHMNG_TLV_BUF_SIZE) return -1;
    if (type != kTlvTypeDefault) return 0;

    uint8_t *element = buffer->data + buffer->used;
    put_u16(element, static_cast<uint16_t>(type));
    put_u16(element + 2, static_cast<uint16_t>(length));
    memcpy(element + kTlvHeaderSize, value, length);
    buffer->used = static_cast<uint16_t>(buffer->used + size);
    buffer->left = static_cast<uint16_t>(buffer->left - size);
    return static_cast<int>(size);
}
