// temporary.hpp - a directory of a test's own, removed with all that is in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace test {

class temporary_directory {
  public:
    temporary_directory() {
        std::string path = std::filesystem::temp_directory_path() / "vox_test_XXXXXX";
        if (!mkdtemp(path.data()))
            std::abort();
        path_ = path;
    }
    ~temporary_directory() { std::filesystem::remove_all(path_); }
    temporary_directory(const temporary_directory &) = delete;
    temporary_directory &operator=(const temporary_directory &) = delete;

    const std::string &path() const { return path_; }
    std::string operator/(const std::string &name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

inline std::string contents_of(const std::string &file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace test
