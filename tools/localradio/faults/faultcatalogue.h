#pragma once

#include "localradio/catalogue/catalogue.h"

namespace localradio {

/// The stations of another catalogue, and after them one for each fault that is worth hearing; all of these
/// have the genre "Faults" and a name that begins with "Fault: ".
class FaultCatalogue : public Catalogue
{
public:
    /// Copies the stations of `other`.
    explicit FaultCatalogue(const Catalogue &other);

    const std::vector<Station> &stations() const override { return stations_; }

private:
    std::vector<Station> stations_;
};

} // namespace localradio
