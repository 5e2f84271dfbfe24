#pragma once

#include "localradio/catalogue/station.h"

#include <vector>

namespace localradio {

/// The stations that a directory knows.
class Catalogue
{
public:
    Catalogue() = default;
    virtual ~Catalogue() = default;
    Catalogue(const Catalogue &) = delete;
    Catalogue &operator=(const Catalogue &) = delete;

    /// All stations, those with most listeners first. Unchanged for the catalogue's life.
    virtual const std::vector<Station> &stations() const = 0;

    /// The station with that id; null if there is none. Owned by the catalogue.
    const Station *find(int id) const;

    /// The catalogue as indented JSON: an array with one object a station, with what its streams sound like.
    QByteArray toJson() const;
};

} // namespace localradio
