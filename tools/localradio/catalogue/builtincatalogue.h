#pragma once

#include "localradio/catalogue/catalogue.h"

namespace localradio {

/// Invented stations in many genres and languages, the same ones in every run. Each has a mount here.
class BuiltinCatalogue : public Catalogue
{
public:
    BuiltinCatalogue();

    const std::vector<Station> &stations() const override { return stations_; }

private:
    std::vector<Station> stations_;
};

} // namespace localradio
