#pragma once

#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QVariant>
#include <array>
#include <memory>
#include <mutex>

class KeyedDecoder;
class KeyedEncoder;
class RadioModel;

/// A station of the rack is one and the same record wherever it is held: its identity is the pointer, not the
/// values of its fields.
using StationRecord = std::shared_ptr<RadioModel>;
using StationRecords = QList<StationRecord>;

/// The fields of a station record, in the order in which they are archived.
enum class RadioField {
    name,
    genre,
    mid,
    mountType,
    bitrate,
    listener,
    stars,
    imageFilePath,
    volume,
    bass,
    midrange,
    treble,
    custom,
    url,
    port,
    mountpoint,
    password,
    username,
    radioIsPrivate,
    radioscheme,
    radioUuid,
};

/// The record of a station that is kept in the favourites rack: 21 optional fields.
///
/// A field holds a QString, a qlonglong, a double or a bool, or nothing, which is an invalid QVariant; one
/// that came from an archive may hold a value of any type, so that readers expect any. Every read and every
/// write of a field is indivisible, whichever thread performs it; what a reader got stays valid. No lock
/// spans several fields.
class RadioModel
{
public:
    static constexpr std::size_t fieldCount = 21;
    /// The artwork of a station from the directory, and that of one which the user has entered.
    static constexpr QLatin1StringView directoryArtwork{"QVX-001XY3.png"};
    static constexpr QLatin1StringView customArtwork{"QVX-002XY3.png"};

    /// A record with every default, and an identity of its own.
    RadioModel();
    RadioModel(const RadioModel &) = delete;
    RadioModel &operator=(const RadioModel &) = delete;

    /// A record of what the archive holds and nothing else: no defaults, no new identity.
    static StationRecord initWithCoder(const KeyedDecoder &coder);
    /// Writes all fields, each under its own name, the empty ones as empty.
    void encodeWithCoder(KeyedEncoder &coder) const;

    /// The name of a field: its key in an archive.
    static QLatin1StringView key(RadioField field);
    /// All fields, in the order of the archive.
    static std::array<RadioField, fieldCount> fields();

    QVariant value(RadioField field) const;
    void setValue(RadioField field, const QVariant &value);

    /// The field as text: a number in plain digits; null where the field is empty or holds anything else.
    QString text(RadioField field) const;
    /// Whether the field holds true, or a number other than 0.
    bool flag(RadioField field) const;

    QVariant name() const { return value(RadioField::name); }
    void setName(const QVariant &name) { setValue(RadioField::name, name); }
    QVariant genre() const { return value(RadioField::genre); }
    void setGenre(const QVariant &genre) { setValue(RadioField::genre, genre); }
    /// The directory's id of the station.
    QVariant mid() const { return value(RadioField::mid); }
    void setMid(const QVariant &mid) { setValue(RadioField::mid, mid); }
    /// The MIME type of the stream.
    QVariant mountType() const { return value(RadioField::mountType); }
    void setMountType(const QVariant &mountType) { setValue(RadioField::mountType, mountType); }
    /// In kbit/s.
    QVariant bitrate() const { return value(RadioField::bitrate); }
    void setBitrate(const QVariant &bitrate) { setValue(RadioField::bitrate, bitrate); }
    QVariant listener() const { return value(RadioField::listener); }
    void setListener(const QVariant &listener) { setValue(RadioField::listener, listener); }
    /// The rating: how many stars are shown, 0 to 5.
    QVariant stars() const { return value(RadioField::stars); }
    void setStars(const QVariant &stars) { setValue(RadioField::stars, stars); }
    /// The name of a default picture, or the path of the user's own.
    QVariant imageFilePath() const { return value(RadioField::imageFilePath); }
    void setImageFilePath(const QVariant &path) { setValue(RadioField::imageFilePath, path); }

    // Archived and restored; playback does not use them.
    QVariant volume() const { return value(RadioField::volume); }
    void setVolume(const QVariant &volume) { setValue(RadioField::volume, volume); }
    QVariant bass() const { return value(RadioField::bass); }
    void setBass(const QVariant &bass) { setValue(RadioField::bass, bass); }
    QVariant midrange() const { return value(RadioField::midrange); }
    void setMidrange(const QVariant &midrange) { setValue(RadioField::midrange, midrange); }
    QVariant treble() const { return value(RadioField::treble); }
    void setTreble(const QVariant &treble) { setValue(RadioField::treble, treble); }

    /// Whether the user has entered the station; empty reads as false.
    QVariant custom() const { return value(RadioField::custom); }
    void setCustom(const QVariant &custom) { setValue(RadioField::custom, custom); }
    /// A directory station's whole tune-in address; a custom station's server as it was typed.
    QVariant url() const { return value(RadioField::url); }
    void setUrl(const QVariant &url) { setValue(RadioField::url, url); }
    /// Kept as the text that was typed.
    QVariant port() const { return value(RadioField::port); }
    void setPort(const QVariant &port) { setValue(RadioField::port, port); }
    QVariant mountpoint() const { return value(RadioField::mountpoint); }
    void setMountpoint(const QVariant &mountpoint) { setValue(RadioField::mountpoint, mountpoint); }
    QVariant password() const { return value(RadioField::password); }
    void setPassword(const QVariant &password) { setValue(RadioField::password, password); }
    QVariant username() const { return value(RadioField::username); }
    void setUsername(const QVariant &username) { setValue(RadioField::username, username); }
    /// Whether a custom station wants credentials; empty reads as false.
    QVariant radioIsPrivate() const { return value(RadioField::radioIsPrivate); }
    void setRadioIsPrivate(const QVariant &isPrivate) { setValue(RadioField::radioIsPrivate, isPrivate); }
    QVariant radioscheme() const { return value(RadioField::radioscheme); }
    void setRadioscheme(const QVariant &scheme) { setValue(RadioField::radioscheme, scheme); }
    /// The identity that a record keeps from one start to the next.
    QVariant radioUuid() const { return value(RadioField::radioUuid); }
    void setRadioUuid(const QVariant &uuid) { setValue(RadioField::radioUuid, uuid); }

private:
    struct NoDefaults
    {
    };
    explicit RadioModel(NoDefaults) {}

    mutable std::mutex mutex_;
    std::array<QVariant, fieldCount> values_;
};
