#pragma once

#include <cstdint>

namespace KOR {

/// Is told when the object that it observes is about to be destroyed.
///
/// Not owned by the observed object: it has to outlive that object or be taken off before.
class IDmDestroyObserver {
public:
    /// 0. Called once, on the thread of the last release, right before the destructor runs. The
    /// object may still be named, but no operation may be called on it.
    virtual void objectDestroyed() = 0;

protected:
    ~IDmDestroyObserver() = default;
};

/// The common base of every object that crosses the boundary between host and component.
///
/// Objects are reference counted. A factory gives an object with one reference, which its caller
/// owns and ends with release(). Every interface has a fixed order of operations; the number before
/// an operation's comment is its slot, counted from the first operation that the interface itself
/// declares. Reference counting may be used from any thread.
class IDmBaseObj {
public:
    /// 0. Takes a reference. Returns the new count, or 0 for an object that is already dead.
    virtual std::uint32_t addRef() = 0;

    /// 1. Gives a reference back. Returns the new count; at 0 the object has destroyed itself.
    virtual std::uint32_t release() = 0;

    /// 2. Returns the current count. For diagnosis only: another thread may change it at any time.
    virtual std::uint32_t refCount() const = 0;

    /// 3. Returns the observer set last, or null.
    virtual IDmDestroyObserver* getDestroyObserver() const = 0;

    /// 4. Sets the one observer of this object's destruction. Null takes it off. Not owned.
    virtual void setDestroyObserver(IDmDestroyObserver* observer) = 0;

    /// 5. Returns the interface called `name`, or null where the object does not have it.
    ///
    /// The whole name is compared, letter for letter; a null name gives null. No reference is
    /// added: the interface lives as long as the object. The pointer is exactly the interface's own
    /// (`static_cast<IDmBaseMedia*>(object->queryInterface("IDmBaseMedia"))` is the way to use it).
    virtual void* queryInterface(const char* name) = 0;

protected:
    ~IDmBaseObj() = default;
};

}  // namespace KOR
