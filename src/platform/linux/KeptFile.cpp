#include "platform/linux/KeptFile.h"

#include <cerrno>
#include <utility>

namespace norvane {

namespace {

// The file is still the right one, it has merely nothing to say now: a sensor that is switched off, an
// embedded controller that did not answer, a counter that is not for us.
bool mayAnswerLater(int error) {
    switch (error) {
        case ENODATA:
        case EIO:
        case EINVAL:
        case EAGAIN:
        case EOPNOTSUPP:
        case EPERM:
        case EFBIG:
            return true;
        default:
            return false;
    }
}

}  // namespace

KeptFile::KeptFile(RootFolder root, std::string path, std::size_t limit, unsigned missesBetweenLooks)
    : root_(std::move(root)),
      path_(std::move(path)),
      limit_(limit),
      missesBetweenLooks_(missesBetweenLooks) {}

std::optional<std::string_view> KeptFile::read() {
    if (!file_) {
        if (missesLeft_ > 0) {
            --missesLeft_;
            return std::nullopt;
        }
        file_ = root_.open(path_.c_str());
        if (!file_) {
            missesLeft_ = missesBetweenLooks_;
            return std::nullopt;
        }
    }
    const auto length = root_.readAll(file_, path_, buffer_, limit_);
    if (length) return std::string_view(buffer_.data(), *length);
    if (!mayAnswerLater(errno)) file_.close();
    return std::nullopt;
}

}  // namespace norvane
