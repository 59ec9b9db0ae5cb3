// The TLV builder against the element layout: type and length as unsigned
// 16-bit host-order words, then the value.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "authmng.h"

namespace {

std::vector<uint8_t> data_of(const authmng_tlv_buf_t &buf) {
    return std::vector<uint8_t>(buf.data, buf.data + sizeof(buf.data));
}

TEST(TlvTest, ElementsFillTheBufferExactlyAndRefusalsChangeNothing) {
    uint8_t value[200] = {};
    authmng_tlv_buf_t buf;
    memset(&buf, 0xa5, sizeof(buf));
    authmng_tlv_buf_init(&buf);
    EXPECT_EQ(authmng_add_tlv(0, value, 147, &buf), -1);
    EXPECT_EQ(authmng_add_tlv(5, value, 3, &buf), 0);     // undefined type
    EXPECT_EQ(authmng_add_tlv(5, value, 200, &buf), -1);  // the size is checked first
    EXPECT_EQ(authmng_add_tlv(0, nullptr, 3, &buf), 0);
    EXPECT_EQ(authmng_add_tlv(0, value, 0xfffffffdu, &buf), -1);  // 4 + length wraps
    EXPECT_EQ(authmng_add_tlv(0, value, 3, nullptr), -1);
    EXPECT_EQ(buf.used, 0);
    EXPECT_EQ(buf.left, 150);
    EXPECT_EQ(data_of(buf), std::vector<uint8_t>(150, 0));

    EXPECT_EQ(authmng_add_tlv(0, value, 146, &buf), 150);
    EXPECT_EQ(authmng_add_tlv(0, value, 1, &buf), -1);
    EXPECT_EQ(buf.used, 150);
    EXPECT_EQ(buf.left, 0);

    authmng_tlv_buf_init(&buf);
    EXPECT_EQ(authmng_add_tlv(0, value, 10, &buf), 14);
    EXPECT_EQ(authmng_add_tlv(0, value, 20, &buf), 24);
    EXPECT_EQ(buf.used, 38);
    EXPECT_EQ(buf.left, 112);
    // Counts that disagree: either one alone refuses an element past the end.
    buf.used = 140;
    EXPECT_EQ(authmng_add_tlv(0, value, 10, &buf), -1);
    buf.used = 0, buf.left = 10;
    EXPECT_EQ(authmng_add_tlv(0, value, 10, &buf), -1);
}

TEST(TlvTest, TwoElementsLieBackToBackInHostOrder) {
    authmng_tlv_buf_t buf;
    authmng_tlv_buf_init(&buf);
    const uint8_t first[] = {0xde, 0xad, 0xbe};
    ASSERT_EQ(authmng_add_tlv(0, first, 3, &buf), 7);
    ASSERT_EQ(authmng_add_tlv(0, "ab", 3, &buf), 7);

    const uint16_t three = 3;  // the length word as this host stores it
    uint8_t len[2];
    memcpy(len, &three, 2);
    std::vector<uint8_t> expected = {0, 0, len[0], len[1], 0xde, 0xad, 0xbe,
                                     0, 0, len[0], len[1], 'a',  'b',  0};
    expected.resize(150, 0);
    EXPECT_EQ(data_of(buf), expected);
}

}  // namespace
