#pragma once

#include "base/sortdescriptor.h"

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

/// Small conversions that several rooms share. There is no state; safe on any thread.
class RVObject
{
public:
    /// A text as the directory expects it in a query: each blank (U+0020) becomes "+", nothing else changes.
    static QString airAPIFormatStyle(const QString &text);

    /// The value of the Authorization header for these two; see basicAuthorization().
    static QString standardBasicAuthWithUsername(const QString &username, const QString &password);

    /// The connection time-out in seconds that a stored value stands for: its integer, 15 for an invalid
    /// value.
    static double rtoToTime(const QVariant &stored);

    /// The number that the whole text stands for: plain digits, with a sign and a decimal point if need be;
    /// nothing for any other text.
    static std::optional<double> numberFromString(const QString &text);

    /// The index of the first text in `list` that reads as the number `key`; 0 also where there is none, so
    /// that a choice falls back to its first position.
    static quint64 indexFromList(const QStringList &list, double key);

    /// The list that the resource `name` of type "json" holds; nothing where its root is no list or it is no
    /// JSON. Raises Exception where there is no such resource, or it is not UTF-8 text.
    static std::optional<QJsonArray> jsonFromBundle(const QString &name);

    /// A new random UUID: 36 characters, hexadecimal digits in upper case.
    static QString getUUID();

    /// A list of one descriptor that orders by the value under `key`.
    static QList<SortDescriptor> mysortDescriptor(const QString &key, bool ascending);

    /// A duration in seconds as "HH:mm:ss"; whole days are dropped.
    static QString showDigitalClock(double seconds);

    /// A span in seconds from now as "H h : M m" in the user's calendar; months and days are counted apart
    /// and not shown.
    static QString showClock(double seconds);

    /// Minutes and seconds, "mm:ss", of the instant that many seconds after 1970, in the local time zone: a
    /// zone that is off by part of an hour shifts the minutes. Below a minute "00:ss".
    static QString convertTime(double seconds);
};
