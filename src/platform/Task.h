#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace norvane {

// A piece of work for a queue or a timer: any callable without arguments, kept inside the task itself, so
// that handing work over allocates nothing. What captures more than `kCapacity` bytes does not compile; large
// things travel behind a pointer. A task may be called any number of times; an empty one must not be called.
class Task {
 public:
    static constexpr std::size_t kCapacity = 80;

    Task() = default;

    template <typename Callable>
    requires(!std::is_same_v<std::remove_cvref_t<Callable>, Task> && std::is_invocable_v<Callable&>)
        Task(Callable&& callable) {  // implicit, so that a lambda can be given where a task is wanted
        using Stored = std::remove_cvref_t<Callable>;
        static_assert(sizeof(Stored) <= kCapacity, "capture a pointer to it instead");
        static_assert(alignof(Stored) <= alignof(std::max_align_t));
        static_assert(std::is_nothrow_move_constructible_v<Stored>);
        ::new (static_cast<void*>(storage_)) Stored(std::forward<Callable>(callable));
        operations_ = &kOperationsOf<Stored>;
    }

    Task(Task&& other) noexcept { take(other); }
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            reset();
            take(other);
        }
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() { reset(); }

    explicit operator bool() const { return operations_ != nullptr; }
    void operator()() { operations_->call(storage_); }

 private:
    struct Operations {
        void (*call)(void*);
        void (*moveTo)(void* from, void* to) noexcept;
        void (*destroy)(void*) noexcept;
    };

    template <typename Stored>
    static constexpr Operations kOperationsOf{
        [](void* stored) { (*static_cast<Stored*>(stored))(); },
        [](void* from, void* to) noexcept {
            ::new (to) Stored(std::move(*static_cast<Stored*>(from)));
            static_cast<Stored*>(from)->~Stored();
        },
        [](void* stored) noexcept { static_cast<Stored*>(stored)->~Stored(); }};

    void take(Task& other) noexcept {
        if (other.operations_ == nullptr) return;
        other.operations_->moveTo(other.storage_, storage_);
        operations_ = std::exchange(other.operations_, nullptr);
    }
    void reset() noexcept {
        if (operations_ == nullptr) return;
        std::exchange(operations_, nullptr)->destroy(storage_);
    }

    alignas(std::max_align_t) std::byte storage_[kCapacity];
    const Operations* operations_ = nullptr;
};

}  // namespace norvane
