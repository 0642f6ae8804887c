#pragma once

#include "support/testsupport.h"

#include <unistd.h>

// DoAndDie with work that gives a plain value, which is told to this process before the other one dies.
template <class T>
bool TellAndDie(T& told, const std::function<T()>& work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const bool died = DoAndDie([&] {
        const T value = work();
        EXPECT_EQ(write(ends[1], &value, sizeof(value)), static_cast<ssize_t>(sizeof(value)));
    });
    close(ends[1]);
    const bool heard = read(ends[0], &told, sizeof(told)) == static_cast<ssize_t>(sizeof(told));
    close(ends[0]);
    return died && heard;
}
