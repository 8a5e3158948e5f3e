#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavrin {

/// Gathers output and writes it in large pieces. What is left is written at the end of its life.
class OutputBuffer {
  public:
    explicit OutputBuffer(int descriptor) : file(descriptor) {}
    ~OutputBuffer() { flush(); }
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

    void append(std::string_view bytes) {
        buffer += bytes;
        flushIfFull();
    }
    /// For code that appends directly; call flushIfFull() now and then.
    std::string& content() { return buffer; }
    void flushIfFull() {
        if (buffer.size() >= capacity)
            flush();
    }
    void flush();

    /// Why writing failed: an errno value, 0 when all went well. What comes after a failure is dropped.
    [[nodiscard]] int error() const { return failure; }

  private:
    static constexpr std::size_t capacity = 64 * 1024;

    int file;
    std::string buffer;
    int failure = 0;
};

} // namespace tavrin
