#pragma once

#include "directory/stationentry.h"

#include <QObject>
#include <chrono>
#include <optional>

/// What came of asking a directory for stations.
struct DirectoryAnswer
{
    enum class Outcome {
        /// No request has been answered yet.
        Awaited,
        /// There is an answer, and it has been read.
        Read,
        NoAnswer,
        /// There is an answer that is no station list.
        Unusable,
    };

    Outcome outcome = Outcome::Awaited;
    /// In the directory's own order; empty unless the outcome is Read.
    StationList stations;
    /// How old the list is where it is not a fresh one.
    std::optional<std::chrono::seconds> age;
};

/// Where stations come from: a kind of directory that is asked for them, and that knows how a station of its
/// lists is reached. Main thread.
///
/// A request returns at once. It is followed by busyChanged(true), and later by busyChanged(false) and
/// answered(), which a kind of directory may repeat with the same answer. Requests are neither cancelled nor
/// queued: the answer that arrives last is the one that counts.
class DirectorySource : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The most popular stations.
    virtual void requestTopStations() = 0;
    /// The stations that `text`, as the user has typed it, finds.
    virtual void requestSearch(const QString &text) = 0;
    /// The stations of a genre, by its name.
    virtual void requestGenre(const QString &genre) = 0;
    /// A few stations of the directory's own choice.
    virtual void requestRandomStations() = 0;

    /// The latest answer. The lists share their entries.
    virtual DirectoryAnswer answer() const = 0;

    /// The address that plays `station`, an entry of the latest answer; null where there is none.
    virtual QString playAddress(const StationEntry &station) const = 0;
    /// The address that a favourite made of `station` keeps; null where there is none worth keeping.
    virtual QString favouriteAddress(const StationEntry &station) const = 0;

Q_SIGNALS:
    /// Whether a request has just begun or an answer just arrived.
    void busyChanged(bool busy);
    /// How the request is getting on, for the status line; written every time.
    void statusChanged(const QString &text);
    /// answer() has been replaced, and what shows it is to be filled anew.
    void answered();
};
