#pragma once

// Holds one object, or none, and deletes it in the end. Who holds it can be given on and never copied, so a
// class with such a member needs no line that forbids its own copies. Where the object's class is only named
// in a header, what constructs and destroys the holder stands in the source file.
template <class T>
class TOwner
{
public:
    TOwner() = default;
    explicit TOwner(T* object) : Object(object) {}
    TOwner(TOwner&& other) noexcept : Object(other.Release()) {}
    TOwner& operator=(TOwner&& other) noexcept
    {
        Reset(other.Release());
        return *this;
    }
    ~TOwner() { Reset(); }

    T* Get() const { return Object; }
    T* operator->() const { return Object; }
    T& operator*() const { return *Object; }
    bool operator==(const T* other) const { return Object == other; }

    // Takes another object, or none, in place of the present one, which is deleted.
    void Reset(T* object = nullptr)
    {
        static_assert(sizeof(T) > 0, "Only a class that is known whole can be deleted");
        T* old = Object;
        Object = object;
        if (old != object)
            delete old;
    }
    // Gives the object to the caller.
    [[nodiscard]] T* Release()
    {
        T* object = Object;
        Object = nullptr;
        return object;
    }

private:
    T* Object = nullptr;
};
