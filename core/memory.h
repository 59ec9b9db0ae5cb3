// Allocation of row buffers and list nodes: zero-filled, no exceptions,
// and a null result that every caller handles by skipping its work. Every
// allocation of the library goes through the port (authmng_port_zalloc),
// where a host build can make it fail.
#ifndef AUTHMNG_CORE_MEMORY_H
#define AUTHMNG_CORE_MEMORY_H

#include <cstddef>
#include <memory>

#include "authmng_platform.h"

namespace authmng {

inline void *zalloc(std::size_t size) {
    return authmng_port_zalloc(size);
}
inline void release(void *block) {
    authmng_port_free(block);
}

struct Releaser {
    void operator()(void *block) const { release(block); }
};

// A zero-filled buffer owned for the length of a call.
template <typename T>
using Owned = std::unique_ptr<T, Releaser>;

inline Owned<char> alloc_text(std::size_t size) {
    return Owned<char>(static_cast<char *>(zalloc(size)));
}

// Row buffers of the CSV writers and the cpp and escape files.
constexpr std::size_t kRowBufferSize = 2000;

}  // namespace authmng

#endif
