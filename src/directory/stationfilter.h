#pragma once

#include <QList>
#include <QString>

/// What narrows a directory's lists. A text that is empty, and a bit rate of 0, leave everything in.
struct StationFilter
{
    QString country;      ///< two letters (ISO 3166-1)
    QString language;     ///< as the directory names it
    QString codec;        ///< likewise
    int leastBitrate = 0; ///< in kbit/s

    bool isEmpty() const { return *this == StationFilter(); }
    bool operator==(const StationFilter &) const = default;
};

/// One value of a filter, and how many stations of the whole directory it leaves.
struct FilterChoice
{
    QString value; ///< for StationFilter
    QString name;  ///< for people; not in their language
    int stations = 0;
};

/// What a directory has to choose from, most stations first.
struct FilterChoices
{
    QList<FilterChoice> countries;
    QList<FilterChoice> languages;
    QList<FilterChoice> codecs;

    bool isEmpty() const { return countries.isEmpty() && languages.isEmpty() && codecs.isEmpty(); }
};
