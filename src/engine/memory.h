// Allocation helpers over the platform heap. Every engine record is created
// here: GlobalAlloc for the storage, then placement construction so that the
// record's default member values are its initial state. Records are trivially
// destructible plain data, so releasing one is a single GlobalFree.
#pragma once

#include "kryn/platform.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace kryn {

// Allocates raw bytes; zeroed when asked. Null on failure.
inline void* allocBytes(size_t bytes, bool zeroed = false) {
    return GlobalAlloc(zeroed ? GMEM_ZEROINIT : GMEM_FIXED, bytes);
}

inline void freeBytes(void* block) {
    GlobalFree(block);
}

// Creates one record initialised by its default member values. `zeroed`
// clears the storage first, for records whose padding or unset bytes must
// read as zero. Null on failure.
template <class T>
T* createRecord(bool zeroed = false) {
    static_assert(std::is_trivially_destructible_v<T>);
    void* storage = allocBytes(sizeof(T), zeroed);
    return storage == nullptr ? nullptr : ::new (storage) T();
}

// Creates a copy of a record. Null on failure.
template <class T>
T* copyRecord(const T& source) {
    static_assert(std::is_trivially_destructible_v<T>);
    void* storage = allocBytes(sizeof(T));
    return storage == nullptr ? nullptr : ::new (storage) T(source);
}

template <class T>
void destroyRecord(T* record) {
    static_assert(std::is_trivially_destructible_v<T>);
    freeBytes(record);
}

// Frees *slot if set and clears it.
template <class T>
void freeAndClear(T*& slot) {
    if (slot != nullptr) {
        freeBytes(slot);
        slot = nullptr;
    }
}

} // namespace kryn
