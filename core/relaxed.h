// Configuration values and debug switches are single words that one thread
// writes and the others read without the library mutex. Every access to
// them goes through these two helpers, so each read sees either the old or
// the new value and the race is a declared, atomic one.
#ifndef AUTHMNG_CORE_RELAXED_H
#define AUTHMNG_CORE_RELAXED_H

namespace authmng {

template <typename T>
inline T load_relaxed(const T &value) {
    return __atomic_load_n(&value, __ATOMIC_RELAXED);
}

template <typename T, typename U>
inline void store_relaxed(T &target, U value) {
    __atomic_store_n(&target, static_cast<T>(value), __ATOMIC_RELAXED);
}

}  // namespace authmng

#endif
