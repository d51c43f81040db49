// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <chrono>
#include <optional>
#include <utility>

/** Why something was not done, in words that may be shown to a member. */
struct Failure
{
    enum Kind {
        Refused,  ///< what was asked for cannot be had; with the service all is well
        Stranger, ///< the same, since the user name and password are nobody's
        Broken    ///< the service itself failed: its records, its disk, its memory
    };

    QString reason;
    Kind kind = Refused;
    std::chrono::milliseconds delay{}; ///< for how long this is not to be told
};

inline Failure refused(const QString &reason)
{
    return {reason, Failure::Refused, {}};
}

inline Failure broken(const QString &reason)
{
    return {reason, Failure::Broken, {}};
}

/** A value, or the failure that stands in its place. Never both, and never to be passed over. */
template <typename T>
class [[nodiscard]] Result
{
public:
    Result(T value) // NOLINT(google-explicit-constructor): a function returns its value as it is
        : m_value(std::move(value))
    {
    }
    Result(Failure failure) // NOLINT(google-explicit-constructor): and a failure likewise
        : m_failure(std::move(failure))
    {
    }

    bool isOk() const
    {
        return m_value.has_value();
    }
    /** Only of a result that is ok. */
    const T &value() const
    {
        Q_ASSERT(isOk());
        return *m_value;
    }
    /** Only of a result that is not. */
    const Failure &failure() const
    {
        return m_failure;
    }

private:
    std::optional<T> m_value;
    Failure m_failure;
};

/** Done, or the failure. */
template <>
class [[nodiscard]] Result<void>
{
public:
    Result() = default;
    Result(Failure failure) // NOLINT(google-explicit-constructor)
        : m_failure(std::move(failure))
    {
    }

    bool isOk() const
    {
        return !m_failure.has_value();
    }
    const Failure &failure() const
    {
        return *m_failure;
    }

private:
    std::optional<Failure> m_failure;
};
