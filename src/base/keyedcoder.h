#pragma once

#include <QLatin1StringView>
#include <QVariant>

/// What a record writes its fields to, one value under each key.
class KeyedEncoder
{
public:
    /// A value of a kind that the coder does not know is written as empty.
    virtual void encodeObject(const QVariant &value, QLatin1StringView key) = 0;

protected:
    ~KeyedEncoder() = default;
};

/// What a record reads its fields from.
class KeyedDecoder
{
public:
    /// Invalid where there is nothing under `key`. The value may be of any type.
    virtual QVariant decodeObject(QLatin1StringView key) const = 0;

protected:
    ~KeyedDecoder() = default;
};
