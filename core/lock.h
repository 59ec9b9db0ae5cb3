// The one guard of g_authmng_mtx. The mutex is recursive, so a holder may
// take it again (the web-auth restart rule writes and clears while its
// intake holds it; intakes queue abnormal records while holding it).
#ifndef AUTHMNG_CORE_LOCK_H
#define AUTHMNG_CORE_LOCK_H

#include <pthread.h>

#include "authmng.h"

namespace authmng {

class LibraryLock {
public:
    LibraryLock() { pthread_mutex_lock(&g_authmng_mtx); }
    ~LibraryLock() { pthread_mutex_unlock(&g_authmng_mtx); }
    LibraryLock(const LibraryLock &) = delete;
    LibraryLock &operator=(const LibraryLock &) = delete;
};

}  // namespace authmng

#endif
