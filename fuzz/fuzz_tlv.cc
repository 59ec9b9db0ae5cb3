// TLV messages built element by element, on fresh buffers and on buffers
// whose counts the caller never initialised: every call agrees with a model
// of the buffer, nothing is written outside data, and the elements of a
// well-formed buffer read back as they were added.
#include "fuzz_support.h"

using namespace authmng_fuzz;

namespace {

constexpr uint32_t kSize = AUTHMNG_TLV_BUF_SIZE;

// What authmng_add_tlv does to the model, and returns.
int model_add(authmng_tlv_buf_t &m, short type, const uint8_t *value, uint32_t length) {
    if (length == 0 || value == nullptr) return 0;
    uint64_t size = 4 + uint64_t{length};
    if (size > m.left || m.used + size > kSize) return -1;
    if (type != 0) return 0;
    const uint16_t zero = 0, low = static_cast<uint16_t>(length);
    memcpy(m.data + m.used, &zero, 2);
    memcpy(m.data + m.used + 2, &low, 2);
    memcpy(m.data + m.used + 4, value, length);
    m.used = static_cast<uint16_t>(m.used + size), m.left = static_cast<uint16_t>(m.left - size);
    return static_cast<int>(size);
}

// The elements of data[0, used) of a well-formed buffer: each of type 0,
// lengths that add up to used exactly.
void check_elements(const authmng_tlv_buf_t &b) {
    uint32_t at = 0;
    while (at < b.used) {
        uint16_t type, length;
        memcpy(&type, b.data + at, 2), memcpy(&length, b.data + at + 2, 2);
        FUZZ_CHECK(type == 0 && length > 0);
        at += 4u + length;
    }
    FUZZ_CHECK(at == b.used);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    // The buffer sits between two guards that nothing may touch.
    struct {
        uint8_t before[16];
        authmng_tlv_buf_t buffer;
        uint8_t after[16];
    } frame;
    memset(&frame, 0xa5, sizeof frame);
    authmng_tlv_buf_t model;
    memset(&model, 0xa5, sizeof model);
    bool well_formed = false;
    uint8_t value[kSize + 16];
    while (!in.empty()) {
        const uint8_t op = in.take<uint8_t>();
        if (op % 8 == 0) {
            authmng_tlv_buf_init(&frame.buffer);
            FUZZ_CHECK(frame.buffer.used == 0 && frame.buffer.left == kSize);
            model = frame.buffer, well_formed = true;
            continue;
        }
        if (op % 8 == 1) {  // counts the caller never set
            frame.buffer.used = in.take<uint16_t>(), frame.buffer.left = in.take<uint16_t>();
            model = frame.buffer, well_formed = false;
            continue;
        }
        const short type = (op & 0x80) ? in.take<short>() : 0;
        uint32_t length = in.below(kSize + 8);
        if ((op & 0x70) == 0x70) length = in.take<uint32_t>();  // also lengths past 16 bits
        in.bytes(value, length < sizeof value ? length : sizeof value);
        const uint8_t *given = (op & 0x08) ? nullptr : value;
        if (length > sizeof value && given != nullptr) length = sizeof value;
        const int expected = model_add(model, type, given, length);
        FUZZ_CHECK(authmng_add_tlv(type, given, length, &frame.buffer) == expected);
        FUZZ_CHECK(memcmp(&model, &frame.buffer, sizeof model) == 0);
        if (well_formed) {
            FUZZ_CHECK(frame.buffer.used + frame.buffer.left == kSize);
            check_elements(frame.buffer);
        }
    }
    for (uint8_t guard : frame.before) FUZZ_CHECK(guard == 0xa5);
    for (uint8_t guard : frame.after) FUZZ_CHECK(guard == 0xa5);
    return 0;
}
