#pragma once

#include "localradio/catalogue/catalogue.h"

namespace localradio {

/// The stations of the user's own JSON file; they tune in to their own addresses.
class JsonCatalogue : public Catalogue
{
public:
    /// Reads `json`, an array of objects:
    ///   "name"  text, must be there
    ///   "url"   an http or https address, or an array of them; must be there
    ///   "genre" text; several genres with commas between
    ///   "mt"    media type, "audio/mpeg" if left out
    ///   "br", "lc"  bit rate in kbit/s and listeners, numbers
    ///   "ct", "logo" current track and picture address, texts
    ///   "id"    a positive whole number, unique; counted on from 1000001 if left out
    /// Throws std::runtime_error with a text for the user if it is anything else.
    explicit JsonCatalogue(const QByteArray &json);

    const std::vector<Station> &stations() const override { return stations_; }

private:
    std::vector<Station> stations_;
};

} // namespace localradio
