#pragma once

#include "localradio/catalogue/catalogue.h"
#include "localradio/http/answer.h"
#include "localradio/http/requesttarget.h"

#include <QString>

#include <vector>

namespace localradio {

/// The directory: answers station lists and tune-in playlists from a catalogue.
class DirectoryService
{
public:
    /// `catalogue` must outlive the service. `key` is what clients must send as "k"; `origin`, such as
    /// "http://127.0.0.1:8000", is put before stream paths in playlists.
    DirectoryService(const Catalogue &catalogue, QString key, QString origin);

    /// The answer to a request for `target`; status 404 for what the directory does not have.
    Answer answer(const RequestTarget &target) const;

private:
    using Stations = std::vector<const Station *>;

    Answer stationList(const RequestTarget &target) const;
    Answer playlist(const RequestTarget &target) const;
    Stations top() const;
    Stations search(const QString &text) const;
    Stations random() const;
    QString streamAddress(const QString &stream) const;

    const Catalogue &catalogue_;
    QString key_;
    QString origin_;
};

} // namespace localradio
