#pragma once

#include <unistd.h>

#include <utility>

namespace norvane {

// An open file descriptor that closes itself; below 0 when there is none.
class FileDescriptor {
 public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

    // Hands the number over to somebody who will close it.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }
    void close() {
        if (number_ >= 0) ::close(std::exchange(number_, -1));
    }

 private:
    int number_ = -1;
};

}  // namespace norvane
