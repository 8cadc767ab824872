// text.hpp - a text built piece by piece in a buffer of fixed size; what does not fit is cut.
#pragma once

#include <stddef.h>

namespace vox {

class text_writer {
  public:
    // Needs size > 0. The text in buffer is terminated at all times.
    text_writer(char *buffer, size_t size);

    void add(const char *format, ...) __attribute__((format(printf, 2, 3)));

    // "%.2f", with a point whatever the program's locale: other programs read these texts.
    void add_decimal(double value);

    size_t length() const { return length_; }

  private:
    char *buffer_;
    size_t size_, length_ = 0;
};

} // namespace vox
