#pragma once

#include <utility>

namespace KOR {

/// A reference on an object of the contract, given back when it dies.
///
/// Which way it came by its reference is said on the line that makes it: `adopt` takes over one
/// that the caller holds (what a factory gives), `share` takes a further one.
template <typename Object>
class Ref {
public:
    Ref() = default;

    static Ref adopt(Object* object) { return Ref(object); }

    static Ref share(Object* object) {
        if (object != nullptr) object->addRef();
        return Ref(object);
    }

    Ref(const Ref& other) : Ref(share(other.object_)) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_ != nullptr) object_->release();
    }

    Object* get() const { return object_; }
    Object* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit Ref(Object* object) : object_(object) {}

    Object* object_ = nullptr;
};

}  // namespace KOR
