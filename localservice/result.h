#pragma once

#include <QString>

/** A value, or the reason why there is none, in words that may be shown to a member. */
template <typename T>
struct Result
{
    T value{};
    QString error;

    bool isOk() const
    {
        return error.isEmpty();
    }

    static Result failed(const QString &reason)
    {
        return {T{}, reason};
    }
};
