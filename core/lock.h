// The one guard of g_authmng_mtx. The mutex is recursive, so a holder may
// take it again (the web-auth restart rule writes and clears while its
// intake holds it; intakes queue abnormal records while holding it).
//
// A thread that finds the mutex held by another spins a little before it
// sleeps: the holder of an intake keeps it for some tens of nanoseconds,
// far less than the sleep and the wake-up system calls cost. Waiting
// threads back off exponentially, so the holder runs on undisturbed, and
// end in the blocking lock, so a long holder (a file drain) sees them
// sleep. With one CPU there is nobody to release the mutex while a waiter
// spins, and it sleeps at once.
#ifndef AUTHMNG_CORE_LOCK_H
#define AUTHMNG_CORE_LOCK_H

#include <pthread.h>

#include "authmng.h"

namespace authmng {

class LibraryLock {
public:
    LibraryLock() {
        if (pthread_mutex_trylock(&g_authmng_mtx) != 0) wait_for_mutex();
    }
    ~LibraryLock() { pthread_mutex_unlock(&g_authmng_mtx); }
    LibraryLock(const LibraryLock &) = delete;
    LibraryLock &operator=(const LibraryLock &) = delete;

private:
    // The contended path: spin with backoff, then block. Returns holding
    // the mutex.
    static void wait_for_mutex();
};

}  // namespace authmng

#endif
