#pragma once

#include "localradio/catalogue.h"

namespace localradio {

/// Invented stations in many genres and languages, the same ones in every run. Each has a mount here.
class BuiltinCatalogue : public Catalogue
{
public:
    BuiltinCatalogue();

    const std::vector<Station> &stations() const override { return m_stations; }

private:
    std::vector<Station> m_stations;
};

} // namespace localradio
