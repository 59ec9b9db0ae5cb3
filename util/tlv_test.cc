// The TLV builder against the element layout: type and length as unsigned
// 16-bit host-order words, then the value.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "authmng.h"

namespace {

TEST(TlvTest, ElementsLieBackToBackFillTheBufferExactlyAndRefusalsChangeNothing) {
    uint8_t value[200] = {0xde, 0xad, 0xbe};
    authmng_tlv_buf_t buf;
    memset(&buf, 0xa5, sizeof(buf));
    authmng_tlv_buf_init(&buf);
    EXPECT_EQ(authmng_add_tlv(0, value, 147, &buf), -1);
    EXPECT_EQ(authmng_add_tlv(5, value, 3, &buf), 0);     // undefined type
    EXPECT_EQ(authmng_add_tlv(5, value, 200, &buf), -1);  // the size is checked first
    EXPECT_EQ(authmng_add_tlv(0, nullptr, 3, &buf), 0);
    EXPECT_EQ(authmng_add_tlv(0, value, 0xfffffffdu, &buf), -1);  // 4 + length wraps
    EXPECT_EQ(authmng_add_tlv(0, value, 3, nullptr), -1);
    ASSERT_EQ(authmng_add_tlv(0, value, 3, &buf), 7);
    ASSERT_EQ(authmng_add_tlv(0, "ab", 3, &buf), 7);

    const uint16_t three = 3;  // the length word as this host stores it
    uint8_t len[2];
    memcpy(len, &three, 2);
    std::vector<uint8_t> expected = {0, 0, len[0], len[1], 0xde, 0xad, 0xbe,
                                     0, 0, len[0], len[1], 'a',  'b',  0};
    expected.resize(150, 0);
    EXPECT_EQ(std::vector<uint8_t>(buf.data, buf.data + sizeof(buf.data)), expected);
    EXPECT_EQ(authmng_add_tlv(0, value, 132, &buf), 136);  // the last 136 bytes
    EXPECT_EQ(authmng_add_tlv(0, value, 1, &buf), -1);
    EXPECT_EQ(buf.used, 150);
    EXPECT_EQ(buf.left, 0);

    // Counts that disagree: either one alone refuses an element past the end.
    authmng_tlv_buf_init(&buf);
    buf.used = 140;
    EXPECT_EQ(authmng_add_tlv(0, value, 10, &buf), -1);
    buf.used = 0, buf.left = 10;
    EXPECT_EQ(authmng_add_tlv(0, value, 10, &buf), -1);
}

}  // namespace
