// A sample buffer that a driver handed over to the engine. Whoever holds
// the handle owns the buffer; it is released exactly once: when the handle
// is released or destroyed, or by the image-source list of the page it was
// kept for (take).
#pragma once

#include "engine/memory.h"

#include <cstdint>
#include <utility>

namespace kryn {

class SampleBuffer {
  public:
    SampleBuffer() = default;
    explicit SampleBuffer(void* data) : data_(data) {}
    SampleBuffer(const SampleBuffer&) = delete;
    SampleBuffer& operator=(const SampleBuffer&) = delete;
    SampleBuffer(SampleBuffer&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
    SampleBuffer& operator=(SampleBuffer&& other) noexcept {
        if (this != &other) {
            release();
            data_ = std::exchange(other.data_, nullptr);
        }
        return *this;
    }
    ~SampleBuffer() { release(); }

    uint8_t* bytes() const { return static_cast<uint8_t*>(data_); }
    bool empty() const { return data_ == nullptr; }

    // Hands the buffer to a new owner; the handle holds nothing afterwards.
    void* take() { return std::exchange(data_, nullptr); }

    // Frees the buffer now.
    void release() {
        if (data_ != nullptr) {
            freeBytes(std::exchange(data_, nullptr));
        }
    }

  private:
    void* data_ = nullptr;
};

} // namespace kryn
