#pragma once

#include "directory/stationentry.h"
#include "directory/stationfilter.h"

#include <QDateTime>
#include <QObject>
#include <chrono>
#include <functional>
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

    /// Why there is no fresh answer, where the directory can tell.
    enum class Trouble {
        None,
        NoNetwork,
        NoServer, ///< all of several servers have failed
        Throttled,
    };

    Outcome outcome = Outcome::Awaited;
    /// In the directory's own order; empty unless the outcome is Read.
    StationList stations;
    /// How old the list is where it is not a fresh one.
    std::optional<std::chrono::seconds> age;
    Trouble trouble = Trouble::None;
    /// When a throttled directory may be asked again; invalid where that is not known.
    QDateTime throttledUntil;
    /// Whether this is what the stations seen so far have for a text that is being typed.
    bool isSuggestion = false;
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

    /// Makes the last request again; the top stations where there has been none.
    virtual void repeatRequest() = 0;

    /// Whether lists can be narrowed; where not, the filter stays empty.
    virtual bool canFilter() const { return false; }
    virtual StationFilter filter() const { return {}; }
    /// Narrows this list and all further ones: the last request is made again where the filter has changed.
    virtual void setFilter(const StationFilter & /*filter*/) {}
    /// What there is to choose from; empty until filterChoicesChanged(), which follows where the directory
    /// tells. Asks for it when first called.
    virtual FilterChoices filterChoices() { return {}; }

    /// Whether stations seen before are found while their name is being typed.
    virtual bool canSuggest() const { return false; }
    /// Soon answers with them, without asking the directory and without a word of status. Only the latest
    /// text is answered.
    virtual void suggest(const QString & /*text*/) {}
    /// Brings back the list from before the first suggestion.
    virtual void endSuggestions() {}

    /// Tells the directory, which may count it, that the station of that "id" has been started.
    virtual void stationStarted(const QString & /*id*/) {}
    /// Asks for the address that the station of that "id" has now: null where there is none. `take` is called
    /// once, later, unless `context` is gone by then.
    virtual void requestPresentAddress(const QString & /*id*/, QObject *context,
                                       const std::function<void(const QString &address)> &take);

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
    /// filterChoices() are there, or others.
    void filterChoicesChanged();
};
