#pragma once

// Holds an object until its owner is known, so that an early return or a failed assertion leaks nothing.
template <class T>
class TOwned
{
public:
    explicit TOwned(T* object) : Object(object) {}
    ~TOwned() { delete Object; }
    TOwned(const TOwned&) = delete;
    TOwned& operator=(const TOwned&) = delete;

    T* operator->() const { return Object; }
    T& operator*() const { return *Object; }
    T* Get() const { return Object; }
    T* Release()
    {
        T* object = Object;
        Object = nullptr;
        return object;
    }

private:
    T* Object;
};
