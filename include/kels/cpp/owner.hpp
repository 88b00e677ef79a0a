// What owns a plan or a context of the library.
#ifndef KELS_CPP_OWNER_HPP
#define KELS_CPP_OWNER_HPP

#include <kels/cpp/call.hpp>

namespace kels::detail {

template <class Function>
struct released;
template <class Handle>
struct released<KelStatus (*const)(Handle*)> {
    using type = Handle;
};

// The handle that a family's `init_alloc` makes and its `free` takes back. It moves and does not copy.
template <class Calls>
class owner {
public:
    using handle = typename released<decltype(Calls::free)>::type;

    // make(<InitAlloc function>, <its arguments behind the handle>...)
    template <class Make, class... Arguments>
    static owner make(Make* function, const Arguments&... arguments) {
        owner made;
        checked(function(&made.handle_, arguments...));
        return made;
    }

    owner(owner&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    owner& operator=(owner&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~owner() {
        if (handle_) Calls::free(handle_);
    }

    handle* get() const { return handle_; }

private:
    owner() = default;
    handle* handle_ = nullptr;
};

// Calls a function of integer samples with the scale factor before `last`, one of others without it: there a factor
// would go unheard.
template <class Function, class... Arguments>
KelStatus call_scaled(Function* function, scale by, const Arguments&... arguments) {
    if constexpr (std::is_invocable_v<Function, Arguments..., int>) return checked(function(arguments..., by.factor));
    if (by.factor != 0) fail(kelStatusBadArg);
    if constexpr (std::is_invocable_v<Function, Arguments...>) return checked(function(arguments...));
}

} // namespace kels::detail

#endif
