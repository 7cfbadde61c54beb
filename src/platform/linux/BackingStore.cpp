#include "platform/linux/BackingStore.h"

#include <sys/mman.h>
#include <unistd.h>
#include <algorithm>
#include <cstring>

#include "platform/linux/X11Event.h"

namespace norvane {
namespace {

constexpr std::size_t kBytesPerPixel = 4;
// Sharing costs an exchange with the server: not for a few rows of a panel.
constexpr std::size_t kLeastShared = 64 * 1024;
// Of memory that is shared, so much of a picture is sent all the same: a gauge that breathes would else wake
// this process once more with each picture, to hear that the server has read it. More than that would be
// written piece by piece, since it does not fit into XCB's buffer.
constexpr std::size_t kMostSent = 32 * 1024;
// A request that every server takes without the extension for bigger ones.
constexpr std::size_t kMostBytesInARequest = 60'000 * 4;

}  // namespace

BackingStore::BackingStore(X11Connection& connection, xcb_window_t window,
                           const X11Connection::Visual& visual, int width, int height)
    : connection_(connection),
      window_(window),
      depth_(visual.depth),
      width_(width),
      height_(height),
      context_(xcb_generate_id(connection.get())),
      bytes_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * kBytesPerPixel) {
    const std::uint32_t noExposures = 0;
    xcb_create_gc(connection_.get(), context_, window_, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    const cairo_format_t format = depth_ == 32 ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    const bool canShare =
        connection_.shm().isPresent && connection_.hasOurByteOrder() && bytes_ >= kLeastShared;
    if (canShare && share()) {
        image_.reset(cairo_image_surface_create_for_data(shared_, format, width_, height_,
                                                         width_ * static_cast<int>(kBytesPerPixel)));
    } else {
        image_.reset(cairo_image_surface_create(format, width_, height_));
    }
}

BackingStore::~BackingStore() {
    image_.reset();
    if (shared_ != nullptr) {
        // The server has a mapping of its own and works off what it was asked for before.
        xcb_shm_detach(connection_.get(), segment_);
        munmap(shared_, bytes_);
    }
    xcb_free_gc(connection_.get(), context_);
}

bool BackingStore::share() {
    const int memory = memfd_create("window", MFD_CLOEXEC);
    if (memory < 0) return false;
    void* mapped = MAP_FAILED;
    if (ftruncate(memory, static_cast<off_t>(bytes_)) == 0) {
        mapped = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    }
    if (mapped == MAP_FAILED) {
        close(memory);
        return false;
    }
    segment_ = xcb_generate_id(connection_.get());
    // The one thing to wait for: a server that cannot take the memory would never show a picture.
    const auto attached =
        xcb_shm_attach_fd_checked(connection_.get(), segment_, memory, 1);  // closes `memory`
    const X11Reply<xcb_generic_error_t> error(xcb_request_check(connection_.get(), attached));
    if (error || !connection_.isAlive()) {
        munmap(mapped, bytes_);
        return false;
    }
    shared_ = static_cast<unsigned char*>(mapped);
    return true;
}

bool BackingStore::handle(const xcb_generic_event_t& event) {
    if (shared_ == nullptr || typeOf(event) != connection_.shm().firstEvent + XCB_SHM_COMPLETION)
        return false;
    if (eventAs<xcb_shm_completion_event_t>(event).shmseg != segment_ || reading_ == 0) return false;
    return --reading_ == 0;
}

void BackingStore::present(std::span<const PixelRect> parts) {
    std::vector<PixelRect> seen;
    std::size_t bytes = 0;
    for (const PixelRect& asked : parts) {
        const PixelRect part = asked.intersection(bounds());
        if (part.isEmpty()) continue;
        seen.push_back(part);
        bytes +=
            static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height) * kBytesPerPixel;
    }
    if (shared_ == nullptr || bytes <= kMostSent) {
        for (const PixelRect& part : seen)
            send(part);
        return;
    }
    for (const PixelRect& part : seen) {
        // It works off one after another: when it tells of the last, it has read all.
        const bool isTold = &part == &seen.back();
        xcb_shm_put_image(connection_.get(), window_, context_, static_cast<std::uint16_t>(width_),
                          static_cast<std::uint16_t>(height_), static_cast<std::uint16_t>(part.x),
                          static_cast<std::uint16_t>(part.y), static_cast<std::uint16_t>(part.width),
                          static_cast<std::uint16_t>(part.height), static_cast<std::int16_t>(part.x),
                          static_cast<std::int16_t>(part.y), depth_, XCB_IMAGE_FORMAT_Z_PIXMAP,
                          isTold ? 1 : 0, segment_, 0);
    }
    ++reading_;
}

void BackingStore::send(const PixelRect& part) {
    if (cairo_surface_status(image_.get()) != CAIRO_STATUS_SUCCESS) return;
    const unsigned char* const pixels = cairo_image_surface_get_data(image_.get());
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(image_.get()));
    const std::size_t row = static_cast<std::size_t>(part.width) * kBytesPerPixel;
    const int rowsAtOnce = std::max(1, static_cast<int>(kMostBytesInARequest / row));
    for (int from = 0; from < part.height; from += rowsAtOnce) {
        const int rows = std::min(rowsAtOnce, part.height - from);
        outgoing_.resize(row * static_cast<std::size_t>(rows));
        for (int i = 0; i < rows; ++i) {
            std::memcpy(outgoing_.data() + row * static_cast<std::size_t>(i),
                        pixels + stride * static_cast<std::size_t>(part.y + from + i) +
                            static_cast<std::size_t>(part.x) * kBytesPerPixel,
                        row);
        }
        if (!connection_.hasOurByteOrder()) {
            for (std::size_t i = 0; i < outgoing_.size(); i += kBytesPerPixel) {
                std::reverse(outgoing_.begin() + static_cast<std::ptrdiff_t>(i),
                             outgoing_.begin() + static_cast<std::ptrdiff_t>(i + kBytesPerPixel));
            }
        }
        xcb_put_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_,
                      static_cast<std::uint16_t>(part.width), static_cast<std::uint16_t>(rows),
                      static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(part.y + from), 0, depth_,
                      static_cast<std::uint32_t>(outgoing_.size()), outgoing_.data());
    }
}

}  // namespace norvane
